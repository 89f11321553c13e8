// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From a host's numbers to what the library's Set takes and back, without a host.

#include <array>
#include <optional>
#include <string>
#include <variant>

#include <umbrant/values.h>

#include "openfx/images/geometry.h"
#include "openfx/parameters/parameter_table.h"

namespace umbrant::openfx {

/// One parameter's numbers as hosts have them: an index, a number, x and y, or red, green and blue. Unused ones are 0.
using HostNumbers = std::array<double, 3>;

/// What the library takes for it.
using EffectValue = std::variant<double, std::string, Color>;

/// The effect's value of a row with a path. Numbers beyond the valid range become its ends, not-a-number the default:
/// hosts need not keep the limits. Points are moved into the layer.
EffectValue EffectValueOf(const ParameterRow& row, const HostNumbers& numbers, const LayerPlace& layer);

/// Whether the effect's value is its default, which need not be set.
bool IsDefault(const ParameterRow& row, const HostNumbers& numbers, const LayerPlace& layer);

/// A host's numbers of a text that the library returned; none for a text of another kind. Points are moved out of a
/// layer of this full size, in pixels.
std::optional<HostNumbers> HostNumbersOf(const ParameterRow& row, const std::string& text, const LayerPlace& layer,
                                         double layerWidth, double layerHeight);

}  // namespace umbrant::openfx
