// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/parameters/value_text.h"

#include <fmt/format.h>

#include "host/parameters/param_path.h"

namespace umbrant::host {

std::string NumberText(double value) {
    return fmt::format("{}", value);
}

std::string NumberText(float value) {
    return fmt::format("{}", value);
}

bool IsSeparator(const std::string& item) {
    return item.starts_with("(-");
}

std::string ItemForm(const std::string& item) {
    return IsSeparator(item) ? std::string() : PathForm(item);
}

}  // namespace umbrant::host
