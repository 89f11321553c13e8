// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The metadata of an image that a PNG stores as texts. Inside host/image only.

#include <string>
#include <vector>

#include "host/image/image_layout.h"

namespace umbrant::host {

/// A text as PNG has it: in ISO 8859-1, or where that has no such characters in UTF-8.
struct PngText {
    std::string key;
    std::string text;
    bool isUnicode;
};

/// The texts of an image, in its order, under the names that PNG gives them. What has a chunk of its own is left out.
std::vector<PngText> PngTextsOf(const ImageLayout& layout);

}  // namespace umbrant::host
