// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/metadata.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace umbrant::host {

namespace {

/// Attributes about the storage of a file, or internal to the image library, by the prefixes of their names.
constexpr std::string_view kStorage[] = {
    "oiio:",
    "openexr:",
    "tiff:",
    "png:",
    "jpeg:",
    "compression",
    "planarconfig",
    "thumbnail",
    "textureformat",
    "wrapmodes",
    "multiview",
    "interlaced",
    "tile",
    "type",
    "chunkcount",
    "lineorder",
    "name",
    "view",
    "exif:pixelx",
    "exif:pixely",
    // Values that the library reads from a profile, which is kept itself.
    "iccprofile:",
    // What an image was drawn with says nothing about one that is drawn from it.
    "umbrant:",
};

/// The two attributes of the library that describe the meaning of the numbers.
constexpr std::string_view kColor[] = {"oiio:colorspace", "oiio:gamma"};

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

/// Four characters of a profile, for a message.
std::string ProfileWord(const unsigned char* bytes) {
    std::string word(bytes, bytes + 4);
    while (!word.empty() && word.back() == ' ') word.pop_back();
    std::replace_if(
        word.begin(), word.end(), [](unsigned char c) { return !std::isprint(c); }, '?');
    return word;
}

std::uint32_t Number(const unsigned char* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

/// Why a colour profile cannot go with the red, green and blue that are written, or nothing when it can. What an
/// encoder would refuse is refused here.
std::optional<std::string> WhyNoProfile(const Attribute& attribute) {
    if (attribute.type.base != AttributeType::kUint8) return "a text, not a profile";
    constexpr std::size_t kHeader = 132, kTag = 12;
    const auto* bytes = reinterpret_cast<const unsigned char*>(attribute.bytes.data());
    const std::size_t size = attribute.bytes.size();
    const auto has = [&](std::size_t at, std::string_view word) {
        return std::memcmp(bytes + at, word.data(), 4) == 0;
    };
    if (size < kHeader || Number(bytes) != size || (bytes[8] > 3 && size % 4 != 0)) return "the length is wrong";
    if (!has(36, "acsp")) return "damaged";
    if (!has(16, "RGB ")) return fmt::format("for '{}', not for RGB", ProfileWord(bytes + 16));
    if (!has(20, "XYZ ") && !has(20, "Lab ")) return "damaged";
    if (!has(12, "mntr") && !has(12, "scnr") && !has(12, "prtr") && !has(12, "spac")) {
        return "not a profile of image colours";
    }
    if (Number(bytes + 64) > 3) return "the rendering intent is unknown";
    constexpr unsigned char kD50[] = {0, 0, 0xf6, 0xd6, 0, 1, 0, 0, 0, 0, 0xd3, 0x2d};
    if (std::memcmp(bytes + 68, kD50, sizeof kD50) != 0) return "the white point is not D50";
    const std::size_t tags = Number(bytes + 128);
    if (tags > (size - kHeader) / kTag) return "damaged";
    for (std::size_t i = 0; i < tags; ++i) {
        const std::size_t start = Number(bytes + kHeader + i * kTag + 4);
        const std::size_t length = Number(bytes + kHeader + i * kTag + 8);
        if (start > size || length > size - start || start % 4 != 0) return "damaged";
    }
    return std::nullopt;
}

bool Survives(const std::string& name) {
    if (std::find(std::begin(kColor), std::end(kColor), name) != std::end(kColor)) return true;
    return std::none_of(std::begin(kStorage), std::end(kStorage),
                        [&](std::string_view prefix) { return name.starts_with(prefix); });
}

}  // namespace

PictureMetadata MetadataOf(const ImageLayout& layout, const std::string& format) {
    PictureMetadata metadata;
    metadata.format = format;
    metadata.compression = layout.Text("compression");
    for (const Attribute& attribute : layout.attributes) {
        const std::string name = Lower(attribute.name);
        if (name == "iccprofile") {
            if (auto reason = WhyNoProfile(attribute)) {
                metadata.dropped = std::move(*reason);
                continue;
            }
        }
        if (Survives(name)) metadata.attributes.push_back(attribute);
    }
    return metadata;
}

void AddMetadata(const PictureMetadata& metadata, ImageLayout& layout) {
    for (const Attribute& attribute : metadata.attributes) layout.Set(attribute);
}

void FixDate(ImageLayout& layout) {
    if (!layout.Text("DateTime").empty()) return;
    if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH")) {
        std::time_t seconds = 0;
        const char* end = epoch + std::strlen(epoch);
        const auto [stop, error] = std::from_chars(epoch, end, seconds);
        std::tm date{};
        char text[64];
        if (error == std::errc() && stop == end && gmtime_r(&seconds, &date) &&
            std::strftime(text, sizeof text, "%Y:%m:%d %H:%M:%S", &date) == 19) {
            layout.SetText("DateTime", text);
            return;
        }
    }
    // An attribute of that name keeps the library from adding one, and a number is no date that it could write.
    layout.SetNumber("DateTime", 0);
}

}  // namespace umbrant::host
