// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The channels of an EXR: which there are, and their order in a layout, which is the image library's. Inside host/image
// only.

#include <OpenEXR/openexr.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/image/image_layout.h"

namespace umbrant::host {

/// A channel of the file.
struct ExrChannel {
    std::string name, layer, suffix;
    int rank = 0;  ///< among those of its layer
    exr_pixel_type_t type = EXR_PIXEL_HALF;
    int number = 0;  ///< in the file's order

    std::size_t Size() const { return type == EXR_PIXEL_HALF ? 2 : 4; }
};

/// The channels in the file's order; nothing for a file with channels that cannot be read here: whole numbers, or fewer
/// values than pixels.
std::optional<std::vector<ExrChannel>> ExrChannelsOf(exr_const_context_t file);

/// Names them in the layout in their order there, and says which is alpha and how many bytes a value has. Gives the
/// place of each of them in that order; nothing when two channels have one name.
std::optional<std::vector<int>> NameExrChannels(const std::vector<ExrChannel>& channels, ImageLayout& layout);

}  // namespace umbrant::host
