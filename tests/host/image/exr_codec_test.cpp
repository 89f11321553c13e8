// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Reading EXR by OpenEXR's core against the image library: every kind of file is read alike or handed over.

#include <OpenEXR/openexr.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <random>

#include "host/image/picture.h"
#include "tests/host/image/both_codecs.h"
#include "tests/host/image/exr_noise.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

OIIO::ImageSpec Layout(int width, int height, const std::vector<std::string>& channels, OIIO::TypeDesc type) {
    OIIO::ImageSpec layout(width, height, static_cast<int>(channels.size()), type);
    layout.channelnames = channels;
    return layout;
}

void WriteNoise(const std::filesystem::path& file, const OIIO::ImageSpec& layout) {
    const auto output = OIIO::ImageOutput::create(file.string());
    ASSERT_TRUE(output) << OIIO::geterror();
    ASSERT_TRUE(output->open(file.string(), layout)) << output->geterror();
    const auto values = Noise(static_cast<std::size_t>(layout.width * layout.height * layout.nchannels));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, values.data())) << output->geterror();
    ASSERT_TRUE(output->close()) << output->geterror();
}

TEST(ExrCodec, EveryCompressionIsReadAsBefore) {
    const Folder folder;
    for (const char* compression : {"none", "rle", "zips", "zip", "piz"}) {
        for (const auto type : {OIIO::TypeDesc::HALF, OIIO::TypeDesc::FLOAT}) {
            for (const int tile : {0, 16}) {
                SCOPED_TRACE(testing::Message() << compression << " of " << OIIO::TypeDesc(type) << ", tile " << tile);
                OIIO::ImageSpec layout = Layout(53, 47, kRgba, type);
                layout.attribute("compression", compression);
                layout.tile_width = layout.tile_height = tile;
                WriteNoise(folder / "a.exr", layout);
                ExpectReadAlike("openexr", folder / "a.exr");
            }
        }
    }
}

TEST(ExrCodec, LossyCompressionsAreTheLibrarys) {
    const Folder folder;
    for (const char* compression : {"pxr24", "b44", "b44a", "dwaa", "dwab"}) {
        OIIO::ImageSpec layout = Layout(53, 47, kRgba, OIIO::TypeDesc::HALF);
        layout.attribute("compression", compression);
        WriteNoise(folder / "a.exr", layout);
        EXPECT_EQ(Chosen(folder / "a.exr").name, "") << compression;
    }
}

TEST(ExrCodec, EverySetOfChannelsIsReadAsBefore) {
    const Folder folder;
    const std::vector<std::string> rows[] = {
        {"Y"},
        {"Y", "A"},
        {"A"},
        {"Z"},
        {"R", "G", "B"},
        {"A", "B", "G", "R"},
        {"R", "G", "B", "A", "Z"},
        {"Red", "Green", "Blue", "Alpha"},
        {"r", "g", "b", "a"},
        {"R", "G", "B", "A", "diffuse.R", "diffuse.G", "diffuse.B", "diffuse.A", "N.X", "N.Y", "N.Z", "depth.Z"},
        {"left.R", "left.G", "left.B", "right.R", "right.G", "right.B", "right.A"},
        {"a.b.R", "a.b.G", "a.R", "a.G", "a.B", "a.depth"},
        {"AR", "AG", "AB", "R", "G", "B"},
        {"crypto00.red", "crypto00.green", "crypto00.blue", "crypto00.alpha", "R", "G", "B", "A"},
        {"u", "v", "w"},
        {"real", "imag"},
    };
    for (const auto& channels : rows) {
        SCOPED_TRACE(channels.front());
        WriteNoise(folder / "a.exr", Layout(17, 33, channels, OIIO::TypeDesc::HALF));
        ExpectReadAlike("openexr", folder / "a.exr");
    }
    const char* const pool[] = {"R",   "g",     "Blue", "X",   "Y",     "Z",     "real",    "imag",
                                "A",   "Alpha", "AR",   "GA",  "Depth", "Zback", "q",       "a.R",
                                "a.X", "a.Y",   "a.Z",  "a.A", "b.Y",   "b.Z",   "b.alpha", "!"};
    std::mt19937 random(3);
    for (int round = 0; round < 100; ++round) {
        std::vector<std::string> channels;
        for (const char* name : pool) {
            if (random() % 4 == 0) channels.push_back(name);
        }
        if (channels.empty()) continue;
        SCOPED_TRACE(testing::PrintToString(channels));
        WriteNoise(folder / "a.exr", Layout(3, 2, channels, OIIO::TypeDesc::HALF));
        ExpectReadAlike("openexr", folder / "a.exr");
    }
    // Halves beside floats.
    OIIO::ImageSpec mixed = Layout(17, 33, {"R", "G", "B", "A", "Z"}, OIIO::TypeDesc::FLOAT);
    mixed.channelformats.assign(4, OIIO::TypeDesc::HALF);
    mixed.channelformats.push_back(OIIO::TypeDesc::FLOAT);
    const auto output = OIIO::ImageOutput::create((folder / "a.exr").string());
    ASSERT_TRUE(output->open((folder / "a.exr").string(), mixed));
    const auto values = Noise(17 * 33 * 5);
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, values.data()));
    ASSERT_TRUE(output->close());
    ExpectReadAlike("openexr", folder / "a.exr");
}

