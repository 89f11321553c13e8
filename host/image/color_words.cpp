// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What files say about the meaning of their colours: set for converted colours, and reported where an output cannot say
// what its input did.

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <iterator>

#include "host/image/metadata.h"
#include "host/image/picture_format.h"

namespace umbrant::host {

namespace {

/// All attributes about the meaning of the colours.
constexpr const char* kAboutColors[] = {"ICCProfile",     "oiio:ColorSpace", "oiio:Gamma",
                                        "chromaticities", "Exif:ColorSpace", "acesImageContainerFlag"};

const Attribute* Find(const PictureMetadata& metadata, const char* name) {
    const auto found =
        std::find_if(metadata.attributes.begin(), metadata.attributes.end(),
                     [&](const Attribute& attribute) { return strcasecmp(attribute.name.c_str(), name) == 0; });
    return found == metadata.attributes.end() ? nullptr : &*found;
}

/// Whether programs take the numbers of an image file for what a display shows.
bool IsForDisplays(const PictureMetadata& metadata) {
    if (metadata.format != "png" && metadata.format != "jpeg") return false;
    const Attribute* space = Find(metadata, "oiio:ColorSpace");
    return !space || space->texts.size() != 1 || strcasecmp(space->texts.front().c_str(), "linear") != 0;
}

}  // namespace

void SetColors(const ColorWords& words, bool hasPrimaries, ImageLayout& layout) {
    std::erase_if(layout.attributes, [](const Attribute& attribute) {
        return std::any_of(std::begin(kAboutColors), std::end(kAboutColors),
                           [&](const char* name) { return strcasecmp(attribute.name.c_str(), name) == 0; });
    });
    if (!words.space.empty()) layout.SetText("oiio:ColorSpace", words.space);
    if (words.gamma > 0) layout.SetReal("oiio:Gamma", words.gamma);
    if (!hasPrimaries || words.primaries == decltype(words.primaries){}) return;
    Attribute primaries{"chromaticities", {AttributeType::kFloat, 1, 0, 8}, {}, {}};
    const auto bytes = std::as_bytes(std::span(words.primaries));
    primaries.bytes.assign(bytes.begin(), bytes.end());
    layout.Set(std::move(primaries));
}

std::string ColorNote(const PictureMetadata* metadata, const std::string& input, const std::string& output,
                      const std::string& format, bool isConverted, const std::optional<ColorWords>& colors) {
    if (!metadata) return "";
    const Format* const written = FormatOf(output, format);
    const bool isExr = written && written->name == "openexr";
    if (const Attribute* profile = Find(*metadata, "ICCProfile"); profile && !profile->bytes.empty()) {
        const char* reason = colors    ? "the colours are converted to another space"
                             : isExr   ? "an EXR has no place for one"
                             : written ? nullptr
                                       : "a clip has no place for one";
        if (reason) return fmt::format("the colour profile of '{}' is left out: {}", input, reason);
    }
    if (isConverted || !written) return "";
    const bool toDisplay = written->name == "png" || written->name == "jpeg";
    const bool differs = isExr ? IsForDisplays(*metadata) : toDisplay && metadata->format == "openexr";
    if (!differs) return "";
    const char* const words[] = {"sRGB", "linear"};
    return fmt::format(
        "the numbers of the colours stay as they are, although most programs read '{}' as {} and '{}' as {}; "
        "--input-space and --output-space convert them",
        input, words[isExr ? 0 : 1], output, words[isExr ? 1 : 0]);
}

}  // namespace umbrant::host
