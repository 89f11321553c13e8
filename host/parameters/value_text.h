// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What reading and writing values as text have in common.

#include <string>

namespace umbrant::host {

/// The shortest decimal number that reads back as this value.
std::string NumberText(double value);
std::string NumberText(float value);

/// Whether a popup's item is a line between items and no choice.
bool IsSeparator(const std::string& item);

/// A popup's item as it is typed; empty for separators and items without letters or digits.
std::string ItemForm(const std::string& item);

}  // namespace umbrant::host
