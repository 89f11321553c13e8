// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Where a transferred rectangle lands: placing, clipping, fields, the stencils' reach, masks, and what is refused.

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "host/compositing/transfer/transfer_rect.h"
#include "hostapi/errors.h"
#include "tests/host/compositing/transfer_worlds.h"

namespace umbrant::host {

namespace {

constexpr int kSource = 6;        // the source is 6 x 6, each pixel's red is x and its green y
constexpr int kDestination = 10;  // the destination is 10 x 10 of opaque 200s

World Numbered() {
    World world = World::Create(kSource, kSource, Depth::k8);
    for (int y = 0; y < kSource; ++y) {
        for (int x = 0; x < kSource; ++x) WriteStored(world, x, y, {{255, 10.0 + x, 10.0 + y, 1}});
    }
    return world;
}

struct GeometryCase {
    const char* name;
    std::optional<PF_Rect> rect;
    int x;
    int y;
    PF_Rect written;   // in the destination
    int firstSourceX;  // what lands on its top-left
    int firstSourceY;
};

constexpr int kFar = std::numeric_limits<int>::max();

const GeometryCase kGeometry[] = {
    {"whole source at the corner", std::nullopt, 0, 0, {0, 0, 6, 6}, 0, 0},
    {"whole source inside", std::nullopt, 3, 2, {3, 2, 9, 8}, 0, 0},
    {"beyond right and bottom", std::nullopt, 7, 8, {7, 8, 10, 10}, 0, 0},
    {"negative place", std::nullopt, -2, -3, {0, 0, 4, 3}, 2, 3},
    {"wholly left of it", std::nullopt, -6, 0, {0, 0, 0, 0}, 0, 0},
    {"wholly below", std::nullopt, 0, 10, {0, 0, 0, 0}, 0, 0},
    {"a part of the source", PF_Rect{2, 1, 5, 3}, 4, 4, {4, 4, 7, 6}, 2, 1},
    {"a part, clipped on the left", PF_Rect{2, 1, 5, 3}, -1, 4, {0, 4, 2, 6}, 3, 1},
    {"rectangle beyond the source: the rest is nothing", PF_Rect{4, 4, 9, 9}, 0, 0, {0, 0, 2, 2}, 4, 4},
    {"rectangle that begins before the source", PF_Rect{-2, -1, 3, 3}, 1, 1, {3, 2, 6, 5}, 0, 0},
    {"rectangle outside the source", PF_Rect{8, 8, 9, 9}, 0, 0, {0, 0, 0, 0}, 0, 0},
    {"empty rectangle", PF_Rect{3, 3, 3, 5}, 0, 0, {0, 0, 0, 0}, 0, 0},
    {"inverted rectangle", PF_Rect{5, 5, 2, 2}, 0, 0, {0, 0, 0, 0}, 0, 0},
    {"place at the end of the numbers", std::nullopt, kFar, kFar, {0, 0, 0, 0}, 0, 0},
    {"rectangle at both ends of the numbers", PF_Rect{-kFar, -kFar, kFar, kFar}, -kFar, -kFar, {0, 0, 6, 6}, 0, 0},
};

TEST(TransferGeometry, RectanglesLandWhereTheyShould) {
    for (const GeometryCase& row : kGeometry) {
        SCOPED_TRACE(row.name);
        const World source = Numbered();
        World destination = FilledWorld(kDestination, kDestination, Depth::k8, {{255, 200, 200, 200}});
        const PF_CompositeMode mode = Mode(PF_Xfer_COPY);
        ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, row.rect ? &*row.rect : nullptr,
                               &source.Def(), &mode, nullptr, row.x, row.y, &destination.Def()),
                  PF_Err_NONE);
        for (int y = 0; y < kDestination; ++y) {
            for (int x = 0; x < kDestination; ++x) {
                const bool inside =
                    x >= row.written.left && x < row.written.right && y >= row.written.top && y < row.written.bottom;
                const Stored pixel = ReadStored(destination, x, y);
                EXPECT_EQ(pixel.value[1], inside ? 10 + row.firstSourceX + x - row.written.left : 200) << x << "," << y;
                EXPECT_EQ(pixel.value[2], inside ? 10 + row.firstSourceY + y - row.written.top : 200) << x << "," << y;
            }
        }
    }
}

TEST(TransferGeometry, FieldsTouchTheirRowsOnly) {
    for (const auto& [field, parity] : {std::pair{PF_Field_UPPER, 0}, std::pair{PF_Field_LOWER, 1}}) {
        const World source = Numbered();
        World destination = FilledWorld(kDestination, kDestination, Depth::k8, {{255, 200, 200, 200}});
        const PF_CompositeMode mode = Mode(PF_Xfer_COPY);
        // Placed on an odd row: it is the destination's rows that are counted.
        ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, field, nullptr, &source.Def(), &mode, nullptr, 0, 1,
                               &destination.Def()),
                  PF_Err_NONE);
        for (int y = 0; y < kDestination; ++y) {
            const bool written = y >= 1 && y < 7 && y % 2 == parity;
            EXPECT_EQ(ReadStored(destination, 0, y).value[2], written ? 10 + y - 1 : 200) << "row " << y;
        }
    }
}

