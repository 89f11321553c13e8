// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Conversions of pixels, and what images report of their alpha.

#include "openfx/images/pixels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "openfx/abi/image_names.h"

namespace umbrant::openfx {
namespace {

constexpr PixelForm kPremultiplied{AlphaState::kPremultiplied, false};

TEST(Pixels, StatesAreWhatIsReportedUnlessChosen) {
    EXPECT_EQ(AlphaStateOf(AlphaChoice::kAutomatic, kOfxImagePreMultiplied), AlphaState::kPremultiplied);
    EXPECT_EQ(AlphaStateOf(AlphaChoice::kAutomatic, kOfxImageUnPreMultiplied), AlphaState::kStraight);
    EXPECT_EQ(AlphaStateOf(AlphaChoice::kAutomatic, kOfxImageOpaque), AlphaState::kOpaque);
    EXPECT_EQ(AlphaStateOf(AlphaChoice::kAutomatic, std::nullopt), AlphaState::kStraight);
    EXPECT_EQ(AlphaStateOf(AlphaChoice::kPremultiplied, kOfxImageUnPreMultiplied), AlphaState::kPremultiplied);
    EXPECT_EQ(AlphaStateOf(AlphaChoice::kStraight, kOfxImageOpaque), AlphaState::kStraight);
    EXPECT_STREQ(OutputStateText(AlphaState::kOpaque), kOfxImagePreMultiplied);
    EXPECT_STREQ(OutputStateText(AlphaState::kStraight), kOfxImageUnPreMultiplied);
}

TEST(Pixels, DividesAndMultiplies) {
    const std::vector<float> given = {0.25f, 0.5f, 0.1f, 0.5f, 2, 1, 0, 1};
    const Image straight = ToLibrary({given.data(), 2, 1}, kPremultiplied);
    EXPECT_EQ(straight.Floats()[0], 0.5f);
    EXPECT_EQ(straight.Floats()[1], 1.0f);
    EXPECT_EQ(straight.Floats()[3], 0.5f);
    EXPECT_EQ(straight.Floats()[4], 2.0f);
    std::vector<float> back(8);
    FromLibrary(straight, kPremultiplied, {given.data(), 2, 1}, {back.data(), 2, 1}, 0, 0);
    EXPECT_EQ(back, given);
}

TEST(Pixels, KeepsLightWithoutAlpha) {
    const std::vector<float> given = {3, 2, 1, 0, 0, 0, 0, 0};
    const Image straight = ToLibrary({given.data(), 2, 1}, kPremultiplied);
    EXPECT_EQ(straight.Floats()[0], 0);
    // A shadow of half alpha was drawn beneath the light.
    Image drawn({0, 0, 2, 1}, PixelFormat::kRgbaFloat);
    const float shadow[] = {0, 0, 0.5f, 0.5f, 0, 0, 0.5f, 0.5f};
    std::memcpy(drawn.Floats(), shadow, sizeof shadow);
    std::vector<float> result(8);
    FromLibrary(drawn, kPremultiplied, {given.data(), 2, 1}, {result.data(), 2, 1}, 0, 0);
    EXPECT_EQ(result, (std::vector<float>{3, 2, 1.25f, 0.5f, 0, 0, 0.25f, 0.5f}));
}

TEST(Pixels, OpaqueIsOpaqueWhateverIsStored) {
    const PixelForm opaque{AlphaState::kOpaque, false};
    const std::vector<std::uint8_t> given = {255, 0, 51, 7};
    const Image bytes = ToLibrary({given.data(), 1, 1}, opaque);
    ASSERT_EQ(bytes.Format(), PixelFormat::kRgba8);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.Bytes(), bytes.Bytes() + 4),
              (std::vector<std::uint8_t>{255, 0, 51, 255}));
    const std::vector<float> values = {2, 0.25f, 0, 0};
    const Image floats = ToLibrary({values.data(), 1, 1}, opaque);
    EXPECT_EQ(std::vector<float>(floats.Floats(), floats.Floats() + 4), (std::vector<float>{2, 0.25f, 0, 1}));
    // Its result has a shadow outside, so it is multiplied; nothing is added where the stored alpha is 0.
    Image drawn({0, 0, 1, 1}, PixelFormat::kRgba8);
    const std::uint8_t half[] = {200, 100, 0, 128};
    std::memcpy(drawn.Bytes(), half, 4);
    const std::vector<std::uint8_t> hollow = {9, 9, 9, 0};
    std::vector<std::uint8_t> result(4);
    FromLibrary(drawn, opaque, {hollow.data(), 1, 1}, {result.data(), 1, 1}, 0, 0);
    EXPECT_EQ(result, (std::vector<std::uint8_t>{100, 50, 0, 128}));
}

