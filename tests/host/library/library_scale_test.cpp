// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Layers at a part of their resolution, and pixels that are not square.

#include <dlfcn.h>

#include <cmath>

#include "host/compositing/resample.h"
#include "tests/host/library/library_fixture.h"
#include "tests/modules/painter.h"

namespace umbrant::host {

namespace {

using umbrant::Effect;
using umbrant::FrameOptions;
using umbrant::Image;

constexpr int kScaledWidth = 60;
constexpr int kScaledHeight = 48;

/// What the painter saw last. It is loaded.
const PainterSeen& Seen() {
    void* const module = dlopen(TestModule("painter").c_str(), RTLD_NOW | RTLD_NOLOAD);
    const auto* seen = static_cast<const PainterSeen*>(dlsym(module, "painterSeen"));
    dlclose(module);
    return *seen;
}

Pixels<std::uint8_t> Downsampled(const Pixels<std::uint8_t>& whole, int n) {
    const World world = Downsample(WorldOfPixels(whole), n);
    Pixels<std::uint8_t> small{world.Width(), world.Height(),
                               std::vector<std::uint8_t>(4u * world.Width() * world.Height())};
    for (int y = 0; y < small.height; ++y) {
        for (int x = 0; x < small.width; ++x) {
            PF_Pixel pixel;
            std::memcpy(&pixel, world.Row(y) + 4 * x, 4);
            const std::uint8_t rgba[] = {pixel.red, pixel.green, pixel.blue, pixel.alpha};
            std::memcpy(small.At(x, y), rgba, 4);
        }
    }
    return small;
}

TEST(LibraryScale, OneNthIsTheProgramsDownsample) {
    const Folder folder;
    const auto whole = Disc8(kScaledWidth, kScaledHeight);
    WritePixels(folder / "in.tif", whole);
    const auto texture = Disc8(kScaledWidth, kScaledHeight);
    WritePixels(folder / "texture.tif", texture);
    const auto small = Downsampled(whole, 3), smallTexture = Downsampled(texture, 3);
    Effect effect = RealEffect();
    effect.Set("style/distance", 40);
    effect.Set("style/shadow-type", "radial");
    effect.Set("style/origin", "10,40");
    effect.Set("texture/blend-mode", "normal");
    FrameOptions options;
    options.texture = smallTexture.View();
    options.textureX = 10;
    options.textureY = -20;
    options.scaleX = options.scaleY = {1, 3};
    const Image image = effect.Render(small.View(), options);
    const Outcome outcome = RunUmbrant(folder, {"render",       "in.tif",
                                                "-o",           "out.tif",
                                                "--renderer",   "cpu",
                                                "--downsample", "3",
                                                "--texture",    "texture.tif",
                                                "--texture-at", "10,-20",
                                                "--set",        "style/distance=40",
                                                "--set",        "style/shadow-type=radial",
                                                "--set",        "style/origin=10,40",
                                                "--set",        "texture/blend-mode=normal"},
                                       {{std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE}, ""});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(DifferentPixels(Read(folder / "out.tif").pixels, image.View()), 0);
    options.scaleX = options.scaleY = {7, 21};
    EXPECT_EQ(DifferentBytes(effect.Render(small.View(), options), image), 0u) << "not in lowest terms";
    options.scaleX = options.scaleY = {};
    options.downsample = 3;
    EXPECT_EQ(DifferentBytes(effect.Render(small.View(), options), image), 0u);
}

TEST(LibraryScale, TheScaleIsMultipliedByTheDownsample) {
    const auto layer = Disc8(15, 12);
    Effect effect = RealEffect();
    effect.Set("style/distance", 64);
    FrameOptions two, four;
    two.downsample = 2;
    two.scaleX = two.scaleY = {1, 2};
    four.downsample = 4;
    EXPECT_EQ(DifferentBytes(effect.Render(layer.View(), two), effect.Render(layer.View(), four)), 0u);
}

TEST(LibraryScale, LengthsAreScaled) {
    struct {
        umbrant::Fraction scale;
        int border;
    } const cases[] = {{{1, 1}, 30}, {{2, 3}, 20}, {{3, 8}, 12}, {{9, 10}, 27}, {{1, 64}, 1}, {{999999, 1000000}, 30}};
    Effect painter = Painter();
    painter.Set("paint/border", 30);
    Effect effect = RealEffect();
    effect.Set("style/softness", 0);
    effect.Set("style/angle", 90);
    effect.Set("style/distance", 300);
    const double full = effect.Place(100, 100).right - 100;
    EXPECT_NEAR(full, 300, 2);
    for (const auto& row : cases) {
        SCOPED_TRACE(std::to_string(row.scale.numerator) + "/" + std::to_string(row.scale.denominator));
        FrameOptions options;
        options.scaleX = options.scaleY = row.scale;
        EXPECT_EQ(-painter.Place(100, 100, options).left, row.border);
        const double factor = static_cast<double>(row.scale.numerator) / row.scale.denominator;
        EXPECT_NEAR(effect.Place(100, 100, options).right - 100, full * factor, 2);
    }
}

TEST(LibraryScale, TheEffectGetsBothSidesAndThePixelsRatio) {
    Effect effect = Painter();
    effect.Set("paint/centre", "30,40");
    const auto layer = Disc8(40, 12);
    FrameOptions options;
    options.scaleX = {4, 6};
    options.scaleY = {1, 4};
    options.pixelAspect = {128, 117};
    options.texture = layer.View();
    options.textureX = 30;
    options.textureY = 40;
    effect.Render(layer.View(), options);
    const PainterSeen& seen = Seen();
    for (const PF_InData& in : {seen.preRenderIn, seen.renderIn}) {
        EXPECT_EQ(in.downsample_x.num, 2);
        EXPECT_EQ(in.downsample_x.den, 3u);
        EXPECT_EQ(in.downsample_y.num, 1);
        EXPECT_EQ(in.downsample_y.den, 4u);
        EXPECT_EQ(in.pixel_aspect_ratio.num, 128);
        EXPECT_EQ(in.pixel_aspect_ratio.den, 117u);
        EXPECT_EQ(in.width, 60);
        EXPECT_EQ(in.height, 48);
    }
    EXPECT_EQ(seen.centre.u.td.x_value, 20 << 16);
    EXPECT_EQ(seen.centre.u.td.y_value, 10 << 16);
    EXPECT_EQ(seen.pictureWorld.origin_x, 20);
    EXPECT_EQ(seen.pictureWorld.origin_y, 10);
    EXPECT_EQ(seen.input.par.num, 128);
    for (const PF_EffectWorld& world : {seen.inputWorld, seen.pictureWorld, seen.outputWorld}) {
        EXPECT_EQ(world.pix_aspect_ratio.num, 128);
        EXPECT_EQ(world.pix_aspect_ratio.den, 117u);
    }
    options.layerWidth = 61;
    options.layerHeight = 47;
    effect.Place(40, 12, options);
    EXPECT_EQ(Seen().preRenderIn.width, 61);
    EXPECT_EQ(Seen().preRenderIn.height, 47);
}

TEST(LibraryScale, ThisEffectDrawsTheSameAtEveryPixelRatio) {
    const auto layer = Disc8(kScaledWidth, kScaledHeight);
    const Effect effect = RealEffect();
    FrameOptions wide;
    wide.pixelAspect = {64, 45};
    EXPECT_EQ(DifferentBytes(effect.Render(layer.View(), wide), effect.Render(layer.View())), 0u);
}

TEST(LibraryScale, WhatIsOutOfRangeIsRefused) {
    struct {
        umbrant::Fraction x, y, aspect;
        int downsample;
        const char* sentence;
    } const cases[] = {
        {{3, 2},
         {},
         {},
         1,
         "2: the scale along x is 3/2; it must be from 1/64 to 1, of whole numbers from 1 to 1000000"},
        {{},
         {1, 65},
         {},
         1,
         "2: the scale along y is 1/65; it must be from 1/64 to 1, of whole numbers from 1 to 1000000"},
        {{0, 1},
         {},
         {},
         1,
         "2: the scale along x is 0/1; it must be from 1/64 to 1, of whole numbers from 1 to 1000000"},
        {{1, 0},
         {},
         {},
         1,
         "2: the scale along x is 1/0; it must be from 1/64 to 1, of whole numbers from 1 to 1000000"},
        {{-1, -2},
         {},
         {},
         1,
         "2: the scale along x is -1/-2; it must be from 1/64 to 1, of whole numbers from 1 to 1000000"},
        {{1000000, 1000001},
         {},
         {},
         1,
         "2: the scale along x is 1000000/1000001; it must be from 1/64 to 1, of whole numbers from 1 to 1000000"},
        {{}, {1, 2}, {}, 33, "2: the scale along y is 1/2 and downsample is 33; their product must be 1/64 or more"},
        {{},
         {},
         {0, 1},
         1,
         "2: the pixel aspect ratio is 0/1; it must be from 1/100 to 100, of whole numbers from 1 to 1000000"},
        {{},
         {},
         {101, 1},
         1,
         "2: the pixel aspect ratio is 101/1; it must be from 1/100 to 100, of whole numbers from 1 to 1000000"},
        {{1, 2}, {1, 2}, {100, 1}, 32, ""},
    };
    const auto layer = Disc8(6, 5);
    const Effect effect = Painter();
    for (const auto& row : cases) {
        FrameOptions options;
        options.scaleX = row.x;
        options.scaleY = row.y;
        options.pixelAspect = row.aspect;
        options.downsample = row.downsample;
        EXPECT_EQ(Thrown([&] { effect.Render(layer.View(), options); }), row.sentence);
        EXPECT_EQ(Thrown([&] { effect.Place(6, 5, options); }), row.sentence);
    }
}

}  // namespace

}  // namespace umbrant::host
