// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What pixels of every kind of file look like in memory.

#include <gtest/gtest.h>

#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/host/image/small_layouts.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

struct EightCase {
    const char* name;
    const char* file;
    OIIO::ImageSpec layout;
    std::vector<float> pixel;
    bool straight;
    PF_Pixel expected;  // alpha, red, green, blue
};

TEST(ReadPicture, EightBitFilesStayEightBitsAndStraight) {
    const EightCase cases[] = {
        {"half-transparent blue keeps its full blue",
         "a.png",
         LayoutOf(4, OIIO::TypeDesc::UINT8),
         {0, 0, 1, 128 / 255.0f},
         true,
         {128, 0, 0, 255}},
        {"colour under no alpha is kept",
         "a.png",
         LayoutOf(4, OIIO::TypeDesc::UINT8),
         {1, 0.2f, 0, 0},
         true,
         {0, 255, 51, 0}},
        {"no alpha is opaque",
         "a.png",
         LayoutOf(3, OIIO::TypeDesc::UINT8),
         {0.2f, 0.4f, 0.6f},
         true,
         {255, 51, 102, 153}},
        {"grey", "a.png", LayoutOf(1, OIIO::TypeDesc::UINT8), {0.4f}, true, {255, 102, 102, 102}},
        {"grey and alpha", "a.png", LayoutOf(2, OIIO::TypeDesc::UINT8), {0.4f, 0.2f}, true, {51, 102, 102, 102}},
        {"straight TIFF", "a.tif", LayoutOf(4, OIIO::TypeDesc::UINT8), {1, 0, 0, 0.2f}, true, {51, 255, 0, 0}},
        {"premultiplied TIFF is divided",
         "a.tif",
         LayoutOf(4, OIIO::TypeDesc::UINT8),
         {0.2f, 0.1f, 0, 0.2f},
         false,
         {51, 255, 130, 0}},
        {"grey TIFF", "a.tif", LayoutOf(1, OIIO::TypeDesc::UINT8), {0.6f}, true, {255, 153, 153, 153}},
    };
    for (const EightCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        WriteFile(folder / row.file, row.layout, row.pixel, row.straight);
        auto picture = ReadPicture(folder / row.file);
        ASSERT_TRUE(picture) << picture.error().sentence;
        EXPECT_EQ(picture->pixels.PixelDepth(), Depth::k8);
        EXPECT_EQ(picture->bits, 8);
        EXPECT_EQ(picture->frameWidth, 3);
        EXPECT_EQ(picture->frameHeight, 2);
        for (const auto& [x, y] : {std::pair{0, 0}, std::pair{2, 1}}) {
            const PF_Pixel& pixel = Pixel8(picture->pixels, x, y);
            EXPECT_EQ(pixel.alpha, row.expected.alpha);
            EXPECT_EQ(pixel.red, row.expected.red);
            EXPECT_EQ(pixel.green, row.expected.green);
            EXPECT_EQ(pixel.blue, row.expected.blue);
        }
    }
}

struct FloatCase {
    const char* name;
    const char* file;
    OIIO::ImageSpec layout;
    std::vector<float> pixel;
    bool straight;
    PF_PixelFloat expected;
    float tolerance;
    int bits;
};

constexpr float kHalfStep = 1.0f / 2048.0f;
const FloatCase kFloatCases[] = {
    {"16-bit PNG",
     "a.png",
     LayoutOf(4, OIIO::TypeDesc::UINT16),
     {0.25f, 0.5f, 0.75f, 0.125f},
     true,
     {0.125f, 0.25f, 0.5f, 0.75f},
     1.0f / 65535,
     16},
    {"16-bit grey and alpha",
     "a.png",
     LayoutOf(2, OIIO::TypeDesc::UINT16),
     {0.25f, 0.5f},
     true,
     {0.5f, 0.25f, 0.25f, 0.25f},
     1.0f / 65535,
     16},
    {"16-bit TIFF without alpha",
     "a.tif",
     LayoutOf(3, OIIO::TypeDesc::UINT16),
     {0.25f, 0.5f, 0.75f},
     true,
     {1, 0.25f, 0.5f, 0.75f},
     1.0f / 65535,
     16},
    {"straight float TIFF, beyond one",
     "a.tif",
     LayoutOf(4, OIIO::TypeDesc::FLOAT),
     {4, -1, 0.1f, 0.5f},
     true,
     {0.5f, 4, -1, 0.1f},
     0,
     32},
    {"premultiplied float TIFF",
     "a.tif",
     LayoutOf(4, OIIO::TypeDesc::FLOAT),
     {2, 0.25f, 0, 0.5f},
     false,
     {0.5f, 4, 0.5f, 0},
     0,
     32},
    {"EXR is divided by its alpha",
     "a.exr",
     LayoutOf(4, OIIO::TypeDesc::FLOAT),
     {2, 0.25f, 0, 0.5f},
     false,
     {0.5f, 4, 0.5f, 0},
     0,
     32},
    {"EXR of halves",
     "a.exr",
     LayoutOf(4, OIIO::TypeDesc::HALF),
     {1, 0.3f, 0.1f, 1},
     false,
     {1, 1, 0.3f, 0.1f},
     kHalfStep,
     16},
    {"EXR colour under no alpha stays as it is",
     "a.exr",
     LayoutOf(4, OIIO::TypeDesc::FLOAT),
     {3, 0.25f, 0, 0},
     false,
     {0, 3, 0.25f, 0},
     0,
     32},
    {"EXR without alpha", "a.exr", LayoutOf(3, OIIO::TypeDesc::FLOAT), {3, 0.25f, 0}, false, {1, 3, 0.25f, 0}, 0, 32},
    {"EXR of luminance",
     "a.exr",
     LayoutOf(1, OIIO::TypeDesc::FLOAT, {"Y"}),
     {0.75f},
     false,
     {1, 0.75f, 0.75f, 0.75f},
     0,
     32},
    {"EXR of alpha alone is white",
     "a.exr",
     LayoutOf(1, OIIO::TypeDesc::FLOAT, {"A"}),
     {0.5f},
     false,
     {0.5f, 1, 1, 1},
     0,
     32},
    {"EXR with depth beside the colours",
     "a.exr",
     LayoutOf(5, OIIO::TypeDesc::FLOAT, {"R", "G", "B", "A", "Z"}),
     {0.5f, 0.25f, 0.125f, 1, 100},
     false,
     {1, 0.5f, 0.25f, 0.125f},
     0,
     32},
    {"EXR of two colours",
     "a.exr",
     LayoutOf(2, OIIO::TypeDesc::FLOAT, {"U", "V"}),
     {0.5f, 0.25f},
     false,
     {1, 0.5f, 0.25f, 0},
     0,
     32},
};

