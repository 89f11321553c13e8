// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What lands in files of every format that can be written, and that a failure leaves nothing behind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "host/image/picture.h"
#include "tests/host/image/picture_files.h"

namespace {

using testing::ElementsAre;
using testing::FloatNear;
using testing::HasSubstr;

Placement Frame(int width, int height) {
    return {{0, 0, width, height}, width, height};
}

struct FormatCase {
    const char* name;
    const char* file;
    Depth depth;
    OIIO::TypeDesc type;
    int channels;
    std::vector<float> stored;  // of a pixel of half alpha: red 1, green 0.2, blue 0
};

TEST(WritePicture, EveryFormatFollowsItsConvention) {
    const float half = 128 / 255.0f;
    const FormatCase cases[] = {
        {"PNG of 8 bits is straight", "a.png", Depth::k8, OIIO::TypeDesc::UINT8, 4, {1, 0.2f, 0, half}},
        {"PNG of float has 16 bits", "a.png", Depth::k32, OIIO::TypeDesc::UINT16, 4, {1, 0.2f, 0, half}},
        {"TIFF of 8 bits is straight", "a.tif", Depth::k8, OIIO::TypeDesc::UINT8, 4, {1, 0.2f, 0, half}},
        {"TIFF of float is straight float", "a.tiff", Depth::k32, OIIO::TypeDesc::FLOAT, 4, {1, 0.2f, 0, half}},
        {"EXR of 8 bits is premultiplied half",
         "a.exr",
         Depth::k8,
         OIIO::TypeDesc::HALF,
         4,
         {half, 0.2f * half, 0, half}},
        {"EXR of float is premultiplied float",
         "a.exr",
         Depth::k32,
         OIIO::TypeDesc::FLOAT,
         4,
         {half, 0.2f * half, 0, half}},
        {"JPEG lies on white", "a.jpg", Depth::k8, OIIO::TypeDesc::UINT8, 3, {1, 0.2f * half + 1 - half, 1 - half}},
        {"JPEG of float", "a.JPEG", Depth::k32, OIIO::TypeDesc::UINT8, 3, {1, 0.2f * half + 1 - half, 1 - half}},
    };
    for (const FormatCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        const World world =
            row.depth == Depth::k8 ? Filled8(16, 8, {128, 255, 51, 0}) : FilledFloat(16, 8, {half, 1, 0.2f, 0});
        const auto written = WritePicture(folder / row.file, world, Frame(16, 8));
        ASSERT_TRUE(written) << written.Error().sentence;
        const RawFile raw = ReadRaw(folder / row.file);
        EXPECT_EQ(raw.layout.format, row.type);
        ASSERT_EQ(raw.layout.nchannels, row.channels);
        EXPECT_EQ(raw.layout.width, 16);
        EXPECT_EQ(raw.layout.height, 8);
        const float tolerance = row.channels == 3 ? 0.012f : 1.0f / 2048;
        for (std::size_t i = 0; i < row.stored.size(); ++i)
            EXPECT_THAT(raw.values[i], FloatNear(row.stored[i], tolerance));
        EXPECT_EQ(folder.Entries(), 1) << "nothing but the picture";
    }
}

TEST(WritePicture, ReadingBackGivesTheSamePixels) {
    const Folder folder;
    World eight = World::Create(16, 16, Depth::k8);
    World real = World::Create(16, 16, Depth::k32);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const auto n = static_cast<A_u_char>(16 * y + x);
            Pixel8(eight, x, y) = {n, static_cast<A_u_char>(255 - n), static_cast<A_u_char>(7 * n), 200};
            PixelFloat(real, x, y) = {static_cast<float>(n) / 200, static_cast<float>(x) - 5, static_cast<float>(y),
                                      0.1f};
        }
    }
    for (const char* name : {"a.png", "a.tif"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(WritePicture(folder / name, eight, Frame(16, 16)));
        auto back = ReadPicture(folder / name);
        ASSERT_TRUE(back);
        for (int i = 0; i < 256; ++i) {
            const PF_Pixel& a = Pixel8(eight, i % 16, i / 16);
            const PF_Pixel& b = Pixel8(back->pixels, i % 16, i / 16);
            EXPECT_THAT((std::vector<int>{b.alpha, b.red, b.green, b.blue}),
                        ElementsAre(a.alpha, a.red, a.green, a.blue));
        }
    }
    ASSERT_TRUE(WritePicture(folder / "a.tiff", real, Frame(16, 16)));
    auto back = ReadPicture(folder / "a.tiff");
    ASSERT_TRUE(back);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(PixelFloat(back->pixels, i % 16, i / 16).alpha, PixelFloat(real, i % 16, i / 16).alpha);
        EXPECT_EQ(PixelFloat(back->pixels, i % 16, i / 16).red, PixelFloat(real, i % 16, i / 16).red);
    }
    ASSERT_TRUE(WritePicture(folder / "a.exr", real, Frame(16, 16)));
    back = ReadPicture(folder / "a.exr");
    ASSERT_TRUE(back);
    for (int i = 1; i < 256; ++i) {
        EXPECT_EQ(PixelFloat(back->pixels, i % 16, i / 16).alpha, PixelFloat(real, i % 16, i / 16).alpha);
        EXPECT_NEAR(PixelFloat(back->pixels, i % 16, i / 16).red, PixelFloat(real, i % 16, i / 16).red, 1e-5);
    }
}

