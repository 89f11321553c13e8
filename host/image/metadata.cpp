// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/metadata.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace {

/// Attributes that say how a file is stored, or that the image library keeps for itself, by how their names begin.
constexpr std::string_view kStorage[] = {
    "oiio:",      "openexr:",      "tiff:",     "png:",      "jpeg:",       "compression", "planarconfig",
    "thumbnail",  "textureformat", "wrapmodes", "multiview", "interlaced",  "tile",        "type",
    "chunkcount", "lineorder",     "name",      "view",      "exif:pixelx", "exif:pixely",
};

/// Of the library's own the two that say what the numbers mean.
constexpr std::string_view kColor[] = {"oiio:colorspace", "oiio:gamma"};

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

bool Survives(const std::string& name, const OIIO::ImageSpec& layout) {
    // A profile for grey or for inks would be wrong for the three colours that are written.
    if (name == "iccprofile") return layout.nchannels - (layout.alpha_channel < 0 ? 0 : 1) == 3;
    if (std::find(std::begin(kColor), std::end(kColor), name) != std::end(kColor)) return true;
    return std::none_of(std::begin(kStorage), std::end(kStorage),
                        [&](std::string_view prefix) { return name.starts_with(prefix); });
}

}  // namespace

PictureMetadata MetadataOf(const OIIO::ImageSpec& layout, const std::string& format) {
    PictureMetadata metadata;
    metadata.format = format;
    metadata.compression = layout.get_string_attribute("compression");
    for (const OIIO::ParamValue& attribute : layout.extra_attribs) {
        if (Survives(Lower(attribute.name().string()), layout)) metadata.attributes.push_back(attribute);
    }
    return metadata;
}

void AddMetadata(const PictureMetadata& metadata, OIIO::ImageSpec& layout) {
    for (const OIIO::ParamValue& attribute : metadata.attributes) layout.extra_attribs.add_or_replace(attribute);
}
