// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Any bytes as one word of a bash script.

#include <string>
#include <string_view>
#include <vector>

namespace umbrant::host {

/// The text as a word that bash reads as exactly these bytes. It has no line break, is valid UTF-8 and contains no pair
/// of braces that a template could take for its own.
std::string ShellWord(std::string_view text);

/// Several words, separated by spaces.
std::string ShellWords(const std::vector<std::string>& texts);

}  // namespace umbrant::host