TEST(TransferGeometry, StencilsReachTheWholeDestination) {
    for (const PF_TransferMode stencil : {PF_Xfer_MULTIPLY_ALPHA, PF_Xfer_MULTIPLY_ALPHA_LUMA}) {
        const World source = FilledWorld(4, 4, Depth::k8, {{255, 255, 255, 255}});
        // Wide, so that what lies beside the source is more than one run of nothing.
        World destination = FilledWorld(600, 12, Depth::k8, {{200, 1, 2, 3}});
        const PF_CompositeMode mode = Mode(stencil);
        const PF_Rect rect{1, 1, 3, 3};
        ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, &rect, &source.Def(), &mode,
                               nullptr, 300, 5, &destination.Def()),
                  PF_Err_NONE);
        for (int y = 0; y < 12; ++y) {
            for (int x = 0; x < 600; ++x) {
                const bool inside = x >= 300 && x < 302 && y >= 5 && y < 7;
                ASSERT_EQ(ReadStored(destination, x, y).value[0], inside ? 200 : 0) << x << "," << y;
                ASSERT_EQ(ReadStored(destination, x, y).value[3], 3);
            }
        }
    }
}

TEST(TransferGeometry, AStencilWithNothingInReachStillActs) {
    const World source = FilledWorld(4, 4, Depth::k8, {{255, 255, 255, 255}});
    World destination = FilledWorld(5, 5, Depth::k8, {{200, 1, 2, 3}});
    const PF_CompositeMode mode = Mode(PF_Xfer_MULTIPLY_ALPHA, 51);
    ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_UPPER, nullptr, &source.Def(), &mode, nullptr,
                           100, 100, &destination.Def()),
              PF_Err_NONE);
    for (int y = 0; y < 5; ++y) EXPECT_EQ(ReadStored(destination, 2, y).value[0], y % 2 == 0 ? 160 : 200);
}

TEST(TransferGeometry, SilhouettesStayInTheirRectangle) {
    const World source = FilledWorld(2, 2, Depth::k8, {{255, 255, 255, 255}});
    World destination = FilledWorld(5, 5, Depth::k8, {{200, 1, 2, 3}});
    const PF_CompositeMode mode = Mode(PF_Xfer_MULTIPLY_NOT_ALPHA);
    ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &mode, nullptr,
                           1, 1, &destination.Def()),
              PF_Err_NONE);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x) {
            const bool inside = x >= 1 && x < 3 && y >= 1 && y < 3;
            EXPECT_EQ(ReadStored(destination, x, y).value[0], inside ? 0 : 200) << x << "," << y;
        }
    }
}

TEST(TransferGeometry, PaddingIsNotWritten) {
    const World source = FilledWorld(5, 3, Depth::k8, {{255, 1, 1, 1}});
    World destination = World::Create(5, 3, Depth::k8, false);
    const World before = CopyOfWorld(destination);
    const PF_CompositeMode mode = Mode(PF_Xfer_COPY);
    ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &mode, nullptr,
                           0, 0, &destination.Def()),
              PF_Err_NONE);
    for (int y = 0; y < 3; ++y) {
        for (int i = 5 * 4; i < destination.Def().rowbytes; ++i) EXPECT_EQ(destination.Row(y)[i], before.Row(y)[i]);
    }
}

struct MaskCase {
    const char* name;
    Depth depth;
    PF_MaskFlags flags;
    Stored mask;
    double factor;
};

const MaskCase kMasks[] = {
    {"alpha", Depth::k8, PF_MaskFlag_NONE, {{51, 255, 255, 255}}, 0.2},
    {"inverted alpha", Depth::k8, PF_MaskFlag_INVERTED, {{51, 255, 255, 255}}, 0.8},
    {"luminance", Depth::k8, PF_MaskFlag_LUMINANCE, {{255, 255, 0, 0}}, 0.3},
    {"inverted luminance", Depth::k8, PF_MaskFlag_LUMINANCE | PF_MaskFlag_INVERTED, {{255, 0, 255, 0}}, 0.41},
    {"a 16-bit mask on 8 bits", Depth::k16, PF_MaskFlag_NONE, {{16384, 0, 0, 0}}, 0.5},
    {"a float mask on 8 bits", Depth::k32, PF_MaskFlag_NONE, {{0.25, 0, 0, 0}}, 0.25},
};

TEST(TransferGeometry, MasksWeighTheSource) {
    for (const MaskCase& row : kMasks) {
        SCOPED_TRACE(row.name);
        const World source = FilledWorld(3, 3, Depth::k8, {{255, 255, 255, 255}});
        const World pixels = FilledWorld(3, 3, row.depth, row.mask);
        World destination = FilledWorld(3, 3, Depth::k8, {{0, 0, 0, 0}});
        PF_MaskWorld mask{};
        mask.mask = pixels.Def();
        mask.what_is_mask = row.flags;
        const PF_CompositeMode mode = Mode(PF_Xfer_IN_FRONT);
        ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &mode,
                               &mask, 0, 0, &destination.Def()),
                  PF_Err_NONE);
        EXPECT_NEAR(ReadStored(destination, 1, 1).value[0], 255 * row.factor, 0.51);
    }
}

