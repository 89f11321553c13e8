// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The filter's parameters: one table that everything else reads. The interface knows numbers from 0 to 1, colours and
// places; each row says which of the effect's parameters it is, and what 0 and 1 mean. Nothing here knows the
// interface's header.

#include <array>
#include <string>
#include <vector>

/// How a host sees a parameter.
enum class FilterKind {
    kNumber,  ///< one value from 0 to 1, in a straight line between `low` and `high`
    kItem,    ///< one value from 0 to 1, at even distances over `items`
    kColor,   ///< red, green, blue, each from 0 to 1
    kPlace,   ///< x and y in parts of the frame
};

/// Up to three numbers, as many as the kind has; the others are 0.
using FilterValue = std::array<double, 3>;

struct FilterParameter {
    const char* name;  ///< for people
    const char* path;  ///< of the effect's parameter
    FilterKind kind;
    double low;  ///< of kNumber
    double high;
    std::vector<const char*> items;  ///< of kItem, as the effect takes them
    FilterValue standard;            ///< the value of the effect's default
    const char* explanation;
};

/// All of them, in the order that projects store them in: new ones come last.
const std::vector<FilterParameter>& FilterParameters();

/// What the effect is to be set to. Numbers are rounded to ten-thousandths, which takes away what the way through 0 to
/// 1 adds; values beyond 0 and 1 stop there.
std::string EffectText(const FilterParameter& parameter, const FilterValue& value);
