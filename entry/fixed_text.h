// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Texts in fields of fixed size, as the interface's records have them.

#include <cstddef>
#include <cstring>

namespace umbrant::effect {

/// Copies a text into the field, cut to fit, and ends it with a zero byte. What follows that byte stays as it is.
template <std::size_t kSize>
void CopyText(const char* text, char (&field)[kSize]) {
    const std::size_t length = strnlen(text, kSize - 1);
    std::memcpy(field, text, length);
    field[length] = '\0';
}

}  // namespace umbrant::effect
