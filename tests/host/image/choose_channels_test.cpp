// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which part and which channels of a file become the image, and what is noted about the rest.

#include <gtest/gtest.h>

#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/host/image/small_layouts.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

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
        ASSERT_TRUE(picture) << picture.error().sentence;
        EXPECT_EQ(PixelFloat(picture->pixels, 2, 1).red, row.red);
        EXPECT_EQ(picture->note, row.note);
        EXPECT_EQ(ReadPictureHeader(file, {"", row.part})->note, row.note);
    }
    for (const char* part : {"2", "-1", "1x", "shadow"}) {
        SCOPED_TRACE(part);
        const auto refused = ReadPicture(file, {"", part});
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().kind, ErrorKind::kUsage);
        EXPECT_EQ(refused.error().sentence,
                  "'" + file.string() + "' has no part '" + part + "'; its parts are 0 (beauty), 1 (matte)");
    }
    WriteFile(folder / "one.png", LayoutOf(3, OIIO::TypeDesc::UINT8), {1, 1, 1});
    EXPECT_TRUE(ReadPicture(folder / "one.png", {"", "0"}));
    EXPECT_EQ(ReadPicture(folder / "one.png", {"", "1"}).error().kind, ErrorKind::kUsage);
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
        ASSERT_TRUE(picture) << picture.error().sentence;
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
    EXPECT_EQ(refused.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(refused.error().sentence, "'" + (folder / "a.exr").string() +
                                            "' has no layer 'specular'; its channels are R, G, B, A, Z, diffuse.R, "
                                            "diffuse.G, diffuse.B");
}

}  // namespace

}  // namespace umbrant::host
