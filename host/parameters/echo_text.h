// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Texts of a user's, and rows, as messages show them.

#include <string>
#include <string_view>

#include "host/parameters/param_row.h"

namespace umbrant::host {

/// At most 200 characters of the text, followed by "..." where it is longer, and control characters as JSON escapes
/// them ("\n", "\u0000").
std::string EchoText(std::string_view text);

/// The row's path in quotes, or its index: "'style/distance'", "#17".
std::string RowLabel(const ParamRow& row);

}  // namespace umbrant::host
