// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the panel looks. Draws every row but what the effect draws itself.

#include <string>
#include <vector>

#include "host/drawing/drawing.h"
#include "host/panel/panel_layout.h"
#include "host/panel/panel_theme.h"

namespace umbrant::host {

/// Draws on `drawing`, whose unit is the panel pixel, from (0, 0).
class PanelPainter {
 public:
    PanelPainter(Drawing& drawing, const PanelTheme& theme, int width);

    /// Ground and the effect's own row.
    void DrawHeader(const std::string& effectName, double panelHeight);
    void DrawRow(const PanelItem& item);

 private:
    void DrawName(const PanelItem& item);
    void DrawControl(const PanelItem& item);
    void DrawTrack(const PanelItem& item);
    void DrawDial(const PanelItem& item);
    void DrawSwatch(const PanelItem& item, double middle);
    void DrawPopup(const PanelItem& item, double middle);
    void DrawButton(const PanelItem& item, double middle);
    void DrawPoint(const PanelItem& item, double middle);
    void DrawCheckBox(const PanelItem& item, double middle);
    void DrawNumber(const PanelItem& item, double left, double middle);
    void DrawClock(double left, double middle);
    void DrawTwirl(double left, double middle, bool open);

    void SetColor(const PanelColor& color, double alpha = 1);
    void RoundedRect(double left, double top, double width, double height, double radius);
    enum class Weight { kRegular, kBold };
    void SetType(double size, Weight weight = Weight::kRegular);
    /// Text whose small letters are centred vertically at `middle`, cut to `room`. Returns its width.
    double DrawText(const std::string& text, double left, double middle, double room);

    Drawing& drawing_;
    const PanelTheme& theme_;
    const double width_;
    const double controlLeft_;
    const double right_;   ///< where controls end
    double strength_ = 1;  ///< of the row being drawn: disabled ones are faint
};

}  // namespace umbrant::host
