// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Texts of formats that are older than UTF-8.

#include <optional>
#include <string>

namespace umbrant::host {

/// Whether the bytes are valid UTF-8.
bool IsUtf8(const std::string& text);

/// UTF-8 of a text in ISO 8859-1. Bytes that are UTF-8 already stay: many programs write them where they may not.
std::string Utf8OfLatin(const std::string& text);

/// ISO 8859-1 of a text in UTF-8; nothing where that has no such character.
std::optional<std::string> LatinOfUtf8(const std::string& text);

}  // namespace umbrant::host
