// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Writing PNG by its own library: the image library and other programs read back what was written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "host/image/image_layout.h"
#include "host/image/metadata.h"
#include "host/image/picture.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/folder.h"
#include "tests/support/run_program.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

World Random(int width, int height, Depth depth) {
    World world = World::Create(width, height, depth);
    std::mt19937 random(width * 31 + height);
    std::uniform_real_distribution<float> value(-0.2f, 1.2f);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            // Flat parts, ramps and noise, so that every filter is the best one somewhere.
            const auto byte = [&](int c) {
                return static_cast<A_u_char>(y % 3 == 0 ? 0 : y % 3 == 1 ? x + c : random());
            };
            if (depth == Depth::k8) {
                Pixel8(world, x, y) = {byte(0), byte(1), byte(2), byte(3)};
            } else {
                PixelFloat(world, x, y) = {value(random), value(random), value(random), value(random)};
            }
        }
    }
    return world;
}

float Steps(float value, float full) {
    return std::floor(std::min(1.0f, std::max(0.0f, value)) * full + 0.5f);
}

TEST(PngCodec, EveryCompressionHoldsTheSamePixels) {
    const Folder folder;
    struct Size {
        int width, height;
    };
    // One pixel, a row longer than a block of the compressor, more than a band, and something ordinary.
    for (const Size& size : {Size{1, 1}, Size{29000, 5}, Size{3000, 2900}, Size{640, 333}}) {
        for (const Depth depth : {Depth::k8, Depth::k32}) {
            if (size.width == 3000 && depth == Depth::k32) continue;
            const World world = Random(size.width, size.height, depth);
            for (const char* compression : {"", "default", "fast", "small"}) {
                SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << " " << compression);
                if (size.width == 3000 && std::string(compression) == "small") continue;
                WriteOptions options;
                options.compression = compression;
                const Placement place{{3, 4, 3 + size.width, 4 + size.height}, size.width, size.height, {}};
                const auto written = WritePicture(folder / "a.png", world, place, options);
                ASSERT_TRUE(written) << written.error().sentence;
                const RawFile raw = ReadRaw(folder / "a.png");
                EXPECT_EQ(raw.layout.format, depth == Depth::k8 ? OIIO::TypeDesc::UINT8 : OIIO::TypeDesc::UINT16);
                EXPECT_EQ(raw.layout.x, 3);
                EXPECT_EQ(raw.layout.y, 4);
                std::size_t wrong = 0, i = 0;
                const float full = depth == Depth::k8 ? 255.0f : 65535.0f;
                for (int y = 0; y < size.height; ++y) {
                    const void* row = world.Row(y);
                    for (int x = 0; x < size.width; ++x) {
                        std::array<float, 4> expected{};
                        if (depth == Depth::k8) {
                            const PF_Pixel& p = static_cast<const PF_Pixel*>(row)[x];
                            expected = {static_cast<float>(p.red), static_cast<float>(p.green),
                                        static_cast<float>(p.blue), static_cast<float>(p.alpha)};
                        } else {
                            const PF_PixelFloat& p = static_cast<const PF_PixelFloat*>(row)[x];
                            expected = {Steps(p.red, full), Steps(p.green, full), Steps(p.blue, full),
                                        Steps(p.alpha, full)};
                        }
                        for (const float value : expected) wrong += std::round(raw.values[i++] * full) != value;
                    }
                }
                EXPECT_EQ(wrong, 0u);
            }
        }
    }
}

TEST(PngCodec, ADamagedNumberBecomesNothing) {
    const Folder folder;
    const float infinity = std::numeric_limits<float>::infinity();
    World world = FilledFloat(2, 1, {std::nanf(""), infinity, -infinity, 0.5f});
    ASSERT_TRUE(WritePicture(folder / "a.png", world, {}));
    const RawFile raw = ReadRaw(folder / "a.png");
    EXPECT_EQ(raw.values[0], 1.0f);
    EXPECT_EQ(raw.values[1], 0.0f);
    EXPECT_NEAR(raw.values[2], 0.5f, 1e-4f);
    EXPECT_EQ(raw.values[3], 0.0f);
}

