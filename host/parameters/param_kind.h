// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a row's type means: the kind of its value, its range, and its value as numbers. The only place that knows where
// a definition keeps them.

#include <optional>
#include <vector>

#include "host/parameters/param_row.h"

namespace umbrant::host {

enum class ParamKind {
    kLayer,
    kInteger,
    kFixed,  ///< a number that the effect gets in 16.16
    kFloat,
    kAngle,
    kCheckBox,
    kColor,
    kPoint,
    kPoint3D,
    kPopup,
    kGroup,
    kGroupEnd,
    kButton,
    kCustom,  ///< data of the effect's own
    kPath,
    kNone,
};

ParamKind KindOf(PF_ParamType type);
inline ParamKind KindOf(const PF_ParamDef& def) {
    return KindOf(def.param_type);
}

/// Whether the row is one of the three kinds of sliders.
bool IsSlider(ParamKind kind);
/// Whether the row has a value that text or numbers can set.
bool HasValue(ParamKind kind);
/// Whether there is nothing between two values of the row, so that it can only be held.
bool IsDiscrete(ParamKind kind);

/// What may be typed, what the slider reaches, and the declared default, in the units that a person sees.
struct NumberRange {
    double validMin, validMax, sliderMin, sliderMax, normal;
};

/// Where the definition keeps its items or its label; null for rows without.
const char** TextPointer(PF_ParamDef& def);

/// The range of a slider; nothing for other rows.
std::optional<NumberRange> SliderRange(const PF_ParamDef& def);
/// The unit that a slider shows.
PF_ValueDisplayFlags DisplayFlags(const PF_ParamDef& def);
/// Whether that is percent.
bool IsPercent(const PF_ParamDef& def);
/// The decimals that a slider shows; nothing if the effect does not declare them.
std::optional<int> Precision(const PF_ParamDef& def);

/// Angles and coordinates are kept in 16.16: the largest whole number of that, either way.
constexpr double kFixedLimit = 32767.0;
/// One, in 16.16.
constexpr double kFixedOne = 65536.0;

/// A row's value as numbers: what a person types (percents as shown, degrees), channels from 0 to 255, a popup's item
/// number from 1 on, 0 and 1, two or three coordinates. One 0 for a row without a value.
struct ParamNumbers {
    std::vector<double> values;
    bool isPercent = false;  ///< a point in percent of the layer, not in pixels
};

ParamNumbers NumbersOf(const ParamRow& row);

/// Sets the row's value. Values outside of its range are clamped, and whole numbers are rounded to the
/// nearest. Changes nothing for not-a-number, for an item that a popup does not have, and for rows without a value.
void SetNumbers(ParamRow& row, const ParamNumbers& numbers);

/// Sets a slider or an angle to any number, for a host that hands an effect what no panel would let through; whole and
/// fixed numbers end where their type does. False for other rows.
bool SetNumberUnchecked(ParamRow& row, double value);

}  // namespace umbrant::host
