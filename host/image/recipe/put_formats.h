// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The formats whose bytes are changed after they were encoded. Inside host/image/recipe only.

#include <string_view>

#include "host/image/encoded_file.h"
#include "host/image/recipe/recipe_text.h"

namespace umbrant::host {

/// An encoded file as a source of bytes; it must outlive this.
class EncodedBytes : public ByteSource {
 public:
    explicit EncodedBytes(const EncodedFile& encoded) : encoded_(encoded) {}
    std::size_t Read(std::uint64_t at, std::span<std::byte> bytes) const override { return encoded_.Read(at, bytes); }

 private:
    const EncodedFile& encoded_;
};

void PutIntoTiff(std::string_view text, EncodedFile& encoded);
void PutIntoJpeg(std::string_view text, EncodedFile& encoded);

}  // namespace umbrant::host
