// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/parameters/echo_text.h"

#include <fmt/format.h>

#include <cstddef>

namespace umbrant::host {

std::string EchoText(std::string_view text) {
    constexpr std::size_t kMostCharacters = 200;
    std::string echo;
    std::size_t characters = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool begins = (byte & 0xC0) != 0x80;
        if (begins && characters == kMostCharacters) return echo + "...";
        if (begins) ++characters;
        if (byte == '\n') {
            echo += "\\n";
        } else if (byte == '\t') {
            echo += "\\t";
        } else if (byte < 0x20 || byte == 0x7f) {
            echo += fmt::format("\\u{:04x}", byte);
        } else {
            echo += c;
        }
    }
    return echo;
}

std::string RowLabel(const ParamRow& row) {
    return row.path.empty() ? fmt::format("#{}", row.index) : fmt::format("'{}'", row.path);
}

}  // namespace umbrant::host
