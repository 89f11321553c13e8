// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The transfer callbacks, element by element, on worlds with padded rows.

#include "pixel/pixel_transfer.h"

#include <gtest/gtest.h>

#include <vector>

#include "hostapi/errors.h"
#include "tests/support/capture_stdout.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

namespace {

constexpr int kWidth = 5;
constexpr int kHeight = 3;

/// Walks the world as an iterate suite would, with the same world as source and destination.
template <typename Pixel, typename Function>
void Walk(TestWorld* world, PixelTransferRefcon* refcon, Function function) {
    for (A_long y = world->world.height - 1; y >= 0; --y) {
        for (A_long x = 0; x < world->world.width; ++x) {
            auto* pixel =
                reinterpret_cast<Pixel*>(reinterpret_cast<char*>(world->world.data) + y * world->world.rowbytes) + x;
            EXPECT_EQ(function(refcon, x, y, pixel, pixel), PF_Err_NONE);
        }
    }
}

TEST(PixelTransfer, AlphaGoesInPackedFromPaddedRows) {
    TestWorld world(kWidth, kHeight, sizeof(PF_Pixel));
    ASSERT_GT(world.world.rowbytes, kWidth * 4);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) world.At8(x, y) = {static_cast<A_u_char>(10 * y + x), 201, 202, 203};
    }
    std::vector<uint8_t> buffer(kWidth * kHeight + 2, 0xEE);
    PixelTransferRefcon refcon = {buffer.data(), &world.world, nullptr};
    Walk<PF_Pixel>(&world, &refcon, CopyRedPixel8In);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            EXPECT_EQ(buffer[static_cast<size_t>(y * kWidth + x)], 10 * y + x);
            EXPECT_EQ(world.At8(x, y).red, 201) << "the world is not written";
            EXPECT_EQ(world.At8(x, y).alpha, 10 * y + x);
        }
    }
    EXPECT_EQ(buffer[kWidth * kHeight], 0xEE) << "nothing past the last element";
    EXPECT_TRUE(world.PaddingIntact());
}

TEST(PixelTransfer, FloatAlphaGoesInUnscaled) {
    TestWorld world(kWidth, kHeight, sizeof(PF_PixelFloat));
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            world.AtFloat(x, y) = {-1.5f + static_cast<float>(10 * y + x), 9.0f, 9.0f, 9.0f};
        }
    }
    std::vector<float> buffer(kWidth * kHeight);
    PixelTransferRefcon refcon = {buffer.data(), &world.world, nullptr};
    Walk<PF_PixelFloat>(&world, &refcon, CopyRedFloatIn);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            EXPECT_EQ(buffer[static_cast<size_t>(y * kWidth + x)], -1.5f + static_cast<float>(10 * y + x));
        }
    }
    EXPECT_TRUE(world.PaddingIntact());
}

TEST(PixelTransfer, AlphaComesOutWithTheColour) {
    TestWorld world(kWidth, kHeight, sizeof(PF_Pixel));
    std::vector<uint8_t> buffer;
    for (int i = 0; i < kWidth * kHeight; ++i) buffer.push_back(static_cast<uint8_t>(3 * i + 1));
    PF_Pixel colour = {0, 11, 22, 33};  // its own alpha of 0 plays no part
    PixelTransferRefcon refcon = {buffer.data(), &world.world, &colour};
    Walk<PF_Pixel>(&world, &refcon, CopyPixel8Out);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const PF_Pixel& pixel = world.At8(x, y);
            EXPECT_EQ(pixel.alpha, 3 * (y * kWidth + x) + 1);
            EXPECT_EQ(pixel.red, 11);
            EXPECT_EQ(pixel.green, 22);
            EXPECT_EQ(pixel.blue, 33);
        }
    }
    EXPECT_TRUE(world.PaddingIntact());
}

TEST(PixelTransfer, FloatAlphaComesOutWithTheColour) {
    TestWorld world(kWidth, kHeight, sizeof(PF_PixelFloat));
    std::vector<float> buffer;
    for (int i = 0; i < kWidth * kHeight; ++i) buffer.push_back(static_cast<float>(i) * 0.5f - 1.0f);
    PF_PixelFloat colour = {0.0f, 1.25f, -0.5f, 0.75f};
    PixelTransferRefcon refcon = {buffer.data(), &world.world, &colour};
    Walk<PF_PixelFloat>(&world, &refcon, CopyPixelFloatOut);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const PF_PixelFloat& pixel = world.AtFloat(x, y);
            EXPECT_EQ(pixel.alpha, static_cast<float>(y * kWidth + x) * 0.5f - 1.0f);
            EXPECT_EQ(pixel.red, 1.25f);
            EXPECT_EQ(pixel.green, -0.5f);
            EXPECT_EQ(pixel.blue, 0.75f);
        }
    }
    EXPECT_TRUE(world.PaddingIntact());
}