TEST(ExrCodec, WindowsAreReadAsBefore) {
    const Folder folder;
    const struct {
        int x, y, fullX, fullY, fullWidth, fullHeight;
    } rows[] = {{0, 0, 0, 0, 17, 33}, {-5, -7, 0, 0, 10, 20}, {100, 200, -3, -4, 1000, 500}, {3, 0, 10, 10, 1, 1}};
    for (const auto& row : rows) {
        OIIO::ImageSpec layout = Layout(17, 33, kRgba, OIIO::TypeDesc::HALF);
        layout.x = row.x;
        layout.y = row.y;
        layout.full_x = row.fullX;
        layout.full_y = row.fullY;
        layout.full_width = row.fullWidth;
        layout.full_height = row.fullHeight;
        for (const char* order : {"increasingY", "decreasingY"}) {
            layout.attribute("openexr:lineOrder", order);
            SCOPED_TRACE(testing::Message() << row.x << " " << order);
            WriteNoise(folder / "a.exr", layout);
            ExpectReadAlike("openexr", folder / "a.exr");
        }
    }
}

TEST(ExrCodec, SpecialValuesAreReadAndWrittenAsBefore) {
    const Folder folder;
    const float values[] = {0.0f,  -0.0f,  1e-8f,    6e-8f, 6.1e-5f, 65504.0f, 65519.0f, 65520.0f,
                            1e20f, -1e20f, INFINITY, -1.0f, 0.1f,    1.0f / 3, 2049.0f,  std::nanf("")};
    OIIO::ImageSpec layout = Layout(4, 1, kRgba, OIIO::TypeDesc::HALF);
    const auto output = OIIO::ImageOutput::create((folder / "a.exr").string());
    ASSERT_TRUE(output->open((folder / "a.exr").string(), layout));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, values));
    ASSERT_TRUE(output->close());
    std::string problem;
    const auto ours = Opened(Chosen(folder / "a.exr"), folder / "a.exr", &problem);
    const auto theirs = Opened(Library(), folder / "a.exr", &problem);
    ASSERT_TRUE(ours && theirs);
    const auto got = Values<float>(*ours, 0, 4), wanted = Values<float>(*theirs, 0, 4);
    for (std::size_t i = 0; i < std::size(values); ++i) {
        EXPECT_TRUE(got[i] == wanted[i] || (std::isnan(got[i]) && std::isnan(wanted[i]))) << i;
        EXPECT_EQ(std::signbit(got[i]), std::signbit(wanted[i])) << i;
    }
}

// ---- the header

/// An EXR of two by two pixels with more in its header.
class Header {
 public:
    explicit Header(const std::filesystem::path& path) {
        exr_context_initializer_t context = EXR_DEFAULT_CONTEXT_INITIALIZER;
        EXPECT_EQ(exr_start_write(&file, path.c_str(), EXR_WRITE_FILE_DIRECTLY, &context), EXR_ERR_SUCCESS);
        int part = 0;
        EXPECT_EQ(exr_add_part(file, nullptr, EXR_STORAGE_SCANLINE, &part), EXR_ERR_SUCCESS);
        EXPECT_EQ(exr_initialize_required_attr_simple(file, 0, 2, 2, EXR_COMPRESSION_NONE), EXR_ERR_SUCCESS);
        for (const char* name : {"A", "B", "G", "R"}) {
            exr_add_channel(file, 0, name, EXR_PIXEL_HALF, EXR_PERCEPTUALLY_LOGARITHMIC, 1, 1);
        }
        EXPECT_EQ(exr_set_longname_support(file, 1), EXR_ERR_SUCCESS);
    }
    void Finish() {
        EXPECT_EQ(exr_write_header(file), EXR_ERR_SUCCESS);
        const std::vector<char> row(2 * 4 * 2);
        for (int y = 0; y < 2; ++y) {
            EXPECT_EQ(exr_write_scanline_chunk(file, 0, y, row.data(), row.size()), EXR_ERR_SUCCESS);
        }
        EXPECT_EQ(exr_finish(&file), EXR_ERR_SUCCESS);
    }

