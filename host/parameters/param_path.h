// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Names as they are typed, and the right name nearest to a wrong one.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace umbrant::host {

/// The form in which names are typed: lower case, each run of characters other than letters and digits one hyphen,
/// none at the ends. "Ease In & Out" gives "ease-in-out".
std::string PathForm(std::string_view name);

/// Number of single-character edits (insert, delete, replace) between two texts.
int EditDistance(std::string_view a, std::string_view b);

/// Up to `count` of `candidates`, the closest to `typed` first, none much farther off than the first. Empty when
/// nothing is close: more than half of the letters would have to change.
std::vector<std::string> Nearest(std::string_view typed, const std::vector<std::string>& candidates, std::size_t count);

}  // namespace umbrant::host