TEST(PngCodec, OtherReadersFindNoFault) {
    if (RunProgram({"pngcheck", "-h"}).code == -1) GTEST_SKIP() << "pngcheck is not installed";
    const Folder folder;
    for (const char* compression : {"default", "fast", "small"}) {
        SCOPED_TRACE(compression);
        WriteOptions options;
        options.compression = compression;
        ImageLayout layout;
        layout.SetText("ImageDescription", "\xe2\x82\xac and J\xc3\xb6rg");
        layout.SetText("Own", "J\xc3\xb6rg");
        layout.SetText("oiio:ColorSpace", "sRGB");
        layout.SetText("DateTime", "2020:01:02 03:04:05");
        layout.SetReal("XResolution", 300);
        layout.SetReal("YResolution", 300);
        layout.SetText("ResolutionUnit", "in");
        options.metadata = std::make_shared<const PictureMetadata>(PictureMetadata{layout.attributes, "png", "", ""});
        ASSERT_TRUE(WritePicture(folder / "a.png", Random(1200, 900, Depth::k8), {}, options));
        const ProgramRun run = RunProgram({"pngcheck", "-q", (folder / "a.png").string()});
        EXPECT_EQ(run.code, 0) << run.output << run.errors;
    }
}

TEST(PngCodec, MetadataAreWrittenAsBefore) {
    const Folder folder;
    ImageLayout layout;
    layout.SetText("ImageDescription", "what");
    layout.SetText("Artist", "who");
    layout.SetText("Own", "J\xc3\xb6rg");
    layout.SetText("Euro", "\xe2\x82\xac");
    layout.SetText("", "a text without a key");
    layout.SetText(std::string(80, 'k'), "a key that is too long");
    layout.SetText("DateTime", "2020:01:02 03:04:05");
    layout.SetReal("XResolution", 30);
    layout.SetReal("YResolution", 30);
    layout.SetText("ResolutionUnit", "cm");
    for (const auto& [space, expected] : {std::pair("sRGB", "sRGB"), std::pair("Gamma2.2", "Gamma2.2"),
                                          std::pair("Linear", "linear"), std::pair("ACEScg", "sRGB")}) {
        SCOPED_TRACE(space);
        layout.SetText("oiio:ColorSpace", space);
        WriteOptions options;
        options.metadata = std::make_shared<const PictureMetadata>(PictureMetadata{layout.attributes, "png", "", ""});
        ASSERT_TRUE(WritePicture(folder / "a.png", Random(3, 2, Depth::k8), {}, options));
        const OIIO::ImageSpec back = ReadRaw(folder / "a.png").layout;
        EXPECT_EQ(back.get_string_attribute("ImageDescription"), "what");
        EXPECT_EQ(back.get_string_attribute("Artist"), "who");
        EXPECT_EQ(back.get_string_attribute("Euro"), "\xe2\x82\xac");
        EXPECT_EQ(back.get_string_attribute("DateTime"), "2020:01:02 03:04:05");
        EXPECT_NEAR(back.get_float_attribute("XResolution"), 30 * 2.54, 0.01);
        EXPECT_EQ(back.get_string_attribute("oiio:ColorSpace"), expected);
        // The image library's word for a colour space is no text for people.
        EXPECT_THAT(ReadBytes(folder / "a.png"), testing::Not(HasSubstr("oiio:")));
        const auto own = ReadPicture(folder / "a.png");
        ASSERT_TRUE(own);
        std::string kept;
        for (const Attribute& attribute : own->metadata->attributes) {
            if (attribute.name == "Own") kept = attribute.texts.front();
        }
        EXPECT_EQ(kept, "J\xc3\xb6rg");
    }
}

}  // namespace

}  // namespace umbrant::host
