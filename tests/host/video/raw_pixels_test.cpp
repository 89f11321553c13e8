// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Worlds to the bytes of a pipe and back: the order of channels, rounding, values beyond 0 to 1.

#include "host/video/raw_pixels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "tests/host/image/filled_worlds.h"

namespace umbrant::host {

namespace {

using testing::ElementsAre;

std::vector<int> Numbers(const std::vector<std::byte>& bytes) {
    std::vector<int> numbers;
    for (const std::byte byte : bytes) numbers.push_back(std::to_integer<int>(byte));
    return numbers;
}

TEST(RawPixels, EightBitsStandAsRedGreenBlueAlpha) {
    World world = World::Create(2, 2, Depth::k8);
    Pixel8(world, 0, 0) = {1, 2, 3, 4};
    Pixel8(world, 1, 0) = {5, 6, 7, 8};
    Pixel8(world, 0, 1) = {255, 254, 253, 252};
    const auto bytes = RawFromWorld(RawFormat::k8, world);
    EXPECT_THAT(Numbers(bytes), ElementsAre(2, 3, 4, 1, 6, 7, 8, 5, 254, 253, 252, 255, 0, 0, 0, 0));
    World back = WorldFromRaw(RawFormat::k8, 2, 2, bytes);
    EXPECT_EQ(RawFromWorld(RawFormat::k8, back), bytes);
    EXPECT_EQ(Pixel8(back, 0, 1).alpha, 255);
    EXPECT_EQ(Pixel8(back, 1, 0).blue, 8);
}

TEST(RawPixels, SixteenBitsAreRoundedAndClamped) {
    World world = FilledFloat(1, 1, {1.0f, 0.5f, -3.0f, 7.0f});
    EXPECT_THAT(Numbers(RawFromWorld(RawFormat::k16, world)), ElementsAre(0x00, 0x80, 0, 0, 255, 255, 255, 255));
    const float none = std::numeric_limits<float>::quiet_NaN();
    world = FilledFloat(1, 1, {0.0f, none, 1.0f / 65535, 0.49f / 65535});
    EXPECT_THAT(Numbers(RawFromWorld(RawFormat::k16, world)), ElementsAre(0, 0, 1, 0, 0, 0, 0, 0));
}

TEST(RawPixels, EverySixteenBitNumberComesBack) {
    std::vector<std::byte> bytes(RawSize(RawFormat::k16, 128, 128));
    for (std::size_t i = 0; i < 65536; ++i) {
        bytes[2 * i] = static_cast<std::byte>(i & 255);
        bytes[2 * i + 1] = static_cast<std::byte>(i >> 8);
    }
    EXPECT_EQ(RawFromWorld(RawFormat::k16, WorldFromRaw(RawFormat::k16, 128, 128, bytes)), bytes);
}

TEST(RawPixels, FloatsStandInPlanes) {
    World world = FilledFloat(2, 1, {0.25f, -1.0f, 2.5f, 1e20f});
    PixelFloat(world, 1, 0) = {1, 2, 3, 4};
    const auto bytes = RawFromWorld(RawFormat::kFloat, world);
    float values[8];
    ASSERT_EQ(bytes.size(), sizeof values);
    std::memcpy(values, bytes.data(), sizeof values);
    EXPECT_THAT(values, ElementsAre(2.5f, 3, 1e20f, 4, -1.0f, 2, 0.25f, 1)) << "green, blue, red, alpha";
    EXPECT_EQ(RawFromWorld(RawFormat::kFloat, WorldFromRaw(RawFormat::kFloat, 2, 1, bytes)), bytes);
}

TEST(RawPixels, FormatsForBits) {
    EXPECT_STREQ(NameOf(RawFormatFor(8)), "rgba");
    EXPECT_STREQ(NameOf(RawFormatFor(10)), "rgba64le");
    EXPECT_STREQ(NameOf(RawFormatFor(16)), "rgba64le");
    EXPECT_STREQ(NameOf(RawFormatFor(32)), "gbrapf32le");
}

}  // namespace

}  // namespace umbrant::host
