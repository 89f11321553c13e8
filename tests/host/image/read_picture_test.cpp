// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What pictures of every kind look like in memory, and what is said about files that are none.

#include <OpenImageIO/deepdata.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/image/picture.h"
#include "tests/host/image/picture_files.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

OIIO::ImageSpec LayoutOf(int channels, OIIO::TypeDesc type, std::vector<std::string> names = {}) {
    OIIO::ImageSpec layout(3, 2, channels, type);
    if (channels == 2) names = names.empty() ? std::vector<std::string>{"Y", "A"} : names;
    if (!names.empty()) {
        layout.channelnames = names;
        layout.alpha_channel = -1;
        for (int i = 0; i < channels; ++i) {
            if (names[static_cast<std::size_t>(i)] == "A") layout.alpha_channel = i;
        }
    }
    return layout;
}

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
        ASSERT_TRUE(picture) << picture.Error().sentence;
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

TEST(ReadPicture, DeeperFilesBecomeFloat) {
    constexpr float kHalfStep = 1.0f / 2048.0f;
    const FloatCase cases[] = {
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
        {"EXR without alpha",
         "a.exr",
         LayoutOf(3, OIIO::TypeDesc::FLOAT),
         {3, 0.25f, 0},
         false,
         {1, 3, 0.25f, 0},
         0,
         32},
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
    for (const FloatCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        WriteFile(folder / row.file, row.layout, row.pixel, row.straight);
        auto picture = ReadPicture(folder / row.file);
        ASSERT_TRUE(picture) << picture.Error().sentence;
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
    ASSERT_TRUE(picture) << picture.Error().sentence;
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
    ASSERT_TRUE(picture) << picture.Error().sentence;
    EXPECT_EQ(picture->format, "jpeg");
    EXPECT_EQ(Pixel8(picture->pixels, 1, 1).alpha, 255);
    EXPECT_GE(Pixel8(picture->pixels, 1, 1).red, 253);
}

struct WindowCase {
    const char* name;
    int x, y, fullX, fullY, fullWidth, fullHeight;
    PF_LRect window;
};

TEST(ReadPicture, ExrWindowsAreKept) {
    const WindowCase cases[] = {
        {"no difference", 0, 0, 0, 0, 3, 2, {0, 0, 3, 2}},
        {"grown beyond the frame", -1, -1, 0, 0, 1, 1, {-1, -1, 2, 1}},
        {"a part of the frame", 4, 5, 0, 0, 100, 50, {4, 5, 7, 7}},
        {"a frame that does not begin at 0", 10, 20, 8, 16, 30, 40, {2, 4, 5, 6}},
    };
    for (const WindowCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        OIIO::ImageSpec layout = LayoutOf(4, OIIO::TypeDesc::HALF);
        layout.x = row.x;
        layout.y = row.y;
        layout.full_x = row.fullX;
        layout.full_y = row.fullY;
        layout.full_width = row.fullWidth;
        layout.full_height = row.fullHeight;
        WriteFile(folder / "a.exr", layout, {1, 1, 1, 1}, false);
        auto picture = ReadPicture(folder / "a.exr");
        ASSERT_TRUE(picture) << picture.Error().sentence;
        EXPECT_EQ(picture->window.left, row.window.left);
        EXPECT_EQ(picture->window.top, row.window.top);
        EXPECT_EQ(picture->window.right, row.window.right);
        EXPECT_EQ(picture->window.bottom, row.window.bottom);
        EXPECT_EQ(picture->frameWidth, row.fullWidth);
        EXPECT_EQ(picture->frameHeight, row.fullHeight);

        const auto header = ReadPictureHeader(folder / "a.exr");
        ASSERT_TRUE(header) << header.Error().sentence;
        EXPECT_EQ(header->window.left, row.window.left);
        EXPECT_EQ(header->window.bottom, row.window.bottom);
        EXPECT_EQ(header->frameWidth, row.fullWidth);
        EXPECT_EQ(header->frameHeight, row.fullHeight);
        EXPECT_EQ(header->bits, picture->bits);
        EXPECT_TRUE(header->pixels.IsNull());
    }
}

TEST(ReadPicture, AHeaderIsReadWithoutThePixels) {
    const Folder folder;
    OIIO::ImageSpec layout = LayoutOf(4, OIIO::TypeDesc::UINT8);
    layout.width = layout.full_width = 400;
    WriteFile(folder / "a.png", layout, {0.1f, 0.2f, 0.3f, 1});
    const std::string whole = ReadBytes(folder / "a.png");
    WriteBytes(folder / "cut.png", whole.substr(0, whole.size() - 20));
    ASSERT_FALSE(ReadPicture(folder / "cut.png"));
    const auto header = ReadPictureHeader(folder / "cut.png");
    ASSERT_TRUE(header) << header.Error().sentence;
    EXPECT_EQ(header->frameWidth, 400);
    EXPECT_EQ(header->frameHeight, 2);
    const auto missing = ReadPictureHeader(folder / "missing.png");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.Error().code, ExitCode::kFile);
    EXPECT_THAT(missing.Error().sentence, HasSubstr("there is no such file"));
}

void ExpectRefused(const std::filesystem::path& file, const std::string& reason) {
    const auto picture = ReadPicture(file);
    ASSERT_FALSE(picture) << file;
    EXPECT_EQ(picture.Error().code, ExitCode::kFile);
    EXPECT_THAT(picture.Error().sentence, HasSubstr("cannot read '" + file.string() + "': "));
    EXPECT_THAT(picture.Error().sentence, HasSubstr(reason));
    EXPECT_EQ(picture.Error().sentence.find('\n'), std::string::npos);
}

TEST(ReadPicture, WhatIsNoFileIsSaidToBeNone) {
    const Folder folder;
    std::filesystem::create_directory(folder / "folder.png");
    WriteBytes(folder / "empty.png", "");
    WriteBytes(folder / "empty.exr", "");
    ExpectRefused(folder / "missing.png", "there is no such file");
    ExpectRefused(folder / "missing/deeper.png", "there is no such file");
    ExpectRefused(folder / "folder.png", "a folder, not an image");
    ExpectRefused(folder / "empty.png", "the file is empty");
    ExpectRefused(folder / "empty.exr", "the file is empty");
    ExpectRefused("/dev/null", "not a regular file");
}

TEST(ReadPicture, WhatIsNoPictureIsSaidToBeNone) {
    const Folder folder;
    for (const char* name : {"text.png", "text.tif", "text.jpg", "text.exr", "text.txt", "text"}) {
        WriteBytes(folder / name, "Dear diary, today I drew a shadow.\n");
        ExpectRefused(folder / name, "not an image that can be read (");
    }
}

TEST(ReadPicture, TruncatedFilesAreRefusedWhereverTheyEnd) {
    for (const char* name : {"a.png", "a.tif", "a.jpg", "a.exr"}) {
        const Folder folder;
        OIIO::ImageSpec layout = LayoutOf(3, OIIO::TypeDesc::UINT8);
        layout.width = layout.full_width = 40;
        layout.height = layout.full_height = 40;
        if (std::string(name) == "a.exr") layout.format = OIIO::TypeDesc::HALF;
        layout.attribute("compression", "none");
        WriteFile(folder / name, layout, {0.1f, 0.9f, 0.4f});
        const std::string whole = ReadBytes(folder / name);
        ASSERT_TRUE(ReadPicture(folder / name));
        for (const std::size_t size : {std::size_t{3}, std::size_t{30}, whole.size() / 3, whole.size() / 2}) {
            SCOPED_TRACE(testing::Message() << name << " cut to " << size << " of " << whole.size());
            const auto cut = folder / ("cut_" + std::string(name));
            WriteBytes(cut, whole.substr(0, size));
            ExpectRefused(cut, "");
        }
    }
}

TEST(ReadPicture, DeepFilesAreRefused) {
    const Folder folder;
    OIIO::ImageSpec layout = LayoutOf(4, OIIO::TypeDesc::FLOAT);
    layout.deep = true;
    const auto output = OIIO::ImageOutput::create((folder / "deep.exr").string());
    ASSERT_TRUE(output->open((folder / "deep.exr").string(), layout)) << output->geterror();
    OIIO::DeepData deep;
    deep.init(layout);
    for (int i = 0; i < 6; ++i) deep.set_samples(i, 1);
    ASSERT_TRUE(output->write_deep_image(deep)) << output->geterror();
    ASSERT_TRUE(output->close());
    ExpectRefused(folder / "deep.exr", "a deep image; flatten it first");
}

/// A file of two parts, "beauty" full of 0.5 and "matte" of 0.25.
void WriteParts(const std::filesystem::path& file) {
    OIIO::ImageSpec parts[] = {LayoutOf(3, OIIO::TypeDesc::HALF), LayoutOf(3, OIIO::TypeDesc::HALF)};
    parts[0].attribute("oiio:subimagename", "beauty");
    parts[1].attribute("oiio:subimagename", "matte");
    const std::vector<float> half(3 * 2 * 3, 0.5f), quarter(3 * 2 * 3, 0.25f);
    const auto output = OIIO::ImageOutput::create(file.string());
    ASSERT_TRUE(output->open(file.string(), 2, parts)) << output->geterror();
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, half.data()));
    ASSERT_TRUE(output->open(file.string(), parts[1], OIIO::ImageOutput::AppendSubimage));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, quarter.data()));
    ASSERT_TRUE(output->close());
}

