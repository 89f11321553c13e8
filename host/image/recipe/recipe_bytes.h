// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the formats of recipe_text.h store a recipe, for their readers and writers. Inside host/image/recipe only.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/image/recipe/recipe_text.h"

namespace umbrant::host {

/// A TIFF's tag of the range that the format leaves to everybody.
inline constexpr std::uint16_t kRecipeTag = 65123;
/// A JPEG's application segment; kRecipeName with a zero, the part's number from 1, the number of parts, the text.
inline constexpr std::uint8_t kRecipeMarker = 0xe4;
/// The identifier of a box.
inline constexpr std::string_view kRecipeUuid("\xc8\x0d\x0e\x5b\x6f\x7a\x4a\x2e\x9f\x31\x52\x8a\x4b\x1d\x90\x6e", 16);

/// No more chunks, attributes or boxes of a file are looked at.
inline constexpr int kMostParts = 100'000;

/// The bytes from a place, of which all must be there, else nothing.
std::optional<std::string> TextAt(const ByteSource& file, std::uint64_t at, std::uint64_t count);

/// A number of 1 to 8 bytes; nothing behind the end of the file.
std::optional<std::uint64_t> NumberAt(const ByteSource& file, std::uint64_t at, int bytes, bool isBigEndian = true);

/// The text that ends with a zero, without it, of at most `most` bytes; nothing if no zero follows.
std::optional<std::string> ZeroEndedAt(const ByteSource& file, std::uint64_t at, std::size_t most);

/// A text that was found; a damaged one without a text, or with one that is too long.
FoundRecipe Found(const std::optional<std::string>& text);

FoundRecipe FindInPng(const ByteSource& file);
FoundRecipe FindInExr(const ByteSource& file);
FoundRecipe FindInTiff(const ByteSource& file);
FoundRecipe FindInJpeg(const ByteSource& file);
FoundRecipe FindInBoxes(const ByteSource& file);
FoundRecipe FindInMatroska(const ByteSource& file);

}  // namespace umbrant::host
