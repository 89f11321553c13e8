// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/png/latin_text.h"

#include <cstddef>
#include <cstdint>

namespace umbrant::host {

namespace {

/// The character that begins at a place, and moves the place behind it; nothing where the bytes are no UTF-8.
std::optional<std::uint32_t> NextCharacter(const std::string& text, std::size_t& at) {
    const auto first = static_cast<unsigned char>(text[at++]);
    if (first < 0x80) return first;
    const int more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
    if (first < 0xc2 || first > 0xf4) return std::nullopt;
    std::uint32_t character = first & (0x3fu >> more);
    for (int i = 0; i < more; ++i, ++at) {
        if (at >= text.size() || (static_cast<unsigned char>(text[at]) & 0xc0u) != 0x80u) return std::nullopt;
        character = character << 6 | (static_cast<unsigned char>(text[at]) & 0x3fu);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};
    if (character < kSmallest[more] || character > 0x10ffff) return std::nullopt;
    if (character >= 0xd800 && character < 0xe000) return std::nullopt;
    return character;
}

}  // namespace

bool IsUtf8(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        if (!NextCharacter(text, at)) return false;
    }
    return true;
}

std::string Utf8OfLatin(const std::string& text) {
    if (IsUtf8(text)) return text;
    std::string utf8;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            utf8 += c;
        } else {
            utf8 += static_cast<char>(0xc0 | byte >> 6);
            utf8 += static_cast<char>(0x80 | (byte & 0x3f));
        }
    }
    return utf8;
}

std::optional<std::string> LatinOfUtf8(const std::string& text) {
    std::string latin;
    for (std::size_t at = 0; at < text.size();) {
        const auto character = NextCharacter(text, at);
        if (!character || *character > 0xff) return std::nullopt;
        latin += static_cast<char>(*character);
    }
    return latin;
}

}  // namespace umbrant::host
