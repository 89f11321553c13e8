// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's worlds: pixel buffers in the shape that effects see. Rows are padded on purpose, so that an effect that
// assumes tight rows is caught.

#include <cstddef>
#include <memory>
#include <optional>

#include "host/compositing/guarded_memory.h"
#include "hostapi/pixels.h"

namespace umbrant::host {

/// Bits per channel of a world.
enum class Depth { k8 = 8, k16 = 16, k32 = 32 };

/// Bytes of one pixel: 4, 8 or 16.
int BytesPerPixel(Depth depth);
PF_PixelFormat PixelFormatOf(Depth depth);

/// The format that this host recorded in a world it made, also for a by-value copy of the record;
/// PF_PixelFormat_INVALID for a world that is not ours, and for a record that somebody changed so that it describes
/// pixels outside of the memory of a world.
PF_PixelFormat PixelFormatOf(const PF_EffectWorld& world);
/// The depth of a world that this host made. Precondition: its format is one of the three.
Depth DepthOf(const PF_EffectWorld& world);

/// A world that owns its pixels. Move-only; the record keeps its address inside the object's heap block, so pointers
/// to `Def()` stay valid across moves.
class World {
 public:
    World() = default;
    /// Straight-alpha ARGB, `width` x `height` pixels, each at least 0 (an empty world has no data). Rows start on
    /// 16-byte boundaries and are at least one pixel longer than the width, unless the placement rules differ.
    /// Pixels are zero when `clear`, otherwise
    /// filled with a pattern that is neither transparent nor black. Null Def() (IsNull) when memory cannot be had.
    static World Create(int width, int height, Depth depth, bool clear = true);
    /// The same with pixels of any value: for a caller that writes every one of them before anybody reads.
    static World CreateUnwritten(int width, int height, Depth depth);
    /// A world that has a size and no memory: for questions about rectangles, which look at no pixel. Its rows are
    /// null.
    static World CreateWithoutPixels(int width, int height, Depth depth);
    /// A world over memory of at least BytesOf bytes, which it owns from here on; null when they are too few.
    static World CreateOver(GuardedBytes bytes, int width, int height, Depth depth);
    /// A record of its own over the pixels of `lender`, which must outlive it. It has no memory: see Memory.
    static World Borrow(const World& lender);
    /// The bytes that a world of this shape takes: the same in every process of this program. Nothing for a shape that
    /// no world has.
    static std::optional<std::size_t> BytesOf(int width, int height, Depth depth);
    /// Makes every pixel half-transparent and light, so that an effect which leaves one unwritten is seen at once.
    void FillUnwritten();

    bool IsNull() const { return !block_; }
    PF_EffectWorld& Def();
    const PF_EffectWorld& Def() const;
    /// The memory of the pixels; see host/compositing/guarded_memory.h. That of an empty or borrowed world has no
    /// bytes.
    const GuardedBytes& Memory() const;
    int Width() const { return Def().width; }
    int Height() const { return Def().height; }
    Depth PixelDepth() const;
    /// First byte of row y; null in an empty world and in one without pixels.
    std::byte* Row(int y);
    const std::byte* Row(int y) const;

 private:
    struct Block;
    struct Deleter {
        void operator()(Block* block) const;
    };
    static World Allocate(int width, int height, Depth depth, bool clear);
    static World Describe(GuardedBytes bytes, int width, int height, Depth depth);
    std::unique_ptr<Block, Deleter> block_;
};

}  // namespace umbrant::host
