// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/shell_word.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace umbrant::host {

namespace {

/// Characters that mean nothing to a shell anywhere in a word.
bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_-./,:=+@%").find(c) != std::string_view::npos;
}

bool IsControl(char c) {
    return (static_cast<unsigned char>(c) < 0x20) || c == 0x7f;
}

/// Bytes of the character at the front of the text in UTF-8, 0 for none: RFC 3629, section 4.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    const std::size_t length = first >= 0xc2 && first <= 0xdf ? 2 : first >= 0xe0 && first <= 0xef ? 3 : 4;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) return 0;
    // The second byte keeps out what has a shorter form, surrogates, and values above the last character.
    const unsigned low = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;
    const unsigned high = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf;
    if (byte(1) < low || byte(1) > high) return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(i) < 0x80 || byte(i) > 0xbf) return 0;
    }
    return length;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

/// Bash's form with escapes: whatever is no plain printable character becomes a number.
std::string Escaped(std::string_view text) {
    std::string word = "$'";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool asIs = byte >= 0x20 && byte < 0x7f && c != '\'' && c != '\\' && c != '{' && c != '}';
        word += asIs ? std::string(1, c) : fmt::format("\\{:03o}", byte);
    }
    return word + "'";
}

}  // namespace

std::string ShellWord(std::string_view text) {
    // A tilde, a # and the like mean something at the front of a word alone; none of them is plain.
    if (!text.empty() && std::all_of(text.begin(), text.end(), IsPlain)) return std::string(text);
    const bool braces = text.find("{{") != std::string_view::npos || text.find("}}") != std::string_view::npos;
    if (braces || std::any_of(text.begin(), text.end(), IsControl) || !IsUtf8(text)) return Escaped(text);
    std::string word = "'";
    for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

std::string ShellWords(const std::vector<std::string>& texts) {
    std::string line;
    for (const std::string& text : texts) line += (line.empty() ? "" : " ") + ShellWord(text);
    return line;
}

}  // namespace umbrant::host