TEST(Pixels, BytesAreRoundedAndClamped) {
    Image drawn({0, 0, 1, 1}, PixelFormat::kRgbaFloat);
    const float pixel[] = {2, -1, std::nanf(""), 1};
    std::memcpy(drawn.Floats(), pixel, sizeof pixel);
    std::vector<std::uint8_t> result(4, 9), source(4, 255);
    FromLibrary(drawn, kPremultiplied, {source.data(), 1, 1}, {result.data(), 1, 1}, 0, 0);
    EXPECT_EQ(result, (std::vector<std::uint8_t>{255, 0, 0, 255}));
}

TEST(Pixels, EveryPremultipliedByteComesBack) {
    std::vector<std::uint8_t> given;
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int color = 0; color <= alpha; ++color) {
            for (const int channel : {color, alpha - color, 0, alpha})
                given.push_back(static_cast<std::uint8_t>(channel));
        }
    }
    const int count = static_cast<int>(given.size() / 4);
    std::vector<std::uint8_t> back(given.size());
    const ImageView view(given.data(), count, 1);
    FromLibrary(ToLibrary(view, kPremultiplied), kPremultiplied, view, {back.data(), count, 1}, 0, 0);
    EXPECT_EQ(back, given);
}

TEST(Pixels, SwapsBlueAndRed) {
    const std::vector<std::uint8_t> given = {1, 2, 3, 4, 5, 6, 7, 8};
    const PixelForm form{AlphaState::kStraight, true};
    const Image swapped = ToLibrary({given.data(), 2, 1}, form);
    EXPECT_EQ(std::vector<std::uint8_t>(swapped.Bytes(), swapped.Bytes() + 8),
              (std::vector<std::uint8_t>{3, 2, 1, 4, 7, 6, 5, 8}));
    std::vector<std::uint8_t> back(8);
    FromLibrary(swapped, form, {given.data(), 2, 1}, {back.data(), 2, 1}, 0, 0);
    EXPECT_EQ(back, given);
}

TEST(Pixels, WritesThePartAndClearsTheRest) {
    // Drawn is 2 x 2 at (1, 1); the target is 4 x 4 at (0, 0), its rows upwards in memory.
    Image drawn({1, 1, 3, 3}, PixelFormat::kRgba8);
    for (int i = 0; i < 16; ++i) drawn.Bytes()[i] = static_cast<std::uint8_t>(100 + i);
    std::vector<std::uint8_t> memory(64, 9);
    const MutableImageView target(memory.data() + 48, 4, 4, -16);
    FromLibrary(drawn, {}, {}, target, 0, 0);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            const bool isDrawn = x >= 1 && x < 3 && y >= 1 && y < 3;
            const int expected = isDrawn ? 100 + 4 * (2 * (y - 1) + x - 1) : 0;
            EXPECT_EQ(static_cast<int>(memory[static_cast<std::size_t>(16 * (3 - y) + 4 * x)]), expected) << x << y;
        }
    }
    // Nothing of it is in this part.
    FromLibrary(drawn, {}, {}, target, 10, 10);
    EXPECT_EQ(memory, std::vector<std::uint8_t>(64, 0));
}

TEST(Pixels, LightIsAddedWhereTheSourceIs) {
    // The source is 1 x 1 at (0, 0), the target 3 x 1 from (-1, 0).
    Image drawn({-1, 0, 2, 1}, PixelFormat::kRgbaFloat);
    std::memset(drawn.Floats(), 0, 48);
    const float source[] = {5, 5, 5, 0};
    std::vector<float> result(12, 9);
    FromLibrary(drawn, kPremultiplied, {source, 1, 1}, {result.data(), 3, 1}, -1, 0);
    EXPECT_EQ(result, (std::vector<float>{0, 0, 0, 0, 5, 5, 5, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace umbrant::openfx