TEST(ReadPicture, DeeperFilesBecomeFloat) {
    for (const FloatCase& row : kFloatCases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        WriteFile(folder / row.file, row.layout, row.pixel, row.straight);
        auto picture = ReadPicture(folder / row.file);
        ASSERT_TRUE(picture) << picture.error().sentence;
        EXPECT_EQ(picture->pixels.PixelDepth(), Depth::k32);
        EXPECT_EQ(picture->bits, row.bits);
        const PF_PixelFloat& pixel = PixelFloat(picture->pixels, 2, 1);
        EXPECT_NEAR(pixel.alpha, row.expected.alpha, row.tolerance);
        EXPECT_NEAR(pixel.red, row.expected.red, row.tolerance);
        EXPECT_NEAR(pixel.green, row.expected.green, row.tolerance);
        EXPECT_NEAR(pixel.blue, row.expected.blue, row.tolerance);
    }
}

// Four pixels of two bits each: colours 0 to 3 of a palette whose second is half and whose third wholly transparent.
constexpr unsigned char kPalettePng[] = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00,
    0x00, 0x04, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03, 0x00, 0x00, 0x00, 0x84, 0x52, 0xe7, 0x5e, 0x00, 0x00, 0x00,
    0x0c, 0x50, 0x4c, 0x54, 0x45, 0x0a, 0x14, 0x1e, 0xff, 0x00, 0x00, 0x00, 0x80, 0xff, 0x01, 0x02, 0x03, 0x74,
    0xc7, 0x3a, 0xc2, 0x00, 0x00, 0x00, 0x03, 0x74, 0x52, 0x4e, 0x53, 0xff, 0x80, 0x00, 0x7f, 0x6d, 0x68, 0x78,
    0x00, 0x00, 0x00, 0x0a, 0x49, 0x44, 0x41, 0x54, 0x78, 0xda, 0x63, 0x90, 0x06, 0x00, 0x00, 0x1d, 0x00, 0x1c,
    0x23, 0x7c, 0x8f, 0xac, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

TEST(ReadPicture, PalettesBecomeTheirColours) {
    const Folder folder;
    WriteBytes(folder / "palette.png", std::string(reinterpret_cast<const char*>(kPalettePng), sizeof(kPalettePng)));
    auto picture = ReadPicture(folder / "palette.png");
    ASSERT_TRUE(picture) << picture.error().sentence;
    ASSERT_EQ(picture->pixels.Width(), 4);
    const PF_Pixel expected[] = {{255, 10, 20, 30}, {128, 255, 0, 0}, {0, 0, 128, 255}, {255, 1, 2, 3}};
    for (int x = 0; x < 4; ++x) {
        const PF_Pixel& pixel = Pixel8(picture->pixels, x, 0);
        EXPECT_EQ(pixel.alpha, expected[x].alpha) << x;
        EXPECT_EQ(pixel.red, expected[x].red) << x;
        EXPECT_EQ(pixel.green, expected[x].green) << x;
        EXPECT_EQ(pixel.blue, expected[x].blue) << x;
    }
}

TEST(ReadPicture, JpegIsOpaque) {
    const Folder folder;
    WriteFile(folder / "a.jpg", LayoutOf(3, OIIO::TypeDesc::UINT8), {1, 1, 1});
    auto picture = ReadPicture(folder / "a.jpg");
    ASSERT_TRUE(picture) << picture.error().sentence;
    EXPECT_EQ(picture->format, "jpeg");
    EXPECT_EQ(Pixel8(picture->pixels, 1, 1).alpha, 255);
    EXPECT_GE(Pixel8(picture->pixels, 1, 1).red, 253);
}

}  // namespace

}  // namespace umbrant::host