// The row length is the world's width alone: with the padding counted in, the second row would start further on.
TEST(PixelTransfer, IndexUsesTheWidthOfTheRefconsWorld) {
    PF_EffectWorld seven{};
    seven.width = 7;
    std::vector<uint8_t> buffer(21, 0);
    PixelTransferRefcon refcon = {buffer.data(), &seven, nullptr};
    PF_Pixel pixel = {99, 0, 0, 0};
    CopyRedPixel8In(&refcon, 2, 1, &pixel, nullptr);
    EXPECT_EQ(buffer[9], 99);
}

TEST(PixelTransfer, TheOtherPixelIsNotTouched) {
    PF_EffectWorld one{};
    one.width = 1;
    uint8_t byte = 5;
    float number = 0.25f;
    PF_Pixel colour = {1, 2, 3, 4};
    PF_PixelFloat colourFloat = {1, 2, 3, 4};
    PixelTransferRefcon in8 = {&byte, &one, nullptr};
    PixelTransferRefcon out8 = {&byte, &one, &colour};
    PixelTransferRefcon outFloat = {&number, &one, &colourFloat};
    PF_Pixel source = {7, 7, 7, 7};
    PF_Pixel other = {9, 9, 9, 9};
    CopyRedPixel8In(&in8, 0, 0, &source, &other);
    EXPECT_EQ(other.alpha, 9);
    CopyPixel8Out(&out8, 0, 0, &source, &other);
    EXPECT_EQ(source.alpha, 7);
    EXPECT_EQ(other.alpha, 7);
    PF_PixelFloat destination{};
    EXPECT_EQ(CopyPixelFloatOut(&outFloat, 0, 0, nullptr, &destination), PF_Err_NONE) << "the source may be null";
    EXPECT_EQ(destination.alpha, 0.25f);
    EXPECT_EQ(colour.alpha, 1) << "the colour is read only";
}

TEST(PixelTransfer, MaxAlphaKeepsTheColour) {
    PF_Pixel black{};
    EXPECT_EQ(maxAlpha8(nullptr, 0, 0, nullptr, &black), PF_Err_NONE);
    EXPECT_EQ(black.alpha, 255);
    EXPECT_EQ(black.red + black.green + black.blue, 0) << "opaque black";
    PF_Pixel tinted = {10, 20, 30, 40};
    maxAlpha8(nullptr, 3, 4, nullptr, &tinted);
    EXPECT_EQ(tinted.alpha, 255);
    EXPECT_EQ(tinted.red, 20);
    EXPECT_EQ(tinted.green, 30);
    EXPECT_EQ(tinted.blue, 40);
    PF_PixelFloat light = {0.25f, 2.0f, -1.0f, 0.5f};
    EXPECT_EQ(maxAlpha32(nullptr, 0, 0, nullptr, &light), PF_Err_NONE);
    EXPECT_EQ(light.alpha, 1.0f);
    EXPECT_EQ(light.red, 2.0f);
    EXPECT_EQ(light.green, -1.0f);
    EXPECT_EQ(light.blue, 0.5f);
}

TEST(SampleIntegral, AddressesByRowbytes) {
    TestWorld world8(4, 3, sizeof(PF_Pixel), 5);
    TestWorld worldFloat(4, 3, sizeof(PF_PixelFloat), 2);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(sampleIntegral8(world8.world, x, y), &world8.At8(x, y));
            EXPECT_EQ(sampleIntegral32(worldFloat.world, x, y), &worldFloat.AtFloat(x, y));
        }
    }
    // No bounds: the pixel left of the second row is in the first row's padding.
    EXPECT_EQ(reinterpret_cast<char*>(sampleIntegral8(world8.world, -1, 1)),
              reinterpret_cast<char*>(world8.world.data) + world8.world.rowbytes - 4);
}

TEST(SampleIntegral, NegativeRowbytesAddressBottomUpWorlds) {
    TestWorld world8(4, 3, sizeof(PF_Pixel), 5);
    PF_EffectWorld bottomUp = world8.world;
    bottomUp.data = &world8.At8(0, 2);
    bottomUp.rowbytes = -world8.world.rowbytes;
    EXPECT_EQ(sampleIntegral8(bottomUp, 1, 2), &world8.At8(1, 0));
}

TEST(Problem, PrintsNothing) {
    CaptureStdout out;
    Problem();
    EXPECT_EQ(out.Text(), "");
}

static_assert(offsetof(PixelTransferRefcon, buffer) == 0 && offsetof(PixelTransferRefcon, world) == 8 &&
              offsetof(PixelTransferRefcon, colour) == 16);
static_assert(std::is_same_v<decltype(&CopyRedPixel8In), PF_IteratePixel8Func>);
static_assert(std::is_same_v<decltype(&CopyPixelFloatOut), PF_IteratePixelFloatFunc>);

}  // namespace

}  // namespace umbrant::effect
