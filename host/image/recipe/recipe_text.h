// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The recipe of an image or a clip in its file: a text under one name, whatever the format. What the text says is known
// to host/cli alone.
//
//   PNG             a text chunk before the pixels
//   EXR             a string attribute of the first part
//   TIFF            a private tag of the first directory
//   JPEG            application segments
//   MOV, MP4        a box of the type "uuid" after all others
//   Matroska, WebM  a global tag

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/image/encoded_file.h"

namespace umbrant::host {

/// The text's name in every format that has names.
inline constexpr char kRecipeName[] = "umbrant:recipe";

/// A longer text is neither written nor read.
inline constexpr std::size_t kMostRecipeBytes = 100'000;

/// The bytes of a file, any part at a time.
class ByteSource {
 public:
    virtual ~ByteSource() = default;
    /// Fills `bytes` from a place. Returns how many there are.
    virtual std::size_t Read(std::uint64_t at, std::span<std::byte> bytes) const = 0;
};

/// Bytes in memory, which must outlive this.
class MemoryBytes : public ByteSource {
 public:
    explicit MemoryBytes(std::span<const std::byte> bytes) : bytes_(bytes) {}
    std::size_t Read(std::uint64_t at, std::span<std::byte> bytes) const override;

 private:
    std::span<const std::byte> bytes_;
};

/// An open regular file; the descriptor stays its owner's.
class DescriptorBytes : public ByteSource {
 public:
    explicit DescriptorBytes(int descriptor) : descriptor_(descriptor) {}
    std::size_t Read(std::uint64_t at, std::span<std::byte> bytes) const override;

 private:
    int descriptor_;
};

struct FoundRecipe {
    enum class Kind {
        kFound,
        kNone,      ///< a file of a format that can have a recipe, without one
        kDamaged,   ///< there is one, and it is not whole
        kNoFormat,  ///< no format of the list above
    };
    Kind kind = Kind::kNone;
    std::string text{};  ///< of at most kMostRecipeBytes bytes
};

/// Looks for the recipe of a file. Takes any bytes; the time depends on the number of the file's parts (chunks,
/// attributes, boxes), of which it looks at 100,000 at most, and not on their lengths.
FoundRecipe FindRecipe(const ByteSource& file);

/// Adds the recipe to a whole TIFF or JPEG. Any other file, and a text that is too long, leaves the bytes as they are.
void PutRecipe(std::string_view text, EncodedFile& encoded);

/// The recipe as a box for the end of a MOV or an MP4.
std::string RecipeBox(std::string_view text);

/// Writes that box behind the last byte of an open file. Returns why that failed, or nothing.
std::optional<std::string> AppendRecipeBox(std::string_view text, int descriptor);

}  // namespace umbrant::host