TEST(ReadPicture, AnyPartCanBeChosen) {
    const Folder folder;
    const auto file = folder / "parts.exr";
    WriteParts(file);
    struct Row {
        const char* part;
        float red;
        std::string note;
    };
    const Row rows[] = {{"", 0.5f,
                         "'" + file.string() +
                             "' has 2 parts: part 0 (beauty) was read, 1 (matte) were left out; --part chooses one by "
                             "its number or name"},
                        {"0", 0.5f, ""},
                        {"1", 0.25f, ""},
                        {"matte", 0.25f, ""}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.part);
        auto picture = ReadPicture(file, {"", row.part});
        ASSERT_TRUE(picture) << picture.Error().sentence;
        EXPECT_EQ(PixelFloat(picture->pixels, 2, 1).red, row.red);
        EXPECT_EQ(picture->note, row.note);
        EXPECT_EQ(ReadPictureHeader(file, {"", row.part})->note, row.note);
    }
    for (const char* part : {"2", "-1", "1x", "shadow"}) {
        SCOPED_TRACE(part);
        const auto refused = ReadPicture(file, {"", part});
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.Error().code, ExitCode::kUsage);
        EXPECT_EQ(refused.Error().sentence,
                  "'" + file.string() + "' has no part '" + part + "'; its parts are 0 (beauty), 1 (matte)");
    }
    WriteFile(folder / "one.png", LayoutOf(3, OIIO::TypeDesc::UINT8), {1, 1, 1});
    EXPECT_TRUE(ReadPicture(folder / "one.png", {"", "0"}));
    EXPECT_EQ(ReadPicture(folder / "one.png", {"", "1"}).Error().code, ExitCode::kUsage);
}

