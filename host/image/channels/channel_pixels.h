// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The pixels of a world from the chosen channels of a file, made straight. Inside host/image only.

#include <optional>
#include <string>
#include <utility>

#include "host/compositing/world.h"
#include "host/image/channels/picture_channels.h"

namespace umbrant::host {

/// The channels from the first to the last that are needed.
std::pair<int, int> RangeOf(const Channels& channels);

/// Reads all pixels into a world of the file's size, 8-bit or float. A colour channel that the file lacks is 0, or full
/// in a file of alpha only; a missing alpha is opaque. Returns the reason on failure. Throws std::bad_alloc.
std::optional<std::string> ReadPixels(ImageReader& input, const Channels& channels, World& world);

}  // namespace umbrant::host
