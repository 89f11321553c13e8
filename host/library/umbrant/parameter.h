// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the effect's panel has, row for row, as `umbrant params` lists it.

#include <string>
#include <vector>

namespace umbrant {

enum class ParameterKind {
    kGroup,     ///< begins a group; has no value
    kInteger,   ///< "12"
    kNumber,    ///< "12.5"; where `isPercent` the number is the one that the panel shows, and "50%" is taken too
    kAngle,     ///< degrees, any number of turns: "405"; "405deg" and "1x45" are taken too
    kCheckBox,  ///< "on", "off"
    kPopup,     ///< an item's text as `items` has it, or its number, which counts from 1
    kColor,     ///< "#rrggbb"; "#rgb" and CSS names are taken too
    kPoint,     ///< "x,y" in pixels of the full-size layer, or "x%,y%" of its size
    kPoint3D,   ///< "x,y,z"
    kLayer,     ///< row 0 is the layer itself, the others show the texture; no text sets them
    kButton,    ///< has no value
    kOther,     ///< data of the effect's own
};

/// One row.
struct Parameter {
    int index = 0;     ///< its place in the panel; "#17" is a name for row 17
    std::string path;  ///< "style/distance"; empty for a row that only its index names
    std::string name;  ///< as the panel shows it
    ParameterKind kind = ParameterKind::kOther;
    bool hasValue = false;   ///< whether Effect::Set can change it
    bool canVary = false;    ///< whether a preset may have keyframes for it
    bool isHidden = false;   ///< whether the effect hides it from the panel with the values of now
    bool isPercent = false;  ///< the numbers are percents
    int precision = 0;       ///< digits after the point that the panel shows, of kNumber
    int depth = 0;           ///< groups that it lies in

    /// What may be set, and the ends of the panel's slider, which may lie beyond; of kInteger and kNumber.
    double minimum = 0;
    double maximum = 0;
    double sliderMinimum = 0;
    double sliderMaximum = 0;

    std::vector<std::string> items;      ///< of kPopup, as they are typed; an empty text stands for a separator line
    std::vector<std::string> itemNames;  ///< of kPopup, as the panel shows them

    /// The default in the form that Effect::Set takes; empty without a value.
    std::string defaultText;
    /// The same as numbers: one for most kinds, red, green and blue from 0 to 255 for kColor, x and y for kPoint, both
    /// in percent of the layer's size, the item's number for kPopup, 0 or 1 for kCheckBox.
    std::vector<double> defaultNumbers;
};

}  // namespace umbrant
