// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The recipe in a PNG's texts: as this program writes it, and as other programs store a text that they keep.

#include <zlib.h>

#include "host/image/recipe/recipe_bytes.h"

namespace umbrant::host {

namespace {

/// What the bytes of a zlib stream unpack to.
std::optional<std::string> Unpacked(std::string_view packed) {
    std::string text(kMostRecipeBytes + 1, '\0');
    uLongf size = text.size();
    if (uncompress(reinterpret_cast<Bytef*>(text.data()), &size, reinterpret_cast<const Bytef*>(packed.data()),
                   packed.size()) != Z_OK) {
        return std::nullopt;
    }
    text.resize(size);
    return text;
}

/// The text behind the key of a chunk of international text.
std::optional<std::string> InternationalText(std::string_view bytes) {
    if (bytes.size() < 4) return std::nullopt;
    const bool isPacked = bytes[0] != '\0';
    std::size_t at = bytes.find('\0', 2);
    if (at != std::string_view::npos) at = bytes.find('\0', at + 1);
    if (at == std::string_view::npos) return std::nullopt;
    const std::string_view text = bytes.substr(at + 1);
    return isPacked ? Unpacked(text) : std::string(text);
}

std::optional<std::string> TextOf(std::string_view type, std::string_view bytes) {
    if (type == "tEXt") return std::string(bytes);
    if (type == "zTXt") return bytes.empty() ? std::nullopt : Unpacked(bytes.substr(1));
    return InternationalText(bytes);
}

}  // namespace

FoundRecipe FindInPng(const ByteSource& file) {
    const std::string key = std::string(kRecipeName) + '\0';
    std::uint64_t at = 8;
    for (int i = 0; i < kMostParts; ++i) {
        const auto size = NumberAt(file, at, 4);
        const auto type = TextAt(file, at + 4, 4);
        if (!size || !type || *type == "IEND") break;
        const bool isText = *type == "tEXt" || *type == "zTXt" || *type == "iTXt";
        if (isText && *size >= key.size() && TextAt(file, at + 8, key.size()) == key) {
            const auto chunk = TextAt(file, at + 4, *size + 4);
            const auto sum = NumberAt(file, at + 8 + *size, 4);
            if (!chunk || !sum) return Found(std::nullopt);
            const auto* const bytes = reinterpret_cast<const Bytef*>(chunk->data());
            if (crc32_z(0, bytes, chunk->size()) != *sum) return Found(std::nullopt);
            return Found(TextOf(*type, std::string_view(*chunk).substr(4 + key.size())));
        }
        at += 12 + *size;
    }
    return {};
}

}  // namespace umbrant::host