    exr_context_t file = nullptr;
};

TEST(ExrCodec, EveryAttributeIsReadAsBefore) {
    const Folder folder;
    Header header(folder / "a.exr");
    exr_context_t file = header.file;
    for (const char* name :
         {"owner", "comments", "capDate", "wrapmodes", "view", "Software", "renderer/name",
          "a name that is longer than the thirty-one characters of old", "oiio:ColorSpace", "DateTime", "empty"}) {
        exr_attr_set_string(file, 0, name, std::string(name) == "empty" ? "" : "text \xc3\xa4");
    }
    for (const char* name : {"utcOffset", "longitude", "latitude", "altitude", "focus", "expTime", "aperture",
                             "isoSpeed", "xDensity", "whiteLuminance", "a.float", "YResolution"}) {
        exr_attr_set_float(file, 0, name, 2.5f);
    }
    exr_set_pixel_aspect_ratio(file, 0, 1.5f);
    exr_attr_set_int(file, 0, "Orientation", 3);
    exr_attr_set_double(file, 0, "a double", 0.1);
    const exr_attr_rational_t rational{24000, 1001};
    exr_attr_set_rational(file, 0, "framesPerSecond", &rational);
    const exr_attr_timecode_t time{0x01020304, 0x50607080};
    exr_attr_set_timecode(file, 0, "timeCode", &time);
    exr_attr_set_timecode(file, 0, "another time", &time);
    const exr_attr_chromaticities_t colors{.64f, .33f, .3f, .6f, .15f, .06f, .3127f, .329f};
    exr_attr_set_chromaticities(file, 0, "chromaticities", &colors);
    float numbers[16];
    double doubles[16];
    int integers[4] = {1, 2, 3, 4};
    for (int i = 0; i < 16; ++i) doubles[i] = numbers[i] = static_cast<float>(i) + 0.5f;
    exr_attr_set_v2i(file, 0, "v2i", reinterpret_cast<exr_attr_v2i_t*>(integers));
    exr_attr_set_v3i(file, 0, "v3i", reinterpret_cast<exr_attr_v3i_t*>(integers));
    exr_attr_set_box2i(file, 0, "box2i", reinterpret_cast<exr_attr_box2i_t*>(integers));
    exr_attr_set_v2f(file, 0, "v2f", reinterpret_cast<exr_attr_v2f_t*>(numbers));
    exr_attr_set_v3f(file, 0, "v3f", reinterpret_cast<exr_attr_v3f_t*>(numbers));
    exr_attr_set_box2f(file, 0, "box2f", reinterpret_cast<exr_attr_box2f_t*>(numbers));
    exr_attr_set_m33f(file, 0, "m33f", reinterpret_cast<exr_attr_m33f_t*>(numbers));
    exr_attr_set_m44f(file, 0, "worldToCamera", reinterpret_cast<exr_attr_m44f_t*>(numbers));
    exr_attr_set_v2d(file, 0, "v2d", reinterpret_cast<exr_attr_v2d_t*>(doubles));
    exr_attr_set_v3d(file, 0, "v3d", reinterpret_cast<exr_attr_v3d_t*>(doubles));
    exr_attr_set_m33d(file, 0, "m33d", reinterpret_cast<exr_attr_m33d_t*>(doubles));
    exr_attr_set_m44d(file, 0, "m44d", reinterpret_cast<exr_attr_m44d_t*>(doubles));
    const char* texts[] = {"left", "right"};
    exr_attr_set_string_vector(file, 0, "multiView", 2, texts);
    header.Finish();
    ExpectReadAlike("openexr", folder / "a.exr");
}

