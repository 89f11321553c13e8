// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The rows of the effect's panel, as `umbrant params` lists them.

#include <string>
#include <string_view>
#include <vector>

#include <umbrant/export.h>

namespace umbrant {

enum class ParameterKind {
    kGroup,     ///< begins a group; has no value
    kInteger,   ///< "12"
    kNumber,    ///< "12.5"; with `isPercent` the number that the panel shows, also as "50%"
    kAngle,     ///< degrees, any number of turns: "405", "405deg" or "1x45"
    kCheckBox,  ///< "on", "off"
    kPopup,     ///< an item's text as in `items`, or its number, which starts at 1
    kColor,     ///< "#rrggbb", "#rgb" or a CSS name
    kPoint,     ///< "x,y" in pixels of the full-size layer, or "x%,y%" of its size
    kPoint3D,   ///< "x,y,z"
    kLayer,     ///< row 0 is the layer itself, the others use the texture; cannot be set from a text
    kButton,    ///< has no value
    kOther,     ///< data of the effect
};

/// One row.
struct Parameter {
    int index = 0;     ///< its position in the panel; "#17" names row 17
    std::string path;  ///< "style/distance"; empty for a row that only has an index
    std::string name;  ///< as the panel shows it
    ParameterKind kind = ParameterKind::kOther;
    bool hasValue = false;   ///< whether Effect::Set can change it
    bool canVary = false;    ///< whether a preset may have keyframes for it
    bool isHidden = false;   ///< whether the effect hides it in the panel with the current values
    bool isPercent = false;  ///< whether the numbers are percentages
    int precision = 0;       ///< decimals that the panel shows, for kNumber
    int depth = 0;           ///< number of enclosing groups

    /// The valid range, and the range of the panel's slider, which may be larger; for kInteger and kNumber.
    double minimum = 0;
    double maximum = 0;
    double sliderMinimum = 0;
    double sliderMaximum = 0;

    std::vector<std::string> items;      ///< for kPopup, as Set takes them; an empty text is a separator line
    std::vector<std::string> itemNames;  ///< for kPopup, as the panel shows them

    /// The default in the form that Effect::Set takes; empty for a row without a value.
    std::string defaultText;
    /// The default as numbers: red, green and blue from 0 to 255 for kColor, x and y in percent of the layer's size for
    /// kPoint, the item's number for kPopup, 0 or 1 for kCheckBox, one number for the other kinds.
    std::vector<double> defaultNumbers;
};

/// What the row of this path does to the picture, for people: one to three English sentences that live as long as the
/// program. Empty for a path that the effect does not declare. Loads no module.
UMBRANT_API std::string_view DescriptionOf(std::string_view path);

}  // namespace umbrant
