// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Colours as numbers: kept where frames are floats, also above 1 and below 0, and the nearest 8-bit colour elsewhere.

#include <cmath>
#include <limits>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using umbrant::Color;
using umbrant::Effect;
using umbrant::Image;

constexpr int kSide = 40;

Effect HardShadow() {
    Effect effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kProcessor, false, {}});
    effect.Set("style/distance", 60);
    effect.Set("style/angle", 90);
    effect.Set("style/softness", 0);
    return effect;
}

Pixels<float> OpaqueFloat() {
    return {kSide, kSide, std::vector<float>(4u * kSide * kSide, 1.0f)};
}

/// The shadow beside the layer: red, green, blue and alpha.
const float* ShadowOf(const Image& image) {
    const umbrant::Rectangle place = image.Place();
    const int x = kSide + 15 - place.left, y = kSide / 2 - place.top;
    return image.Floats() + 4 * (static_cast<std::ptrdiff_t>(y) * image.Width() + x);
}

TEST(LibraryColor, FloatFramesKeepNumbersAboveOneAndBelowZero) {
    const auto layer = OpaqueFloat();
    Effect effect = HardShadow();
    for (const Color& color : {Color{2.5f, 0.25f, -0.5f}, Color{65504, 1, 0}, Color{0.1f, 0.7f, 0.123456f}}) {
        effect.Set("style/color", color);
        const Image image = effect.Render(layer.View());
        const float* shadow = ShadowOf(image);
        EXPECT_GT(shadow[3], 0.0f);
        EXPECT_EQ(shadow[0], color.red);
        EXPECT_EQ(shadow[1], color.green);
        EXPECT_EQ(shadow[2], color.blue);
        umbrant::Values values = Effect(HardShadow()).CurrentValues();
        values.Set("style/color", color);
        EXPECT_EQ(DifferentBytes(effect.Render(layer.View(), values), image), 0u);
    }
}

TEST(LibraryColor, EveryShadowTypeKeepsThem) {
    const auto layer = DiscFloat(kSide, kSide);
    for (const char* type : {"normal", "inner", "radial"}) {
        Effect effect = HardShadow();
        effect.Set("style/shadow-type", type);
        effect.Set("style/color", Color{4, 0, 0});
        const Image image = effect.Render(layer.View());
        float most = 0;
        for (std::size_t i = 0; i < image.PixelCount(); ++i) most = std::max(most, image.Floats()[4 * i]);
        EXPECT_GT(most, 3.9f) << type;
    }
}

TEST(LibraryColor, ByteFramesHaveTheNearestColour) {
    const auto layer = Disc8(kSide, kSide);
    Effect numbers = HardShadow(), text = HardShadow();
    numbers.Set("style/color", Color{2.5f, 0.5f, -3});
    text.Set("style/color", "#ff8000");
    EXPECT_EQ(numbers.Get("style/color"), "#ff8000");
    EXPECT_EQ(DifferentBytes(numbers.Render(layer.View()), text.Render(layer.View())), 0u);
}

TEST(LibraryColor, NumbersThatEightBitsHoldAreTheTexts) {
    const auto layer = DiscFloat(kSide, kSide);
    Effect numbers = HardShadow(), text = HardShadow();
    numbers.Set("style/color", Color{32 / 255.0f, 48 / 255.0f, 96 / 255.0f});
    text.Set("style/color", "#203060");
    EXPECT_EQ(DifferentBytes(numbers.Render(layer.View()), text.Render(layer.View())), 0u);
}

TEST(LibraryColor, ALaterTextTakesThePlaceOfNumbers) {
    const auto layer = OpaqueFloat();
    Effect effect = HardShadow();
    effect.Set("style/color", Color{4, 4, 4});
    EXPECT_EQ(effect.Get("style/color"), "#ffffff");
    effect.Set("style/color", "#ffffff");
    EXPECT_EQ(ShadowOf(effect.Render(layer.View()))[0], 1.0f);
    effect.Set("style/color", Color{4, 4, 4});
    // As a preset has 8 bits for a channel.
    effect.ApplyPreset(effect.PresetText());
    EXPECT_EQ(ShadowOf(effect.Render(layer.View()))[0], 1.0f);
    effect.Set("style/color", Color{4, 4, 4});
    effect.Reset();
    EXPECT_EQ(effect.Get("style/color"), effect.Find("style/color").defaultText);
}

TEST(LibraryColor, SetColorsRemoveKeyframes) {
    const auto layer = OpaqueFloat();
    Effect effect = HardShadow();
    effect.ApplyPreset(R"({"version": 2, "keyframes": {"style/color": [{"frame": 0, "value": "#000000"},
                                                                       {"frame": 24, "value": "#ffffff"}]}})");
    umbrant::FrameOptions later;
    later.seconds = 1;
    EXPECT_EQ(ShadowOf(effect.Render(layer.View(), later))[0], 1.0f);
    effect.Set("style/color", Color{3, 0, 0});
    EXPECT_EQ(ShadowOf(effect.Render(layer.View(), later))[0], 3.0f);
}

TEST(LibraryColor, WhatIsNoColourIsRefused) {
    const float nan = std::numeric_limits<float>::quiet_NaN(), infinite = std::numeric_limits<float>::infinity();
    struct {
        const char* path;
        Color color;
        const char* sentence;
    } const cases[] = {
        {"style/distance", {}, "2: 'style/distance' is a slider and takes no colour"},
        {"style", {}, "2: 'style' is a group and takes no colour"},
        {"style/color", {nan, 0, 0}, "2: 'style/color' takes channels from -65504 to 65504, not nan,0,0"},
        {"style/color", {0, infinite, 0}, "2: 'style/color' takes channels from -65504 to 65504, not 0,inf,0"},
        {"style/color", {0, 0, -70000}, "2: 'style/color' takes channels from -65504 to 65504, not 0,0,-70000"},
        {"style/colour", {}, "2: there is no parameter 'style/colour'; closest: 'style/color'"},
    };
    Effect effect = HardShadow();
    const std::string before = effect.PresetText();
    for (const auto& row : cases) {
        EXPECT_EQ(Thrown([&] { effect.Set(row.path, row.color); }), row.sentence);
    }
    EXPECT_EQ(effect.PresetText(), before);
}

}  // namespace

}  // namespace umbrant::host
