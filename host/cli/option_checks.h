// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Checks of options that several commands have.

#include <string>

namespace umbrant::host {

/// For an option's check: why `text` is not a number from `low` to `high`, or an empty text.
std::string OutOfRange(const std::string& text, double low, double high);

}  // namespace umbrant::host