TEST(TransferGeometry, TheMaskLiesOnTheSourceMovedByItsOffset) {
    const World source = FilledWorld(6, 6, Depth::k8, {{255, 255, 255, 255}});
    const World pixels = FilledWorld(2, 2, Depth::k8, {{255, 0, 0, 0}});
    World destination = World::Create(10, 10, Depth::k8);
    PF_MaskWorld mask{};
    mask.mask = pixels.Def();
    mask.offset.x = 3;
    mask.offset.y = 1;
    const PF_CompositeMode mode = Mode(PF_Xfer_IN_FRONT);
    ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &mode, &mask, 2,
                           2, &destination.Def()),
              PF_Err_NONE);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool inside = x >= 5 && x < 7 && y >= 3 && y < 5;
            EXPECT_EQ(ReadStored(destination, x, y).value[0], inside ? 255 : 0) << x << "," << y;
        }
    }
}

TEST(TransferGeometry, AWorldMayBeLaidOverItself) {
    World world = Numbered();
    const PF_CompositeMode mode = Mode(PF_Xfer_COPY);
    ASSERT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &world.Def(), &mode, nullptr,
                           1, 1, &world.Def()),
              PF_Err_NONE);
    for (int y = 1; y < kSource; ++y) {
        for (int x = 1; x < kSource; ++x) {
            EXPECT_EQ(ReadStored(world, x, y).value[1], 10 + x - 1);
            EXPECT_EQ(ReadStored(world, x, y).value[2], 10 + y - 1);
        }
    }
}

TEST(TransferGeometry, EmptyWorldsAreNoError) {
    const World empty = World::Create(0, 0, Depth::k8);
    World destination = FilledWorld(3, 3, Depth::k8, {{200, 1, 2, 3}});
    const PF_CompositeMode front = Mode(PF_Xfer_IN_FRONT);
    EXPECT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &empty.Def(), &front, nullptr,
                           0, 0, &destination.Def()),
              PF_Err_NONE);
    EXPECT_EQ(ReadStored(destination, 0, 0).value[0], 200);
    World nowhere = World::Create(0, 4, Depth::k8);
    EXPECT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &destination.Def(), &front,
                           nullptr, 0, 0, &nowhere.Def()),
              PF_Err_NONE);
}

TEST(TransferGeometry, WhatIsRefusedWritesNothing) {
    const World source = FilledWorld(3, 3, Depth::k8, {{255, 9, 9, 9}});
    const World other = FilledWorld(3, 3, Depth::k32, {{1, 1, 1, 1}});
    const World before = FilledWorld(3, 3, Depth::k8, {{200, 1, 2, 3}});
    PF_EffectWorld foreign = source.Def();
    foreign.reserved0 = nullptr;
    PF_EffectWorld dataless = source.Def();
    dataless.data = nullptr;
    PF_MaskWorld foreignMask{};
    foreignMask.mask = foreign;
    const PF_CompositeMode copy = Mode(PF_Xfer_COPY);
    const PF_CompositeMode none = Mode(PF_Xfer_NONE);
    const PF_CompositeMode reserved0 = Mode(PF_Xfer_RESERVED0);
    const PF_CompositeMode reserved1 = Mode(PF_Xfer_RESERVED1);
    const PF_CompositeMode beyond = Mode(PF_Xfer_NUM_MODES);

    struct Refusal {
        const char* name;
        const PF_EffectWorld* source;
        const PF_CompositeMode* mode;
        const PF_MaskWorld* mask;
    };
    const Refusal refusals[] = {
        {"mode -1", &source.Def(), &none, nullptr},
        {"mode 39", &source.Def(), &reserved0, nullptr},
        {"mode 40", &source.Def(), &reserved1, nullptr},
        {"mode 41", &source.Def(), &beyond, nullptr},
        {"no source", nullptr, &copy, nullptr},
        {"no mode", &source.Def(), nullptr, nullptr},
        {"another format", &other.Def(), &copy, nullptr},
        {"a source from elsewhere", &foreign, &copy, nullptr},
        {"a source without pixels", &dataless, &copy, nullptr},
        {"a mask from elsewhere", &source.Def(), &copy, &foreignMask},
    };
    for (const Refusal& row : refusals) {
        SCOPED_TRACE(row.name);
        World destination = CopyOfWorld(before);
        EXPECT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, row.source, row.mode,
                               row.mask, 0, 0, &destination.Def()),
                  PF_Err_BAD_CALLBACK_PARAM);
        EXPECT_TRUE(SameBytes(destination, before));
    }
    EXPECT_EQ(TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr, &source.Def(), &copy, nullptr,
                           0, 0, nullptr),
              PF_Err_BAD_CALLBACK_PARAM);
}

}  // namespace

}  // namespace umbrant::host
