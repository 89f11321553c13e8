// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pictures written and read by the image library itself, so that reading and writing are not checked by each other.

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <vector>

namespace umbrant::host {

/// Writes every pixel with the same values, given per channel as they are to stand in the file. The alpha, if any, is
/// called "A"; `straight` declares it unassociated.
void WriteFile(const std::filesystem::path& file, OIIO::ImageSpec layout, const std::vector<float>& pixel,
               bool straight = true);

/// A file as the image library sees it: its description and its untouched values.
struct RawFile {
    OIIO::ImageSpec layout;
    std::vector<float> values;
};

RawFile ReadRaw(const std::filesystem::path& file);

}  // namespace umbrant::host
