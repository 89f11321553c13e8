// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/drawbot/text.h"

#include <cstdint>
#include <vector>

namespace umbrant::host {

namespace {

constexpr char kEllipsis[] = "\xE2\x80\xA6";

bool IsHigh(uint32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLow(uint32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

void AppendUtf8(uint32_t character, std::string* text) {
    const auto tail = [text](uint32_t bits) { *text += static_cast<char>(0x80 | (bits & 0x3F)); };
    if (character < 0x80) {
        *text += static_cast<char>(character);
    } else if (character < 0x800) {
        *text += static_cast<char>(0xC0 | character >> 6);
        tail(character);
    } else if (character < 0x10000) {
        *text += static_cast<char>(0xE0 | character >> 12);
        tail(character >> 6);
        tail(character);
    } else {
        *text += static_cast<char>(0xF0 | character >> 18);
        tail(character >> 12);
        tail(character >> 6);
        tail(character);
    }
}

/// The places between characters, both ends included.
std::vector<std::size_t> Cuts(const std::string& text) {
    std::vector<std::size_t> cuts;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) cuts.push_back(i);
    }
    cuts.push_back(text.size());
    return cuts;
}

/// The text with `kept` of its characters left, the ellipsis where the style has it.
std::string Shortened(const std::string& text, const std::vector<std::size_t>& cuts, std::size_t kept,
                      DRAWBOT_TextTruncation style) {
    if (style == kDRAWBOT_TextTruncation_End) return text.substr(0, cuts[kept]);
    if (style != kDRAWBOT_TextTruncation_PathEllipsis) return text.substr(0, cuts[kept]) + kEllipsis;
    const std::size_t front = kept / 2;
    const std::size_t back = kept - front;
    return text.substr(0, cuts[front]) + kEllipsis + text.substr(cuts[cuts.size() - 1 - back]);
}

}  // namespace

std::string Utf8FromUtf16(const DRAWBOT_UTF16Char* text) {
    constexpr uint32_t kReplacement = 0xFFFD;
    std::string result;
    for (; *text != 0; ++text) {
        uint32_t character = *text;
        if (IsHigh(character) && IsLow(text[1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (text[1] - 0xDC00u);
            ++text;
        } else if (IsHigh(character) || IsLow(character)) {
            character = kReplacement;
        }
        AppendUtf8(character, &result);
    }
    return result;
}

std::string FitText(const Drawing& drawing, const std::string& text, double width, DRAWBOT_TextTruncation style) {
    if (style == kDRAWBOT_TextTruncation_None || drawing.TextWidth(text) <= width) return text;
    const std::vector<std::size_t> cuts = Cuts(text);
    std::size_t kept = cuts.size() - 1;
    while (kept > 0 && drawing.TextWidth(Shortened(text, cuts, kept, style)) > width) --kept;
    return Shortened(text, cuts, kept, style);
}

}  // namespace umbrant::host
