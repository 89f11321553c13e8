// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recipe in application segments of a JPEG, behind the one that must be the first.

#include <algorithm>
#include <utility>

#include "host/image/recipe/put_formats.h"
#include "host/image/recipe/recipe_bytes.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kHeader = sizeof kRecipeName + 2;
constexpr std::size_t kLongestPart = 65'000;

/// A segment from its marker on, with `size` bytes of content.
std::string SegmentBegin(std::uint8_t marker, std::size_t size) {
    const std::size_t length = size + 2;
    return {'\xff', static_cast<char>(marker), static_cast<char>(length >> 8), static_cast<char>(length & 255)};
}

std::string Segments(std::string_view text) {
    const std::size_t parts = std::max<std::size_t>(1, (text.size() + kLongestPart - 1) / kLongestPart);
    std::string all;
    for (std::size_t i = 0; i < parts; ++i) {
        const std::string_view part = text.substr(i * kLongestPart, kLongestPart);
        all += SegmentBegin(kRecipeMarker, kHeader + part.size());
        all.append(kRecipeName, sizeof kRecipeName);
        all += static_cast<char>(i + 1);
        all += static_cast<char>(parts);
        all += part;
    }
    return all;
}

}  // namespace

FoundRecipe FindInJpeg(const ByteSource& file) {
    const std::string key(kRecipeName, sizeof kRecipeName);
    constexpr std::uint64_t kScan = 0xffda, kEnd = 0xffd9;
    std::string text;
    std::size_t parts = 0;
    std::uint64_t at = 2;
    for (int i = 0; i < kMostParts; ++i) {
        const auto marker = NumberAt(file, at, 2);
        const auto size = NumberAt(file, at + 2, 2);
        if (!marker || !size || *marker == kScan || *marker == kEnd || *marker < 0xff01 || *size < 2) break;
        if (*marker == (0xff00 | kRecipeMarker) && *size >= kHeader + 2 && TextAt(file, at + 4, key.size()) == key) {
            const auto part = TextAt(file, at + 4 + key.size(), *size - 2 - key.size());
            if (!part || part->front() != static_cast<char>(++parts)) return Found(std::nullopt);
            text += part->substr(2);
            if (text.size() > kMostRecipeBytes) return Found(std::nullopt);
            if (part->at(1) == part->front()) return Found(text);
        }
        at += 2 + *size;
    }
    return parts == 0 ? FoundRecipe{} : Found(std::nullopt);
}

void PutIntoJpeg(std::string_view text, EncodedFile& encoded) {
    const EncodedBytes bytes(encoded);
    std::uint64_t at = 2;
    constexpr std::uint64_t kFirst = 0xffe0;
    if (NumberAt(bytes, at, 2) == kFirst) at += 2 + NumberAt(bytes, at + 2, 2).value_or(0);
    if (at > encoded.Size()) return;
    const std::string segments = Segments(text);
    EncodedFile whole;
    std::string block(std::size_t{1} << 16, '\0');
    for (std::uint64_t from = 0; from < encoded.Size();) {
        if (from == at) whole.Append(std::as_bytes(std::span(segments)));
        const std::uint64_t until = from < at ? at : encoded.Size();
        const std::span part(block.data(), std::min<std::size_t>(block.size(), until - from));
        const std::size_t count = encoded.Read(from, std::as_writable_bytes(part));
        if (count == 0) return;
        whole.Append(std::as_bytes(part.first(count)));
        from += count;
    }
    encoded = std::move(whole);
}

void PutRecipe(std::string_view text, EncodedFile& encoded) {
    if (text.size() > kMostRecipeBytes) return;
    const auto begin = TextAt(EncodedBytes(encoded), 0, 4);
    if (!begin) return;
    if (begin->starts_with("\xff\xd8")) PutIntoJpeg(text, encoded);
    if (begin->starts_with("II") || begin->starts_with("MM")) PutIntoTiff(text, encoded);
}

}  // namespace umbrant::host