TEST(ReadPicture, AnyLayerCanBeChosen) {
    const Folder folder;
    struct Row {
        const char* name;
        std::vector<std::string> channels;
        const char* layer;
        std::vector<int> expected;  // alpha, red, green, blue: which channel, or -1 for a full alpha
        const char* note;
    };
    const std::vector<std::string> all = {"R", "G", "B", "A", "Z", "diffuse.R", "diffuse.G", "diffuse.B"};
    const std::vector<std::string> without = {"Z", "gloss.R", "gloss.G", "gloss.B", "gloss.A"};
    const std::vector<std::string> coordinates = {"N.X", "N.Y", "N.Z"};
    const Row rows[] = {
        {"the image itself",
         all,
         "",
         {3, 0, 1, 2},
         " has 8 channels: R, G, B, A were read, Z, diffuse.R, diffuse.G, diffuse.B were left out; --layer reads one "
         "of: Z, diffuse"},
        {"a layer with the image's alpha", all, "diffuse", {3, 5, 6, 7}, ""},
        {"in other letters", all, "DIFFUSE", {3, 5, 6, 7}, ""},
        {"a single channel", all, "Z", {3, 4, 4, 4}, ""},
        {"the first layer with colours",
         without,
         "",
         {4, 1, 2, 3},
         " has 5 channels: gloss.R, gloss.G, gloss.B, gloss.A were read, Z were left out; --layer reads one of: Z, "
         "gloss"},
        {"a layer with its own alpha", without, "gloss", {4, 1, 2, 3}, ""},
        {"coordinates are three channels", coordinates, "N", {-1, 0, 1, 2}, ""},
        {"and are all that there is", coordinates, "", {-1, 0, 1, 2}, ""},
        {"all channels are used", {"R", "G", "B"}, "", {-1, 0, 1, 2}, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        // The library stores channels in an order of its own, so each has its value by name.
        std::vector<float> values;
        for (std::size_t i = 0; i < row.channels.size(); ++i) values.push_back(static_cast<float>(i + 1) / 16);
        const auto file = folder / "a.exr";
        auto layout = LayoutOf(static_cast<int>(row.channels.size()), OIIO::TypeDesc::FLOAT, row.channels);
        WriteFile(file, layout, values, false);
        auto picture = ReadPicture(file, {row.layer, ""});
        ASSERT_TRUE(picture) << picture.Error().sentence;
        const PF_PixelFloat& pixel = PixelFloat(picture->pixels, 2, 1);
        const auto value = [&](std::size_t i) { return static_cast<float>(row.expected[i] + 1) / 16; };
        const float alpha = row.expected[0] < 0 ? 1 : value(0);
        EXPECT_FLOAT_EQ(pixel.alpha, alpha);
        EXPECT_FLOAT_EQ(pixel.red, value(1) / alpha);
        EXPECT_FLOAT_EQ(pixel.green, value(2) / alpha);
        EXPECT_FLOAT_EQ(pixel.blue, value(3) / alpha);
        EXPECT_EQ(picture->note, *row.note ? "'" + file.string() + "'" + row.note : "");
    }
    WriteFile(folder / "a.exr", LayoutOf(8, OIIO::TypeDesc::FLOAT, all), std::vector<float>(8, 1), false);
    const auto refused = ReadPicture(folder / "a.exr", {"specular", ""});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Error().code, ExitCode::kUsage);
    EXPECT_EQ(refused.Error().sentence, "'" + (folder / "a.exr").string() +
                                            "' has no layer 'specular'; its channels are R, G, B, A, Z, diffuse.R, "
                                            "diffuse.G, diffuse.B");
}

