// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What of a file survives beside its pixels, how pictures are compressed, and that absurd sizes are refused.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/image/picture.h"
#include "tests/host/image/picture_files.h"

namespace {

using testing::HasSubstr;

/// Reads a file and writes what was read to another.
void Rewrite(const std::filesystem::path& from, const std::filesystem::path& to, WriteOptions options = {}) {
    const auto picture = ReadPicture(from);
    ASSERT_TRUE(picture) << picture.Error().sentence;
    options.metadata = picture->metadata;
    const auto written =
        WritePicture(to, picture->pixels,
                     {picture->window, picture->frameWidth, picture->frameHeight, picture->frameOrigin}, options);
    ASSERT_TRUE(written) << written.Error().sentence;
}

TEST(Metadata, ExrKeepsTimeCodeOwnerAndOwnTexts) {
    const Folder folder;
    OIIO::ImageSpec layout(3, 2, 4, OIIO::TypeDesc::FLOAT);
    const int timecode[2] = {0x01020304, 0x05060708};
    layout.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    layout.attribute("Copyright", "Ada");
    layout.attribute("shot", "A 12");
    layout.attribute("PixelAspectRatio", 2.0f);
    WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
    Rewrite(folder / "a.exr", folder / "b.exr");
    const RawFile raw = ReadRaw(folder / "b.exr");
    const auto* kept = raw.layout.find_attribute("smpte:TimeCode", OIIO::TypeTimeCode);
    ASSERT_TRUE(kept);
    EXPECT_EQ(static_cast<const int*>(kept->data())[0], timecode[0]);
    EXPECT_EQ(static_cast<const int*>(kept->data())[1], timecode[1]);
    EXPECT_EQ(raw.layout.get_string_attribute("Copyright"), "Ada");
    EXPECT_EQ(raw.layout.get_string_attribute("shot"), "A 12");
    EXPECT_EQ(raw.layout.get_float_attribute("PixelAspectRatio"), 2.0f);
}

TEST(Metadata, ResolutionAndColourSpaceGoAlsoToAnotherFormat) {
    const Folder folder;
    OIIO::ImageSpec layout(3, 2, 4, OIIO::TypeDesc::UINT8);
    layout.attribute("XResolution", 300.0f);
    layout.attribute("YResolution", 300.0f);
    layout.attribute("ResolutionUnit", "in");
    layout.attribute("oiio:ColorSpace", "sRGB");
    WriteFile(folder / "a.tif", layout, {1, 1, 1, 1});
    for (const char* name : {"b.tif", "b.png"}) {
        SCOPED_TRACE(name);
        Rewrite(folder / "a.tif", folder / name);
        const RawFile raw = ReadRaw(folder / name);
        const float perInch = raw.layout.get_string_attribute("ResolutionUnit") == "m" ? 0.0254f : 1.0f;
        EXPECT_NEAR(raw.layout.get_float_attribute("XResolution") * perInch, 300, 0.5);
        EXPECT_EQ(raw.layout.get_string_attribute("oiio:ColorSpace"), "sRGB");
    }
}

struct CompressionCase {
    const char* name;
    const char* from;
    const char* had;
    const char* to;
    const char* asked;
    const char* expected;
};

TEST(Metadata, CompressionIsKeptOrChosen) {
    const CompressionCase rows[] = {
        {"kept in EXR", "a.exr", "piz", "b.exr", "", "piz"},
        {"chosen in EXR", "a.exr", "piz", "b.exr", "none", "none"},
        {"kept in TIFF", "a.tif", "lzw", "b.tif", "", "lzw"},
        {"chosen in TIFF", "a.tif", "lzw", "b.tif", "zip", "zip"},
        {"another format has its own", "a.tif", "lzw", "b.exr", "", "zip"},
    };
    for (const CompressionCase& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout(3, 2, 4, OIIO::TypeDesc::FLOAT);
        layout.attribute("compression", row.had);
        WriteFile(folder / row.from, layout, {1, 1, 1, 1});
        WriteOptions options;
        options.compression = row.asked;
        Rewrite(folder / row.from, folder / row.to, options);
        EXPECT_EQ(ReadRaw(folder / row.to).layout.get_string_attribute("compression"), row.expected);
    }
}

TEST(Metadata, WindowsLargerAndSmallerThanTheFrameGoRound) {
    const PF_LRect windows[] = {{-3, -2, 9, 8}, {1, 2, 3, 4}, {0, 0, 6, 6}, {7, 7, 8, 9}};
    for (const PF_LRect& window : windows) {
        SCOPED_TRACE(window.left);
        const Folder folder;
        OIIO::ImageSpec layout(window.right - window.left, window.bottom - window.top, 4, OIIO::TypeDesc::HALF);
        layout.x = 100 + window.left;
        layout.y = -50 + window.top;
        layout.full_x = 100;
        layout.full_y = -50;
        layout.full_width = layout.full_height = 6;
        WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
        const auto picture = ReadPicture(folder / "a.exr");
        ASSERT_TRUE(picture);
        EXPECT_TRUE(picture->isHalf);
        EXPECT_EQ(picture->window.left, window.left);
        EXPECT_EQ(picture->window.bottom, window.bottom);
        EXPECT_EQ(picture->frameWidth, 6);
        WriteOptions options;
        options.half = true;
        Rewrite(folder / "a.exr", folder / "b.exr", options);
        const OIIO::ImageSpec back = ReadRaw(folder / "b.exr").layout;
        EXPECT_EQ(back.format, OIIO::TypeDesc::HALF);
        EXPECT_EQ(back.x, layout.x);
        EXPECT_EQ(back.y, layout.y);
        EXPECT_EQ(back.width, layout.width);
        EXPECT_EQ(back.height, layout.height);
        EXPECT_EQ(back.full_x, 100);
        EXPECT_EQ(back.full_y, -50);
        EXPECT_EQ(back.full_width, 6);
    }
}

struct SizeCase {
    const char* name;
    int width, height, frame;
    const char* sentence;
};

TEST(Metadata, AbsurdSizesAreRefused) {
    const SizeCase rows[] = {
        {"too wide", 30001, 1, 8, "it is too large: 30001 x 1 pixels, where no side may be longer than 30000"},
        {"a frame that is too large", 1, 1, 1000000, "it is too large: 1000000 x 1000000 pixels"},
        {"a frame of too many pixels", 1, 1, 29000, "where all together may hold 1073741824 values"},
    };
    for (const SizeCase& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout(row.width, row.height, 4, OIIO::TypeDesc::HALF);
        layout.full_width = layout.full_height = row.frame;
        WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
        const auto picture = ReadPicture(folder / "a.exr");
        ASSERT_FALSE(picture);
        EXPECT_EQ(picture.Error().code, ExitCode::kFile);
        EXPECT_THAT(picture.Error().sentence, HasSubstr(row.sentence));
    }
}

}  // namespace
