// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Writing EXR by OpenEXR's core against the image library: what both write is read alike, or it is the library's.

#include <gtest/gtest.h>

#include <span>

#include "host/image/encoded_file.h"
#include "host/image/exr/exr_writer.h"
#include "host/image/picture.h"
#include "host/image/picture_format.h"
#include "tests/host/image/both_codecs.h"
#include "tests/host/image/exr_noise.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

/// Encodes an image of noise by one of the codecs.
std::string Encoded(bool byLibrary, const ImageLayout& layout, FileDepth depth, const std::string& compression) {
    const World world = World::Create(layout.width, layout.height, Depth::k32);
    const Format& format = *FormatOf("a.exr");
    const auto values = Noise(static_cast<std::size_t>(layout.width * layout.height * layout.ChannelCount()));
    const ImageToWrite image{
        format, layout, depth, compression, world, [&](int begin, int end, std::vector<float>& rows) {
            const auto row = static_cast<std::ptrdiff_t>(layout.width * layout.ChannelCount());
            rows.assign(values.begin() + begin * row, values.begin() + end * row);
        }};
    EncodedFile encoded;
    const auto problem = byLibrary ? Library().encode(image, encoded) : EncodeExr(image, encoded);
    EXPECT_EQ(problem.value_or("none"), "none");
    std::string bytes(encoded.Size(), '\0');
    encoded.Read(0, std::as_writable_bytes(std::span(bytes)));
    return bytes;
}

ImageLayout LayoutToWrite() {
    ImageLayout layout;
    layout.width = 53;
    layout.height = 47;
    layout.x = -3;
    layout.y = 5;
    layout.fullX = 1;
    layout.fullWidth = 200;
    layout.fullHeight = 100;
    layout.channels = kRgba;
    layout.alphaChannel = 3;
    layout.SetNumber("DateTime", 0);
    return layout;
}

/// That the library reads the same from what both codecs write.
void ExpectWrittenAlike(const ImageLayout& layout, FileDepth depth, const std::string& compression) {
    const Folder folder;
    WriteBytes(folder / "ours.exr", Encoded(false, layout, depth, compression));
    WriteBytes(folder / "theirs.exr", Encoded(true, layout, depth, compression));
    std::string problem;
    const auto ours = Opened(Library(), folder / "ours.exr", &problem);
    ASSERT_TRUE(ours) << problem;
    const auto theirs = Opened(Library(), folder / "theirs.exr", &problem);
    ASSERT_TRUE(theirs) << problem;
    ExpectSameLayout("openexr", ours->Layout(), theirs->Layout());
    EXPECT_EQ(Values<float>(*ours, 0, 4), Values<float>(*theirs, 0, 4));
    ExpectReadAlike("openexr", folder / "ours.exr");
    EXPECT_LT(static_cast<double>(std::filesystem::file_size(folder / "ours.exr")),
              1.02 * static_cast<double>(std::filesystem::file_size(folder / "theirs.exr")) + 64);
}

TEST(ExrCodec, EveryDepthAndCompressionIsWrittenAsBefore) {
    for (const FileDepth depth : {FileDepth::kHalf, FileDepth::kFloat}) {
        for (const char* compression : {"none", "zip", "zips"}) {
            SCOPED_TRACE(compression);
            ExpectWrittenAlike(LayoutToWrite(), depth, compression);
        }
    }
}

TEST(ExrCodec, EveryAttributeIsWrittenAsBefore) {
    ImageLayout layout = LayoutToWrite();
    for (const char* name : {"Copyright", "ImageDescription", "DateTime", "Software", "renderer/name", "Artist",
                             "DocumentName", "ResolutionUnit", "oiio:ColorSpace", "IPTC:City",
                             "a name that is longer than the thirty-one characters of old"}) {
        layout.SetText(name, "in \xc3\xa4");
    }
    for (const char* name : {"ExposureTime", "FNumber", "XResolution", "YResolution", "PixelAspectRatio",
                             "Exif:FNumber", "oiio:Gamma", "screenWindowWidth"}) {
        layout.SetReal(name, 2.5f);
    }
    layout.SetNumber("Orientation", 6);
    layout.SetBytes("ICCProfile", std::as_bytes(std::span("profile", 7)));
    const auto set = [&](const char* name, AttributeType type, std::size_t size) {
        std::vector<std::byte> bytes(size);
        for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::byte>(i % 4 == 3 ? 0x3f : i);
        layout.Set({name, type, bytes, {}});
    };
    set("smpte:TimeCode", {AttributeType::kUint32, 1, AttributeType::kIsTimeCode, 2}, 8);
    set("framesPerSecond", {AttributeType::kInt, 2, AttributeType::kIsRational, 0}, 8);
    set("chromaticities", {AttributeType::kFloat, 1, 0, 8}, 32);
    set("v3f", {AttributeType::kFloat, 3, AttributeType::kIsVector, 0}, 12);
    set("worldToCamera", {AttributeType::kFloat, 16, 0, 0}, 64);
    layout.Set({"multiView", {AttributeType::kString, 1, 0, 2}, {}, {"left", "right"}});
    EXPECT_TRUE(Encoded(false, layout, FileDepth::kHalf, "zip") != Encoded(true, layout, FileDepth::kHalf, "zip"))
        << "the library wrote both";
    ExpectWrittenAlike(layout, FileDepth::kHalf, "zip");
}

TEST(ExrCodec, WhatOnlyTheLibraryWritesIsTheLibrarys) {
    const auto isTheLibrarys = [](const ImageLayout& layout, const std::string& compression) {
        return Encoded(false, layout, FileDepth::kHalf, compression) ==
               Encoded(true, layout, FileDepth::kHalf, compression);
    };
    for (const char* compression : {"rle", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"}) {
        EXPECT_TRUE(isTheLibrarys(LayoutToWrite(), compression)) << compression;
    }
    const char* const names[] = {"dataWindow", "channels", "CAPDATE", "tiles"};
    for (const char* name : names) {
        ImageLayout layout = LayoutToWrite();
        layout.SetText(name, "a text");
        EXPECT_TRUE(isTheLibrarys(layout, "zip")) << name;
    }
    ImageLayout layout = LayoutToWrite();
    layout.SetText("FNumber", "not a number");
    EXPECT_TRUE(isTheLibrarys(layout, "zip"));
    layout = LayoutToWrite();
    layout.SetText("Artist", "");
    EXPECT_TRUE(isTheLibrarys(layout, "zip"));
    EXPECT_FALSE(isTheLibrarys(LayoutToWrite(), "zip"));
}

TEST(ExrCodec, TheSameImageGivesTheSameBytes) {
    EXPECT_EQ(Encoded(false, LayoutToWrite(), FileDepth::kHalf, "zip"),
              Encoded(false, LayoutToWrite(), FileDepth::kHalf, "zip"));
}

}  // namespace

}  // namespace umbrant::host
