// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host's worlds: record, padding, memory and the mark that distinguishes them from others.

#include "host/compositing/world.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace umbrant::host {

namespace {

struct Shape {
    const char* name;
    int width;
    int height;
    Depth depth;
    int pixelBytes;
    PF_PixelFormat format;
    PF_WorldFlags flags;
};

constexpr Shape kShapes[] = {
    {"one 8-bit pixel", 1, 1, Depth::k8, 4, PF_PixelFormat_ARGB32, PF_WorldFlag_WRITEABLE},
    {"8-bit, width a multiple of four", 16, 3, Depth::k8, 4, PF_PixelFormat_ARGB32, PF_WorldFlag_WRITEABLE},
    {"8-bit, odd width", 17, 3, Depth::k8, 4, PF_PixelFormat_ARGB32, PF_WorldFlag_WRITEABLE},
    {"16-bit is deep", 5, 2, Depth::k16, 8, PF_PixelFormat_ARGB64, PF_WorldFlag_WRITEABLE | PF_WorldFlag_DEEP},
    {"float", 7, 4, Depth::k32, 16, PF_PixelFormat_ARGB128, PF_WorldFlag_WRITEABLE},
};

TEST(World, OneWithoutPixelsHasASizeAndNoMemory) {
    const World world = World::CreateWithoutPixels(30000, 20000, Depth::k32);
    ASSERT_FALSE(world.IsNull());
    EXPECT_EQ(world.Width(), 30000);
    EXPECT_EQ(world.Height(), 20000);
    EXPECT_EQ(world.PixelDepth(), Depth::k32);
    EXPECT_EQ(world.Memory().Size(), 0u);
    EXPECT_EQ(world.Def().data, nullptr);
    EXPECT_EQ(world.Row(0), nullptr);
    // A host function that is handed its record finds no pixels in it.
    EXPECT_EQ(PixelFormatOf(world.Def()), PF_PixelFormat_INVALID);
    EXPECT_TRUE(World::CreateWithoutPixels(-1, 5, Depth::k8).IsNull());
}

TEST(World, RecordDescribesThePixels) {
    for (const Shape& shape : kShapes) {
        SCOPED_TRACE(shape.name);
        World world = World::Create(shape.width, shape.height, shape.depth);
        ASSERT_FALSE(world.IsNull());
        const PF_EffectWorld& def = world.Def();
        EXPECT_EQ(def.width, shape.width);
        EXPECT_EQ(def.height, shape.height);
        EXPECT_EQ(def.world_flags, shape.flags);
        EXPECT_EQ(def.extent_hint.left, 0);
        EXPECT_EQ(def.extent_hint.top, 0);
        EXPECT_EQ(def.extent_hint.right, shape.width);
        EXPECT_EQ(def.extent_hint.bottom, shape.height);
        EXPECT_EQ(def.pix_aspect_ratio.num, 1);
        EXPECT_EQ(def.pix_aspect_ratio.den, 1u);
        EXPECT_EQ(def.origin_x, 0);
        EXPECT_EQ(def.origin_y, 0);
        EXPECT_EQ(BytesPerPixel(shape.depth), shape.pixelBytes);
        EXPECT_EQ(PixelFormatOf(shape.depth), shape.format);
        EXPECT_EQ(PixelFormatOf(def), shape.format);
        EXPECT_EQ(DepthOf(def), shape.depth);
        EXPECT_EQ(world.PixelDepth(), shape.depth);
    }
}

TEST(World, RowsArePaddedAndAligned) {
    for (const Shape& shape : kShapes) {
        SCOPED_TRACE(shape.name);
        World world = World::Create(shape.width, shape.height, shape.depth);
        EXPECT_EQ(world.Def().rowbytes % 16, 0);
        EXPECT_GE(world.Def().rowbytes, (shape.width + 1) * shape.pixelBytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(world.Def().data) % 16, 0u);
        for (int y = 0; y < shape.height; ++y) {
            EXPECT_EQ(world.Row(y) - world.Row(0), static_cast<std::ptrdiff_t>(y) * world.Def().rowbytes);
        }
    }
}

TEST(World, ClearedPixelsAreZero) {
    for (const Shape& shape : kShapes) {
        SCOPED_TRACE(shape.name);
        World world = World::Create(shape.width, shape.height, shape.depth);
        for (int i = 0; i < shape.width * shape.pixelBytes; ++i)
            EXPECT_EQ(world.Row(shape.height - 1)[i], std::byte{0});
    }
}

TEST(World, UnclearedPixelsAreNeitherTransparentNorBlack) {
    World eight = World::Create(3, 2, Depth::k8, false);
    const auto* pixel = reinterpret_cast<const PF_Pixel*>(eight.Row(1)) + 2;
    EXPECT_EQ(pixel->alpha, 128);
    EXPECT_EQ(pixel->red, 205);
    EXPECT_EQ(pixel->blue, 205);

    World deep = World::Create(3, 2, Depth::k16, false);
    EXPECT_EQ((static_cast<const PF_Pixel16*>(static_cast<const void*>(deep.Row(1))) + 2)->alpha, 16384);
    EXPECT_EQ((static_cast<const PF_Pixel16*>(static_cast<const void*>(deep.Row(1))) + 2)->green, 26214);

    World real = World::Create(3, 2, Depth::k32, false);
    EXPECT_EQ((static_cast<const PF_PixelFloat*>(static_cast<const void*>(real.Row(1))) + 2)->alpha, 0.5f);
    EXPECT_EQ((static_cast<const PF_PixelFloat*>(static_cast<const void*>(real.Row(1))) + 2)->red, 0.8f);
}

TEST(World, ACopyOfTheRecordIsRecognised) {
    World world = World::Create(4, 4, Depth::k32);
    const PF_EffectWorld copy = world.Def();
    EXPECT_EQ(PixelFormatOf(copy), PF_PixelFormat_ARGB128);
}

TEST(World, AForeignRecordIsNot) {
    PF_EffectWorld foreign{};
    foreign.width = 4;
    foreign.height = 4;
    foreign.reserved_long1 = PF_PixelFormat_ARGB32;
    EXPECT_EQ(PixelFormatOf(foreign), PF_PixelFormat_INVALID);
}

TEST(World, ARecordThatLeadsOutOfItsMemoryIsNoWorld) {
    World world = World::Create(4, 4, Depth::k8);
    const PF_EffectWorld record = world.Def();
    PF_EffectWorld inside = record;
    inside.height = 2;
    inside.data = reinterpret_cast<PF_PixelPtr>(world.Row(2));
    EXPECT_EQ(PixelFormatOf(inside), PF_PixelFormat_ARGB32) << "a part of it is one";
    inside.rowbytes = -record.rowbytes;
    EXPECT_EQ(PixelFormatOf(inside), PF_PixelFormat_ARGB32) << "its rows from the bottom up too";
    const struct {
        const char* name;
        void (*change)(PF_EffectWorld&);
    } rows[] = {{"more rows", [](PF_EffectWorld& each) { ++each.height; }},
                {"many rows", [](PF_EffectWorld& each) { each.height = 2147483647; }},
                {"longer rows", [](PF_EffectWorld& each) { each.rowbytes *= 2; }},
                {"the longest rows", [](PF_EffectWorld& each) { each.rowbytes = 2147483647; }},
                {"rows before it", [](PF_EffectWorld& each) { each.rowbytes = -16; }},
                {"wider rows", [](PF_EffectWorld& each) { each.width += 5; }},
                {"larger pixels", [](PF_EffectWorld& each) { each.reserved_long1 = PF_PixelFormat_ARGB128; }},
                {"no pixels", [](PF_EffectWorld& each) { each.data = nullptr; }},
                {"pixels elsewhere", [](PF_EffectWorld& each) { each.data = reinterpret_cast<PF_PixelPtr>(&each); }}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        PF_EffectWorld changed = record;
        row.change(changed);
        EXPECT_EQ(PixelFormatOf(changed), PF_PixelFormat_INVALID);
    }
    world = World();
    EXPECT_EQ(PixelFormatOf(record), PF_PixelFormat_INVALID) << "nor is the record of a world that has gone";
}

TEST(World, LiesOverMemoryThatSomebodyElseHas) {
    const auto size = World::BytesOf(5, 3, Depth::k32);
    ASSERT_TRUE(size);
    auto memory = std::make_shared<std::vector<std::max_align_t>>(*size / sizeof(std::max_align_t) + 1);
    auto* data = reinterpret_cast<std::byte*>(memory->data());
    EXPECT_TRUE(World::CreateOver(GuardedBytes::Over(data, *size - 1, memory), 5, 3, Depth::k32).IsNull());
    World world = World::CreateOver(GuardedBytes::Over(data, *size, memory), 5, 3, Depth::k32);
    ASSERT_FALSE(world.IsNull());
    EXPECT_EQ(world.Row(0), data);
    EXPECT_EQ(world.Def().rowbytes, World::Create(5, 3, Depth::k32).Def().rowbytes);
    EXPECT_EQ(memory.use_count(), 2);
    world = World();
    EXPECT_EQ(memory.use_count(), 1);
    EXPECT_FALSE(World::BytesOf(-1, 3, Depth::k8));
    EXPECT_EQ(World::BytesOf(0, 3, Depth::k8), std::size_t{0});
}

TEST(World, EmptyWorldsHaveNoPixels) {
    for (const auto& [width, height] : {std::pair{0, 0}, std::pair{0, 5}, std::pair{5, 0}}) {
        World world = World::Create(width, height, Depth::k8);
        ASSERT_FALSE(world.IsNull());
        EXPECT_EQ(world.Def().data, nullptr);
        EXPECT_EQ(world.Width(), width);
        EXPECT_EQ(world.Height(), height);
        EXPECT_EQ(PixelFormatOf(world.Def()), PF_PixelFormat_ARGB32);
    }
}

TEST(World, WhatCannotBeHadIsNull) {
    EXPECT_TRUE(World::Create(-1, 4, Depth::k8).IsNull());
    EXPECT_TRUE(World::Create(4, -1, Depth::k8).IsNull());
    EXPECT_TRUE(World::Create(2147483647, 1, Depth::k8).IsNull());
    EXPECT_TRUE(World::Create(200000000, 1, Depth::k32).IsNull());
    EXPECT_TRUE(World().IsNull());
}

TEST(World, TheRecordStaysPutWhenTheWorldMoves) {
    World world = World::Create(4, 4, Depth::k8);
    const PF_EffectWorld* def = &world.Def();
    World moved = std::move(world);
    EXPECT_EQ(&moved.Def(), def);
    EXPECT_TRUE(world.IsNull());
}

}  // namespace

}  // namespace umbrant::host