TEST(ReadPicture, ANameMayHaveAnyCharacters) {
    const Folder folder;
    for (const char* ending : {".png", ".tif", ".exr", ".jpg"}) {
        for (const char* stem : {"a?", "a?b=c", "a%20#&*", "\xc3\xa4 \xff"}) {
            const auto file = folder / (std::string(stem) + ending);
            SCOPED_TRACE(file);
            ASSERT_TRUE(WritePicture(file, Filled8(3, 2, {255, 255, 255, 255}), {{0, 0, 3, 2}, 3, 2}));
            const auto picture = ReadPicture(file);
            ASSERT_TRUE(picture) << picture.Error().sentence;
            EXPECT_EQ(picture->frameWidth, 3);
        }
    }
    WriteBytes(folder / "text?.png", "Dear diary\n");
    ExpectRefused(folder / "text?.png", "not an image that can be read (");
}

TEST(ReadPicture, AFileThatCannotBeReachedIsNotMissing) {
    const Folder folder;
    std::filesystem::create_symlink("circle.png", folder / "circle.png");
    ExpectRefused(folder / "circle.png", "Too many levels of symbolic links");
    ExpectRefused(folder / (std::string(300, 'a') + ".png"), "File name too long");
}

}  // namespace

}  // namespace umbrant::host