TEST(WritePicture, ExrKeepsTheFrameAroundAGrownPicture) {
    const Folder folder;
    const World world = FilledFloat(9, 7, {1, 1, 1, 1});
    ASSERT_TRUE(WritePicture(folder / "a.exr", world, {{-2, -1, 7, 6}, 5, 4}));
    const RawFile raw = ReadRaw(folder / "a.exr");
    EXPECT_EQ(raw.layout.x, -2);
    EXPECT_EQ(raw.layout.y, -1);
    EXPECT_EQ(raw.layout.width, 9);
    EXPECT_EQ(raw.layout.height, 7);
    EXPECT_EQ(raw.layout.full_x, 0);
    EXPECT_EQ(raw.layout.full_y, 0);
    EXPECT_EQ(raw.layout.full_width, 5);
    EXPECT_EQ(raw.layout.full_height, 4);
}

TEST(WritePicture, NothingOfAColourUnderNoAlphaGoesIntoAnExr) {
    const Folder folder;
    ASSERT_TRUE(WritePicture(folder / "a.exr", FilledFloat(2, 2, {0, INFINITY, 1, 1}), Frame(2, 2)));
    EXPECT_THAT(ReadRaw(folder / "a.exr").values[0], 0);
}

TEST(WritePicture, AnOlderPictureIsReplaced) {
    const Folder folder;
    WriteBytes(folder / "a.png", "old");
    ASSERT_TRUE(WritePicture(folder / "a.png", Filled8(2, 2, {255, 1, 2, 3}), Frame(2, 2)));
    ASSERT_TRUE(ReadPicture(folder / "a.png"));
    EXPECT_EQ(folder.Entries(), 1);
}

void ExpectRefused(const std::filesystem::path& file, const std::string& reason, bool checkedBefore = true) {
    SCOPED_TRACE(file.string());
    const auto written = WritePicture(file, Filled8(2, 2, {255, 1, 2, 3}), Frame(2, 2));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.Error().code, ExitCode::kFile);
    EXPECT_THAT(written.Error().sentence, HasSubstr("cannot write"));
    EXPECT_THAT(written.Error().sentence, HasSubstr(reason));
    EXPECT_EQ(written.Error().sentence.find('\n'), std::string::npos);
    if (!checkedBefore) return;
    const auto checked = CheckWritable(file);
    ASSERT_FALSE(checked);
    EXPECT_EQ(checked.Error().sentence, written.Error().sentence);
}

TEST(WritePicture, WhatCannotBeWrittenIsSaidAndLeavesNothing) {
    const Folder folder;
    std::filesystem::create_directory(folder / "folder.png");
    WriteBytes(folder / "file", "x");
    const std::string formats = "use .png, .tif, .tiff, .exr, .jpg or .jpeg";
    ExpectRefused(folder / "a.gif", "'.gif' is not a format that can be written; " + formats);
    ExpectRefused(folder / "picture", "its name has no extension; " + formats);
    ExpectRefused("", "the output's name is empty");
    ExpectRefused(folder / "folder.png", "there is a folder of that name");
    ExpectRefused(folder / "none/a.png", "there is no folder '");
    ExpectRefused(folder / "file/a.png", "");
    ExpectRefused("/proc/umbrant.png", "", false);
    EXPECT_EQ(folder.Entries(), 2);
}

TEST(WritePicture, AnEmptyPictureIsRefused) {
    const Folder folder;
    const auto written = WritePicture(folder / "a.png", World::Create(0, 0, Depth::k8), Frame(4, 4));
    ASSERT_FALSE(written);
    EXPECT_THAT(written.Error().sentence, HasSubstr("there is nothing in the picture"));
    EXPECT_EQ(folder.Entries(), 0);
}

}  // namespace
