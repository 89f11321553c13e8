// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recipe in a clip: a box of MOV and MP4, which players pass over, and a tag of Matroska and WebM.

#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "host/image/recipe/recipe_bytes.h"

namespace umbrant::host {

namespace {

/// An element of a Matroska file.
struct Element {
    std::uint64_t id = 0;
    std::uint64_t content = 0;  ///< where its content begins
    std::uint64_t end = 0;      ///< and ends
};

/// A number whose first byte's leading zeros give its length; with `keepsMark` as it is, for an element's name.
std::optional<std::uint64_t> VariableNumber(const ByteSource& file, std::uint64_t& at, bool keepsMark) {
    const auto first = NumberAt(file, at, 1);
    if (!first || *first == 0) return std::nullopt;
    int bytes = 1;
    while ((*first & (std::uint64_t{0x80} >> (bytes - 1))) == 0) ++bytes;
    const auto number = NumberAt(file, at, bytes);
    if (!number) return std::nullopt;
    at += static_cast<std::uint64_t>(bytes);
    const std::uint64_t mark = std::uint64_t{1} << (7 * bytes);
    if (keepsMark) return number;
    // All bits set mean an unknown length: everything up to the end of what encloses it.
    const std::uint64_t value = *number & (mark - 1);
    return value == mark - 1 ? UINT64_MAX : value;
}

std::optional<Element> ElementAt(const ByteSource& file, std::uint64_t at, std::uint64_t end) {
    if (at >= end) return std::nullopt;
    Element element;
    const auto id = VariableNumber(file, at, true);
    if (!id) return std::nullopt;
    const auto size = VariableNumber(file, at, false);
    if (!size) return std::nullopt;
    element.id = *id;
    element.content = at;
    element.end = *size > end - std::min(at, end) ? end : at + *size;
    return element;
}

constexpr std::uint64_t kSegment = 0x18538067, kTags = 0x1254c367, kTag = 0x7373, kSimpleTag = 0x67c8;
constexpr std::uint64_t kTagName = 0x45a3, kTagText = 0x4487;

/// Searches the elements of one for a tag of the recipe's name. `parts` counts what was looked at.
std::optional<FoundRecipe> FindTag(const ByteSource& file, const Element& within, int& parts) {
    std::string name;
    std::optional<std::string> text;
    for (std::uint64_t at = within.content; parts < kMostParts; ++parts) {
        const auto element = ElementAt(file, at, within.end);
        if (!element) break;
        const std::uint64_t size = element->end - element->content;
        const bool encloses =
            (element->id == kSegment && within.id == 0) || (element->id == kTags && within.id == kSegment) ||
            (element->id == kTag && within.id == kTags) || (element->id == kSimpleTag && within.id == kTag);
        if (encloses) {
            ++parts;
            if (auto found = FindTag(file, *element, parts)) return found;
        } else if (within.id == kSimpleTag && element->id == kTagName) {
            name = TextAt(file, element->content, std::min<std::uint64_t>(size, 64)).value_or("");
        } else if (within.id == kSimpleTag && element->id == kTagText) {
            text = TextAt(file, element->content, size);
        }
        at = element->end;
    }
    if (within.id != kSimpleTag || strcasecmp(name.c_str(), kRecipeName) != 0) return std::nullopt;
    return Found(text);
}

}  // namespace

FoundRecipe FindInBoxes(const ByteSource& file) {
    std::uint64_t at = 0;
    for (int i = 0; i < kMostParts; ++i) {
        auto size = NumberAt(file, at, 4);
        const auto type = TextAt(file, at + 4, 4);
        if (!size || !type) break;
        std::uint64_t header = 8;
        if (*size == 1) {
            size = NumberAt(file, at + 8, 8);
            header = 16;
        }
        // A box without a size is the last.
        if (!size || *size < header) break;
        if (*type == "uuid" && TextAt(file, at + header, kRecipeUuid.size()) == kRecipeUuid) {
            header += kRecipeUuid.size();
            return Found(*size < header ? std::nullopt : TextAt(file, at + header, *size - header));
        }
        if (*size > UINT64_MAX / 2 - at) break;
        at += *size;
    }
    return {};
}

FoundRecipe FindInMatroska(const ByteSource& file) {
    int parts = 0;
    return FindTag(file, {0, 0, UINT64_MAX / 2}, parts).value_or(FoundRecipe{});
}

std::string RecipeBox(std::string_view text) {
    const auto size = static_cast<std::uint32_t>(8 + kRecipeUuid.size() + text.size());
    std::string box;
    for (int shift = 24; shift >= 0; shift -= 8) box += static_cast<char>(size >> shift & 255);
    box += "uuid";
    box += kRecipeUuid;
    box += text;
    return box;
}

std::optional<std::string> AppendRecipeBox(std::string_view text, int descriptor) {
    if (lseek(descriptor, 0, SEEK_END) < 0) return std::strerror(errno);
    const std::string box = RecipeBox(text);
    return WriteAll(descriptor, std::as_bytes(std::span(box)));
}

}  // namespace umbrant::host
