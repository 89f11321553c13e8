// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/world.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "host/compositing/row_pool.h"

namespace {

constexpr int kRowAlignment = 16;

/// Its address marks a record as one of ours. The mark and the format lie in reserved fields, so they travel with a
/// by-value copy of the record.
char ownMark;

/// Fills with half-transparent light pixels, so that an effect which leaves a pixel unwritten is seen at once. On all
/// cores: these are the first writes into the memory, and the system hands its pages out only then.
template <typename Channel>
void FillPattern(World& world, Channel alpha, Channel colour) {
    const Channel pixel[4] = {alpha, colour, colour, colour};
    const auto size = static_cast<std::size_t>(world.Def().rowbytes);
    ForEachRowRange(world.Height(), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            std::byte* row = world.Row(y);
            for (std::size_t at = 0; at + sizeof(pixel) <= size; at += sizeof(pixel)) {
                std::memcpy(row + at, pixel, sizeof(pixel));
            }
        }
    });
}

}  // namespace

/// The record, and the pixels that its `data` points to.
struct World::Block {
    PF_EffectWorld def{};
    Depth depth = Depth::k8;
    LentBytes bytes;
};

int BytesPerPixel(Depth depth) {
    return static_cast<int>(depth) / 8 * 4;
}

PF_PixelFormat PixelFormatOf(Depth depth) {
    switch (depth) {
        case Depth::k8:
            return PF_PixelFormat_ARGB32;
        case Depth::k16:
            return PF_PixelFormat_ARGB64;
        case Depth::k32:
            return PF_PixelFormat_ARGB128;
    }
    return PF_PixelFormat_INVALID;
}

PF_PixelFormat PixelFormatOf(const PF_EffectWorld& world) {
    return world.reserved0 == &ownMark ? world.reserved_long1 : PF_PixelFormat_INVALID;
}

Depth DepthOf(const PF_EffectWorld& world) {
    switch (PixelFormatOf(world)) {
        case PF_PixelFormat_ARGB128:
            return Depth::k32;
        case PF_PixelFormat_ARGB64:
            return Depth::k16;
        default:
            return Depth::k8;
    }
}

void World::Deleter::operator()(Block* block) const {
    delete block;
}

World World::Create(int width, int height, Depth depth, bool clear) {
    World world = Allocate(width, height, depth, clear);
    if (clear || world.IsNull()) return world;
    if (depth == Depth::k8) FillPattern<A_u_char>(world, 128, 205);
    if (depth == Depth::k16) FillPattern<A_u_short>(world, 16384, 26214);
    if (depth == Depth::k32) FillPattern<PF_FpShort>(world, 0.5f, 0.8f);
    return world;
}

World World::CreateUnwritten(int width, int height, Depth depth) {
    return Allocate(width, height, depth, false);
}

World World::Allocate(int width, int height, Depth depth, bool clear) {
    World world;
    if (width < 0 || height < 0) return world;
    const std::int64_t pixelBytes = BytesPerPixel(depth);
    std::int64_t rowBytes =
        ((static_cast<std::int64_t>(width) + 1) * pixelBytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    if (const auto padding = CurrentLendingRules().rowPadding) rowBytes = width * pixelBytes + *padding;
    if (rowBytes > std::numeric_limits<A_long>::max()) return world;

    std::unique_ptr<Block, Deleter> block(new (std::nothrow) Block);
    if (!block) return world;
    PF_EffectWorld& def = block->def;
    if (width > 0 && height > 0) {
        const std::size_t size = static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height);
        block->bytes = LentBytes::Create(size, clear);
        if (!block->bytes.Data()) return world;
        def.data = reinterpret_cast<PF_PixelPtr>(block->bytes.Data());
    }
    block->depth = depth;
    def.reserved0 = &ownMark;
    def.reserved_long1 = PixelFormatOf(depth);
    def.world_flags = PF_WorldFlag_WRITEABLE | (depth == Depth::k16 ? PF_WorldFlag_DEEP : 0);
    def.rowbytes = static_cast<A_long>(rowBytes);
    def.width = width;
    def.height = height;
    def.extent_hint = {0, 0, width, height};
    def.pix_aspect_ratio = {1, 1};
    world.block_ = std::move(block);
    return world;
}

PF_EffectWorld& World::Def() {
    return block_->def;
}

const PF_EffectWorld& World::Def() const {
    return block_->def;
}

const LentBytes& World::Memory() const {
    return block_->bytes;
}

Depth World::PixelDepth() const {
    return block_->depth;
}

std::byte* World::Row(int y) {
    if (!block_->def.data) return nullptr;
    return reinterpret_cast<std::byte*>(block_->def.data) + static_cast<std::ptrdiff_t>(y) * block_->def.rowbytes;
}

const std::byte* World::Row(int y) const {
    return const_cast<World*>(this)->Row(y);
}
