// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The metadata that is kept from the input file. For host/image only.

#include <string>
#include <vector>

#include "host/image/image_layout.h"
#include "host/image/picture.h"

namespace umbrant::host {

struct PictureMetadata {
    std::vector<Attribute> attributes;
    std::string format;       ///< of the file that they come from
    std::string compression;  ///< of that file; empty where it has none
    std::string dropped;      ///< why its colour profile is left out; empty where it has none or it is kept
};

/// Takes from a file's description what is about the picture, and leaves what is about how the file is stored.
PictureMetadata MetadataOf(const ImageLayout& layout, const std::string& format);

/// Adds the attributes to the description of a file of a format.
void AddMetadata(const PictureMetadata& metadata, ImageLayout& layout);

/// Puts these words about the colours in the place of all others of a description; primaries where the format has them.
void SetColors(const ColorWords& words, bool hasPrimaries, ImageLayout& layout);

/// Makes the date of the description one that does not depend on when it is written: the one that it has, else the time
/// of the environment's SOURCE_DATE_EPOCH, else none, also where the image library would take the present.
void FixDate(ImageLayout& layout);

}  // namespace umbrant::host
