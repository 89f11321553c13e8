// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The rows that the panel shows, their positions and texts, but not their appearance. Derived from the declaration,
// the current values and the state in which the effect and the user have left the panel.

#include <string>
#include <vector>

#include "host/parameters/param_set.h"
#include "host/suites/panel_state.h"

namespace umbrant::host {

/// What a row has in its control column.
enum class PanelControl {
    kGroup,     ///< nothing; its twirl shows and hides the rows inside
    kHeading,   ///< nothing; a group without rows whose name heads what follows
    kSpacer,    ///< nothing; a group without rows and without a name
    kSlider,    ///< a number, and below it, when its twirl is open, a track
    kAngle,     ///< a number of turns and degrees, and below it, when its twirl is open, a dial
    kPopup,     ///< the current item
    kLayer,     ///< the current layer
    kPoint,     ///< two numbers
    kColor,     ///< a swatch
    kButton,    ///< a button with its face
    kCheckBox,  ///< a box and what it means
    kOwn,       ///< what the effect draws
    kNothing,   ///< a row whose type has no control here
};

/// One visible row. Lengths are panel pixels; y grows downwards from the panel's top.
struct PanelItem {
    int index = 0;  ///< of the parameter
    PanelControl control = PanelControl::kNothing;
    std::string name;
    std::string value;  ///< as shown: "250.00", "20.00%", "0x +135.0°", an item, a face; empty for none
    int depth = 0;      ///< groups around it
    bool disabled = false;
    bool twirl = false;  ///< has one
    bool open = false;   ///< and it is open
    bool clock = false;  ///< has a stopwatch: its value may change over time
    double top = 0;
    double height = 0;

    double position = 0;    ///< of a slider's knob on its track, 0 to 1
    std::string low, high;  ///< what the ends of the track are
    double degrees = 0;     ///< an angle, clockwise from the top
    PF_Pixel color{};
    bool checked = false;
    PF_Rect frame{};  ///< of what the effect draws: the area it asked for
};

/// Sizes of the panel, in panel pixels.
struct PanelMetrics {
    static constexpr int kLeastWidth = 320;
    static constexpr int kMostWidth = 2000;
    static constexpr int kUsualWidth = 375;
    static constexpr double kHeader = 28;  ///< the effect's own row at the top
    static constexpr double kRow = 22;     ///< the line with name and control
    static constexpr double kTrack = 26;   ///< what an open slider has below
    static constexpr double kDial = 60;    ///< what an open angle has below
    static constexpr double kSpacer = 8;
    static constexpr double kGroupGap = 4;   ///< after the last row of an outermost group
    static constexpr double kMargin = 10;    ///< at the right, and below the last row
    static constexpr double kOwnMargin = 8;  ///< above and below what the effect draws
    static constexpr double kIndent = 13;    ///< per group
    static constexpr double kTwirlLeft = 8;  ///< of the outermost twirls
    static constexpr double kNameLeft = 22;  ///< of the outermost names
    static constexpr double kClock = 15;     ///< what a stopwatch takes before a name
    static constexpr int kOwnLeft = 62;      ///< left edge of an area that has no name next to it
    /// Where controls begin: names get a little less than half.
    static double ControlLeft(int width) { return width * 0.46; }
};

/// The visible rows from top to bottom. Row `i` of the panel's state is parameter `i`. A hidden group hides what is in
/// it. `width` is the panel's, in panel pixels.
std::vector<PanelItem> LayOutPanel(const ParamSet& params, const std::vector<PanelRow>& rows,
                                   const LayerGeometry& geometry, int width);

/// The panel's whole height.
double PanelHeight(const std::vector<PanelItem>& items);

}  // namespace umbrant::host
