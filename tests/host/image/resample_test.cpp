// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Smaller worlds, other depths, cut frames.

#include "host/compositing/resample.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/host/image/filled_worlds.h"

namespace umbrant::host {

namespace {

TEST(Downsample, SizesCountPartsOfAPixel) {
    struct {
        int size, n, expected;
    } const cases[] = {{1920, 2, 960}, {1919, 2, 960}, {1, 4, 1}, {0, 3, 0}, {10, 3, 4}, {9, 3, 3}, {7, 1, 7}};
    for (const auto& row : cases) EXPECT_EQ(DownsampledSize(row.size, row.n), row.expected) << row.size << "/" << row.n;
}

TEST(Downsample, ColoursAreWeightedByAlpha) {
    World world = World::Create(2, 2, Depth::k8);
    Pixel8(world, 0, 0) = {255, 200, 0, 100};
    Pixel8(world, 1, 0) = {0, 0, 255, 0};
    Pixel8(world, 0, 1) = {0, 0, 255, 0};
    Pixel8(world, 1, 1) = {51, 100, 0, 100};
    World half = Downsample(world, 2);
    ASSERT_EQ(half.Width(), 1);
    ASSERT_EQ(half.Height(), 1);
    EXPECT_EQ(Pixel8(half, 0, 0).alpha, 77);  // 306 / 4 = 76.5
    EXPECT_EQ(Pixel8(half, 0, 0).red, 183);   // (255 x 200 + 51 x 100) / 306 = 183.33
    EXPECT_EQ(Pixel8(half, 0, 0).green, 0);
    EXPECT_EQ(Pixel8(half, 0, 0).blue, 100);
}

TEST(Downsample, WithoutAlphaThePlainMeanIsKept) {
    World world = Filled8(2, 2, {0, 10, 20, 30});
    Pixel8(world, 0, 0) = {0, 50, 20, 30};
    World half = Downsample(world, 2);
    EXPECT_EQ(Pixel8(half, 0, 0).alpha, 0);
    EXPECT_EQ(Pixel8(half, 0, 0).red, 20);
}

TEST(Downsample, EdgesUseTheirOwnPixelsOnly) {
    World world = FilledFloat(5, 4, {1, 2, 3, 4});
    World third = Downsample(world, 3);
    ASSERT_EQ(third.Width(), 2);
    ASSERT_EQ(third.Height(), 2);
    EXPECT_EQ(PixelFloat(third, 1, 1).alpha, 1.0f);
    EXPECT_EQ(PixelFloat(third, 1, 1).red, 2.0f);
    EXPECT_EQ(PixelFloat(third, 1, 1).blue, 4.0f);
}

TEST(Downsample, ByOneChangesNothing) {
    World world = Filled8(3, 2, {77, 1, 2, 3});
    World same = Downsample(world, 1);
    EXPECT_EQ(Pixel8(same, 2, 1).alpha, 77);
    EXPECT_EQ(Pixel8(same, 2, 1).blue, 3);
}

TEST(ConvertDepth, EveryByteComesBack) {
    World world = World::Create(256, 1, Depth::k8);
    for (int x = 0; x < 256; ++x) Pixel8(world, x, 0) = {static_cast<A_u_char>(x), 0, 128, 255};
    World real = ConvertDepth(world, Depth::k32);
    EXPECT_EQ(PixelFloat(real, 255, 0).alpha, 1.0f);
    EXPECT_EQ(PixelFloat(real, 51, 0).alpha, 0.2f);
    World back = ConvertDepth(ConvertDepth(real, Depth::k16), Depth::k8);
    for (int x = 0; x < 256; ++x) EXPECT_EQ(Pixel8(back, x, 0).alpha, x);
}

TEST(ConvertDepth, IntegersAreClampedAndNearest) {
    World world = World::Create(1, 1, Depth::k32);
    PixelFloat(world, 0, 0) = {2.0f, -1.0f, std::nanf(""), 0.501f};
    World eight = ConvertDepth(world, Depth::k8);
    EXPECT_EQ(Pixel8(eight, 0, 0).alpha, 255);
    EXPECT_EQ(Pixel8(eight, 0, 0).red, 0);
    EXPECT_EQ(Pixel8(eight, 0, 0).green, 0);
    EXPECT_EQ(Pixel8(eight, 0, 0).blue, 128);
}

TEST(CutToFrame, ShowsWhatLiesInside) {
    World world = World::Create(3, 3, Depth::k8);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x) Pixel8(world, x, y) = {255, static_cast<A_u_char>(x), static_cast<A_u_char>(y), 9};
    }
    struct {
        const char* name;
        int x, y;
    } const cases[] = {{"inside", 1, 1},
                       {"over the left top", -2, -1},
                       {"over the right", 4, 0},
                       {"outside", 9, 9},
                       {"far outside", 2147483647, -2147483647}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        World frame = CutToFrame(world, row.x, row.y, 5, 5);
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 5; ++x) {
                const std::int64_t sx = std::int64_t{x} - row.x;
                const std::int64_t sy = std::int64_t{y} - row.y;
                const bool inside = sx >= 0 && sx < 3 && sy >= 0 && sy < 3;
                EXPECT_EQ(Pixel8(frame, x, y).alpha, inside ? 255 : 0);
                if (inside) {
                    EXPECT_EQ(Pixel8(frame, x, y).red, sx);
                    EXPECT_EQ(Pixel8(frame, x, y).green, sy);
                }
            }
        }
    }
}

}  // namespace

}  // namespace umbrant::host
