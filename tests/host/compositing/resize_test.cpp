// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Worlds at other sizes: the same size, larger, smaller, a part, and alpha.

#include "host/compositing/resize.h"

#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

PF_Pixel& At(World& world, int x, int y) {
    return static_cast<PF_Pixel*>(static_cast<void*>(world.Row(y)))[x];
}

PF_PixelFloat& FloatAt(World& world, int x, int y) {
    return static_cast<PF_PixelFloat*>(static_cast<void*>(world.Row(y)))[x];
}

TEST(Resize, TheSameSizeIsTheSame) {
    World world = World::Create(3, 2, Depth::k8);
    At(world, 1, 1) = {255, 10, 20, 30};
    At(world, 2, 0) = {100, 200, 0, 255};
    World same = Resize(world, {0, 0, 3, 2}, 3, 2);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            EXPECT_EQ(At(same, x, y).alpha, At(world, x, y).alpha);
            EXPECT_EQ(At(same, x, y).red, At(world, x, y).red);
            EXPECT_EQ(At(same, x, y).blue, At(world, x, y).blue);
        }
    }
}

TEST(Resize, EnlargedPixelsAreInterpolatedAndEdgesContinue) {
    World world = World::Create(2, 1, Depth::k32);
    FloatAt(world, 0, 0) = {1, 0, 2, 0};
    FloatAt(world, 1, 0) = {1, 1, 4, 0};
    World large = Resize(world, {0, 0, 2, 1}, 4, 3);
    const float expected[] = {0, 0.25f, 0.75f, 1};
    for (int x = 0; x < 4; ++x) {
        EXPECT_FLOAT_EQ(FloatAt(large, x, 2).red, expected[x]);
        EXPECT_FLOAT_EQ(FloatAt(large, x, 0).green, 2 + 2 * expected[x]);
        EXPECT_FLOAT_EQ(FloatAt(large, x, 1).alpha, 1);
    }
}

TEST(Resize, ReducedPixelsAreMeansWeightedByAlpha) {
    World world = World::Create(32, 32, Depth::k8);
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x)
            At(world, x, y) = x % 2 == 0 ? PF_Pixel{255, 80, 40, 0} : PF_Pixel{0, 255, 255, 255};
    }
    World small = Resize(world, {0, 0, 32, 32}, 4, 4);
    for (int x = 1; x < 3; ++x) {
        EXPECT_NEAR(At(small, x, 2).alpha, 128, 1);
        EXPECT_EQ(At(small, x, 0).red, 80) << "the colour of what is transparent does not show";
        EXPECT_EQ(At(small, x, 1).green, 40);
    }
}

TEST(Resize, APart) {
    World world = World::Create(4, 4, Depth::k8);
    At(world, 2, 1) = {255, 7, 8, 9};
    World part = Resize(world, {2, 1, 1, 1}, 1, 1);
    EXPECT_EQ(At(part, 0, 0).red, 7);
    EXPECT_EQ(At(part, 0, 0).alpha, 255);
}

}  // namespace

}  // namespace umbrant::host