TEST(ExrCodec, WhatOnlyTheLibraryUnderstandsIsTheLibrarys) {
    const Folder folder;
    const float numbers[] = {1, 2, 3, 4, 5};
    const exr_attr_keycode_t key{1, 2, 3, 4, 5, 6, 64};
    const std::function<void(exr_context_t)> rows[] = {
        [&](exr_context_t file) { exr_attr_set_float_vector(file, 0, "numbers", 5, numbers); },
        [&](exr_context_t file) { exr_attr_set_keycode(file, 0, "keyCode", &key); },
        [&](exr_context_t file) { exr_attr_set_envmap(file, 0, "envmap", EXR_ENVMAP_CUBE); },
        [&](exr_context_t file) { exr_attr_set_int(file, 0, "oiio:UnassociatedAlpha", 1); },
        [&](exr_context_t file) { exr_attr_set_int(file, 0, "oiio:BitsPerSample", 10); },
        [&](exr_context_t file) { exr_attr_set_user(file, 0, "own", "mine", 5, "bytes"); },
    };
    for (const auto& set : rows) {
        Header header(folder / "a.exr");
        set(header.file);
        header.Finish();
        EXPECT_EQ(Chosen(folder / "a.exr").name, "") << (&set - rows);
        std::string problem;
        EXPECT_TRUE(Opened(Chosen(folder / "a.exr"), folder / "a.exr", &problem)) << problem;
    }
    WriteNoise(folder / "a.exr", Layout(5, 5, {"id"}, OIIO::TypeDesc::UINT32));
    EXPECT_EQ(Chosen(folder / "a.exr").name, "") << "whole numbers";
}

// ---- damage

TEST(ExrCodec, ADamagedFileIsRefused) {
    const Folder folder;
    for (const char* compression : {"none", "rle", "zip", "zips", "piz"}) {
        SCOPED_TRACE(compression);
        OIIO::ImageSpec layout = Layout(53, 47, kRgba, OIIO::TypeDesc::HALF);
        layout.attribute("compression", compression);
        WriteNoise(folder / "a.exr", layout);
        const std::string whole = ReadBytes(folder / "a.exr");
        for (const std::size_t left : {whole.size() - 1, whole.size() / 2, whole.size() / 5}) {
            WriteBytes(folder / "a.exr", whole.substr(0, left));
            const auto picture = ReadPicture(folder / "a.exr");
            ASSERT_FALSE(picture) << left;
            EXPECT_EQ(picture.error().kind, ErrorKind::kFile);
            EXPECT_THAT(picture.error().sentence, HasSubstr("a.exr"));
        }
    }
}

/// What the fuzzer of pictures begins with: the first byte chooses a name, and the rest is the file.
TEST(ExrCodec, TheFuzzersFilesAreReadAsBefore) {
    const Folder folder;
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(PICTURE_SEEDS)) {
        const std::string bytes = ReadBytes(entry.path()).substr(1);
        if (!bytes.starts_with("\x76\x2f\x31\x01")) continue;
        SCOPED_TRACE(entry.path());
        WriteBytes(folder / "a.exr", bytes);
        ExpectReadAlike("openexr", folder / "a.exr");
        ++count;
    }
    EXPECT_GE(count, 3);
}

/// Changed bytes give an error or a picture, never more than that; what both codecs read, they read alike.
TEST(ExrCodec, ChangedBytesAreReadAsBeforeOrRefused) {
    const Folder folder;
    std::mt19937 random(5);
    int alike = 0;
    for (const char* compression : {"none", "zip", "piz", "rle"}) {
        OIIO::ImageSpec layout = Layout(21, 19, kRgba, OIIO::TypeDesc::HALF);
        layout.attribute("compression", compression);
        WriteNoise(folder / "whole.exr", layout);
        const std::string whole = ReadBytes(folder / "whole.exr");
        for (int round = 0; round < 150; ++round) {
            std::string changed = whole;
            // Mostly in the header and the table behind it.
            const std::size_t most = round % 3 == 0 ? changed.size() : 400;
            changed[random() % most] = static_cast<char>(random());
            WriteBytes(folder / "a.exr", changed);
            const Codec& chosen = Chosen(folder / "a.exr");
            if (chosen.name.empty()) continue;
            std::string problem;
            const auto ours = Opened(chosen, folder / "a.exr", &problem);
            ASSERT_TRUE(ours) << problem;
            const ImageLayout& of = ours->Layout();
            constexpr int kLarge = 1000;
            if (of.width > kLarge || of.height > kLarge) continue;
            std::vector<float> got(static_cast<std::size_t>(of.width * of.height * of.ChannelCount()));
            if (ours->Read(0, of.ChannelCount(), false, got.data())) continue;
            const auto theirs = Opened(Library(), folder / "a.exr", &problem);
            if (!theirs) continue;
            std::vector<float> wanted(got.size());
            EXPECT_EQ(theirs->Layout().channels, of.channels);
            if (theirs->Read(0, of.ChannelCount(), false, wanted.data())) continue;
            EXPECT_EQ(std::memcmp(got.data(), wanted.data(), got.size() * sizeof(float)), 0) << compression << round;
            ++alike;
        }
    }
    EXPECT_GT(alike, 50);
}

}  // namespace

}  // namespace umbrant::host
