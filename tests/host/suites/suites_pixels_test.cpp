// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Fills, copies, mixes and composites through the tables that effects call.

#include "host/compositing/rectangles.h"
#include "host/compositing/world.h"
#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

namespace {

bool Equal(const PF_Pixel& a, const PF_Pixel& b) {
    return a.alpha == b.alpha && a.red == b.red && a.green == b.green && a.blue == b.blue;
}

/// Pixel (x, y) is {100 + x, y, 0, 0}.
World Numbered(int width, int height) {
    World world = World::Create(width, height, Depth::k8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            RowOf<PF_Pixel>(world.Def(), y)[x] = {static_cast<A_u_char>(100 + x), static_cast<A_u_char>(y), 0, 0};
        }
    }
    return world;
}

TEST_F(SuitesTest, FillTakesAColourAndARectangle) {
    World world = World::Create(4, 3, Depth::k8, false);
    const PF_Pixel color{1, 2, 3, 4};
    ASSERT_EQ(utilCallbacks.fill(ref, nullptr, nullptr, &world.Def()), 0);
    EXPECT_TRUE(Equal(At(world, 3, 2), {0, 0, 0, 0})) << "no colour is transparent black, no rectangle the whole";
    const PF_Rect rect{-5, 1, 2, 99};
    ASSERT_EQ(utilCallbacks.fill(ref, &color, &rect, &world.Def()), 0);
    EXPECT_TRUE(Equal(At(world, 1, 2), color));
    EXPECT_TRUE(Equal(At(world, 2, 2), {0, 0, 0, 0}));
    EXPECT_TRUE(Equal(At(world, 0, 0), {0, 0, 0, 0}));
    EXPECT_EQ(utilCallbacks.fill(ref, nullptr, nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(SuitesTest, FillTakesEveryDepth) {
    World floating = World::Create(2, 2, Depth::k32, false);
    const PF_Pixel color{255, 0, 51, 255};
    ASSERT_EQ(utilCallbacks.fill(ref, &color, nullptr, &floating.Def()), 0);
    EXPECT_EQ(RowOf<PF_PixelFloat>(floating.Def(), 1)[1].alpha, 1.0f);
    EXPECT_EQ(RowOf<PF_PixelFloat>(floating.Def(), 1)[1].green, 51.0f / 255.0f);
    ASSERT_EQ(utilCallbacks.fill(ref, nullptr, nullptr, &floating.Def()), 0);
    EXPECT_EQ(RowOf<PF_PixelFloat>(floating.Def(), 0)[0].alpha, 0.0f);

    World deep = World::Create(2, 2, Depth::k16, false);
    const PF_Pixel16 half{32768, 16384, 0, 1};
    ASSERT_EQ(utilCallbacks.fill16(ref, &half, nullptr, &deep.Def()), 0);
    EXPECT_EQ(RowOf<PF_Pixel16>(deep.Def(), 1)[1].alpha, 32768);
    EXPECT_EQ(RowOf<PF_Pixel16>(deep.Def(), 1)[1].red, 16384);
    EXPECT_EQ(RowOf<PF_Pixel16>(deep.Def(), 1)[1].blue, 1);
}

TEST_F(SuitesTest, CopyPlacesAndClips) {
    World source = Numbered(3, 3);
    struct Row {
        const char* name;
        PF_Rect from, to;
        int x, y;           ///< a pixel of the destination
        PF_Pixel expected;  ///< what it then is
        int touched;        ///< how many pixels changed
    };
    const Row rows[] = {
        {"whole, moved", {0, 0, 3, 3}, {1, 2, 4, 5}, 1, 2, {100, 0, 0, 0}, 9},
        {"part", {1, 1, 3, 2}, {0, 0, 2, 1}, 1, 0, {102, 1, 0, 0}, 2},
        {"off to the top left", {0, 0, 3, 3}, {-2, -2, 1, 1}, 0, 0, {102, 2, 0, 0}, 1},
        {"off to the bottom right", {0, 0, 3, 3}, {5, 5, 8, 8}, 5, 5, {100, 0, 0, 0}, 1},
        {"source rectangle outside its world", {-1, -1, 2, 2}, {0, 0, 3, 3}, 1, 1, {100, 0, 0, 0}, 4},
        {"nowhere", {0, 0, 3, 3}, {40, 0, 43, 3}, 0, 0, {0, 0, 0, 0}, 0},
        {"doubled in size", {0, 0, 3, 3}, {0, 0, 6, 6}, 5, 2, {102, 1, 0, 0}, 36},
    };
    for (const Row& row : rows) {
        for (const auto copy : {kWorldTransformSuite.copy, kWorldTransformSuite.copy_hq, utilCallbacks.copy}) {
            World world = World::Create(6, 6, Depth::k8);
            PF_Rect from = row.from;
            PF_Rect to = row.to;
            ASSERT_EQ(copy(ref, &source.Def(), &world.Def(), &from, &to), 0) << row.name;
            EXPECT_TRUE(Equal(At(world, row.x, row.y), row.expected)) << row.name;
            int touched = 0;
            for (int i = 0; i < 36; ++i) touched += At(world, i % 6, i / 6).alpha != 0;
            EXPECT_EQ(touched, row.touched) << row.name;
        }
    }
}

TEST_F(SuitesTest, CopyOfAWorldOntoItselfReadsBeforeItWrites) {
    World world = Numbered(2, 5);
    PF_Rect from{0, 0, 2, 4};
    PF_Rect to{0, 1, 2, 5};
    ASSERT_EQ(utilCallbacks.copy(ref, &world.Def(), &world.Def(), &from, &to), 0);
    for (int y = 0; y < 5; ++y) EXPECT_EQ(At(world, 1, y).red, y == 0 ? 0 : y - 1);
}

TEST_F(SuitesTest, CopyRefusesWhatDoesNotFit) {
    World eight = Numbered(2, 2);
    World floating = World::Create(2, 2, Depth::k32);
    PF_EffectWorld stranger{};
    EXPECT_EQ(utilCallbacks.copy(ref, &eight.Def(), &floating.Def(), nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(utilCallbacks.copy(ref, &stranger, &eight.Def(), nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(utilCallbacks.copy(ref, nullptr, &eight.Def(), nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(utilCallbacks.copy(nullptr, &eight.Def(), &eight.Def(), nullptr, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    PF_Rect empty{1, 1, 1, 1};
    EXPECT_EQ(utilCallbacks.copy(ref, &eight.Def(), &eight.Def(), &empty, &empty), PF_Err_NONE);
    EXPECT_EQ(At(eight, 1, 1).alpha, 101);
}

TEST_F(SuitesTest, BlendMixesChannelByChannel) {
    World first = World::Create(2, 1, Depth::k8);
    World second = World::Create(2, 1, Depth::k8);
    World mixed = World::Create(2, 1, Depth::k8);
    RowOf<PF_Pixel>(first.Def(), 0)[0] = {200, 100, 0, 10};
    RowOf<PF_Pixel>(second.Def(), 0)[0] = {100, 200, 50, 10};
    ASSERT_EQ(kWorldTransformSuite.blend(ref, &first.Def(), &second.Def(), 1 << 14, &mixed.Def()), 0);
    EXPECT_TRUE(Equal(At(mixed, 0, 0), {175, 125, 13, 10})) << "a quarter of the second";
    ASSERT_EQ(utilCallbacks.blend(ref, &first.Def(), &second.Def(), 5 << 16, &mixed.Def()), 0);
    EXPECT_TRUE(Equal(At(mixed, 0, 0), {100, 200, 50, 10})) << "clamped";
}

TEST_F(SuitesTest, PremultiplyGoesBothWays) {
    World world = World::Create(2, 1, Depth::k8);
    RowOf<PF_Pixel>(world.Def(), 0)[0] = {51, 255, 100, 0};
    RowOf<PF_Pixel>(world.Def(), 0)[1] = {0, 255, 255, 255};
    ASSERT_EQ(utilCallbacks.premultiply(ref, 1, &world.Def()), 0);
    EXPECT_TRUE(Equal(At(world, 0, 0), {51, 51, 20, 0}));
    EXPECT_TRUE(Equal(At(world, 1, 0), {0, 0, 0, 0}));
    ASSERT_EQ(utilCallbacks.premultiply(ref, 0, &world.Def()), 0);
    EXPECT_TRUE(Equal(At(world, 0, 0), {51, 255, 100, 0}));
    const PF_Pixel white{255, 255, 255, 255};
    ASSERT_EQ(utilCallbacks.premultiply_color(ref, &world.Def(), &white, 1, &world.Def()), 0);
    EXPECT_TRUE(Equal(At(world, 1, 0), {0, 255, 255, 255}));
    EXPECT_TRUE(Equal(At(world, 0, 0), {51, 255, 224, 204}));
}

TEST_F(SuitesTest, TransferRectComposites) {
    World layer = World::Create(1, 1, Depth::k8);
    RowOf<PF_Pixel>(layer.Def(), 0)[0] = {255, 10, 20, 30};
    World world = World::Create(3, 3, Depth::k8);
    PF_CompositeMode mode{};
    mode.xfer = PF_Xfer_IN_FRONT;
    mode.opacity = 255;
    ASSERT_EQ(kWorldTransformSuite.transfer_rect(ref, PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr,
                                                 &layer.Def(), &mode, nullptr, 2, 1, &world.Def()),
              0);
    EXPECT_TRUE(Equal(At(world, 2, 1), {255, 10, 20, 30}));
    EXPECT_TRUE(Equal(At(world, 1, 1), {0, 0, 0, 0}));
    ASSERT_EQ(
        utilCallbacks.composite_rect(ref, nullptr, 255, &layer.Def(), 0, 0, PF_Field_FRAME, PF_Xfer_COPY, &world.Def()),
        0);
    EXPECT_TRUE(Equal(At(world, 0, 0), {255, 10, 20, 30}));
    EXPECT_EQ(utilCallbacks.transfer_rect(nullptr, PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr,
                                          &layer.Def(), &mode, nullptr, 2, 1, &world.Def()),
              PF_Err_BAD_CALLBACK_PARAM);
}

}  // namespace

}  // namespace umbrant::host
