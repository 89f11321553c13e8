// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/panel/panel_painter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/suites/drawbot/text.h"

namespace umbrant::host {

namespace {

constexpr double kFaint = 0.38;  ///< what is left of a disabled row
constexpr char kBoldFamily[] = "Inter Semi Bold";

using Metrics = PanelMetrics;

}  // namespace

PanelPainter::PanelPainter(Drawing& drawing, const PanelTheme& theme, int width)
    : drawing_(drawing),
      theme_(theme),
      width_(width),
      controlLeft_(Metrics::ControlLeft(width)),
      right_(width - Metrics::kMargin) {
    drawing_.SetUnhintedText();
    drawing_.SetRoundCaps();
    drawing_.SetRoundJoins();
}

void PanelPainter::SetColor(const PanelColor& color, double alpha) {
    drawing_.SetColor(color.red, color.green, color.blue, alpha * strength_);
}

void PanelPainter::RoundedRect(double left, double top, double width, double height, double radius) {
    drawing_.NewPath();
    drawing_.AddArc(left + width - radius, top + radius, radius, -std::numbers::pi / 2, 0);
    drawing_.AddArc(left + width - radius, top + height - radius, radius, 0, std::numbers::pi / 2);
    drawing_.AddArc(left + radius, top + height - radius, radius, std::numbers::pi / 2, std::numbers::pi);
    drawing_.AddArc(left + radius, top + radius, radius, std::numbers::pi, 3 * std::numbers::pi / 2);
    drawing_.Close();
}

void PanelPainter::SetType(double size, Weight weight) {
    drawing_.SetFont(weight == Weight::kBold ? kBoldFamily : kPanelTypeface, size);
}

double PanelPainter::DrawText(const std::string& text, double left, double middle, double room) {
    const std::string fitted = FitText(drawing_, text, room, kDRAWBOT_TextTruncation_EndEllipsis);
    drawing_.DrawText(fitted, left, middle + (drawing_.FontAscent() - drawing_.FontDescent()) / 2 - 0.3);
    return drawing_.TextWidth(fitted);
}

void PanelPainter::DrawHeader(const std::string& effectName, double panelHeight) {
    strength_ = 1;
    SetColor(theme_.ground);
    drawing_.AddRect(0, 0, width_, panelHeight);
    drawing_.Fill();
    SetColor(theme_.header);
    drawing_.AddRect(0, 0, width_, Metrics::kHeader);
    drawing_.Fill();

    const double middle = Metrics::kHeader / 2;
    DrawTwirl(Metrics::kTwirlLeft, middle, true);
    SetColor(theme_.value);
    RoundedRect(Metrics::kNameLeft, middle - 6.5, 18, 13, 3);
    drawing_.Fill();
    SetType(9, Weight::kBold);
    SetColor(theme_.ground);
    DrawText("fx", Metrics::kNameLeft + 4.6, middle, 18);

    SetType(kTypeSize + 0.5, Weight::kBold);
    SetColor(theme_.text);
    const double nameLeft = Metrics::kNameLeft + 25;
    DrawText(effectName, nameLeft, middle, controlLeft_ - nameLeft - 6);
    SetType(kTypeSize);
    SetColor(theme_.value);
    DrawText("Reset", controlLeft_, middle, 60);
    DrawText("About\u2026", right_ - drawing_.TextWidth("About\u2026"), middle, 60);
}

void PanelPainter::DrawRow(const PanelItem& item) {
    strength_ = 1;
    if (item.control == PanelControl::kSpacer) return;
    if (item.control == PanelControl::kGroup && item.depth == 0) {
        SetColor(theme_.strip);
        drawing_.AddRect(0, item.top, width_, item.height);
        drawing_.Fill();
        SetColor(theme_.line);
        drawing_.AddRect(0, item.top, width_, 1);
        drawing_.Fill();
    }
    strength_ = item.disabled ? kFaint : 1;
    DrawName(item);
    DrawControl(item);
}

void PanelPainter::DrawName(const PanelItem& item) {
    const double middle = item.top + Metrics::kRow / 2;
    const double indent = item.depth * Metrics::kIndent;
    if (item.twirl) DrawTwirl(Metrics::kTwirlLeft + indent, middle, item.open);
    double left = Metrics::kNameLeft + indent;
    if (item.clock) DrawClock(left, middle);
    // Names begin at one line, whether or not there is a stopwatch before them.
    if (item.control != PanelControl::kGroup) left += Metrics::kClock;
    const bool group = item.control == PanelControl::kGroup || item.control == PanelControl::kHeading;
    SetType(kTypeSize, group && item.depth == 0 ? Weight::kBold : Weight::kRegular);
    SetColor(item.control == PanelControl::kHeading ? theme_.dim : theme_.text);
    DrawText(item.name, left, middle, (group ? right_ : controlLeft_ - 6) - left);
}

void PanelPainter::DrawControl(const PanelItem& item) {
    const double middle = item.top + Metrics::kRow / 2;
    switch (item.control) {
        case PanelControl::kSlider:
            DrawNumber(item, controlLeft_, middle);
            if (item.open) DrawTrack(item);
            break;
        case PanelControl::kAngle:
            DrawNumber(item, controlLeft_, middle);
            if (item.open) DrawDial(item);
            break;
        case PanelControl::kPopup:
        case PanelControl::kLayer:
            DrawPopup(item, middle);
            break;
        case PanelControl::kPoint:
            DrawPoint(item, middle);
            break;
        case PanelControl::kColor:
            DrawSwatch(item, middle);
            break;
        case PanelControl::kButton:
            DrawButton(item, middle);
            break;
        case PanelControl::kCheckBox:
            DrawCheckBox(item, middle);
            break;
        default:
            break;
    }
}

void PanelPainter::DrawTwirl(double left, double middle, bool open) {
    SetColor(theme_.dim);
    drawing_.SetLineWidth(1.4);
    const double x = left + 4;
    if (open) {
        drawing_.MoveTo(x - 3.2, middle - 1.7);
        drawing_.LineTo(x, middle + 1.7);
        drawing_.LineTo(x + 3.2, middle - 1.7);
    } else {
        drawing_.MoveTo(x - 1.5, middle - 3.2);
        drawing_.LineTo(x + 1.9, middle);
        drawing_.LineTo(x - 1.5, middle + 3.2);
    }
    drawing_.Stroke();
}

void PanelPainter::DrawClock(double left, double middle) {
    SetColor(theme_.dim, 0.85);
    drawing_.SetLineWidth(1);
    const double x = left + 4.5;
    const double y = middle + 0.6;
    drawing_.NewPath();
    drawing_.AddArc(x, y, 3.9, 0, 2 * std::numbers::pi);
    drawing_.Stroke();
    drawing_.MoveTo(x, y);
    drawing_.LineTo(x, y - 2.2);
    drawing_.MoveTo(x - 1.3, y - 5.7);
    drawing_.LineTo(x + 1.3, y - 5.7);
    drawing_.Stroke();
}

}  // namespace umbrant::host
