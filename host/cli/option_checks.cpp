// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/option_checks.h"

#include <fmt/format.h>

#include <cstdlib>

namespace umbrant::host {

std::string OutOfRange(const std::string& text, double low, double high) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    // Written so that not-a-number, which is neither below nor above, is refused too.
    if (end != text.c_str() && *end == '\0' && value >= low && value <= high) return "";
    return fmt::format("'{}' is not a number from {} to {}", text, low, high);
}

}  // namespace umbrant::host
