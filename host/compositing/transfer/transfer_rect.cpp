// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/transfer/transfer_rect.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "host/compositing/row_pool.h"
#include "host/compositing/transfer/transfer_rows.h"
#include "host/compositing/world.h"
#include "hostapi/errors.h"

namespace umbrant::host {

namespace {

/// The clipped source: `width` x `height` pixels from (sourceX, sourceY) go to (destinationX, destinationY).
struct Placement {
    int sourceX = 0;
    int sourceY = 0;
    int destinationX = 0;
    int destinationY = 0;
    int width = 0;
    int height = 0;
};

/// One axis of the placement, in 64 bits because corners may be anywhere in 32.
void Clip(std::int64_t from, std::int64_t to, std::int64_t sourceSize, std::int64_t at, std::int64_t destinationSize,
          int& sourceStart, int& destinationStart, int& size) {
    const std::int64_t shift = at - from;
    const std::int64_t start = std::max({from, std::int64_t{0}, -shift});
    const std::int64_t end = std::min({to, sourceSize, destinationSize - shift});
    if (start >= end) return;
    sourceStart = static_cast<int>(start);
    destinationStart = static_cast<int>(start + shift);
    size = static_cast<int>(end - start);
}

Placement Place(const PF_Rect& rect, const PF_EffectWorld& source, int x, int y, const PF_EffectWorld& destination) {
    Placement placed;
    Clip(rect.left, rect.right, source.width, x, destination.width, placed.sourceX, placed.destinationX, placed.width);
    Clip(rect.top, rect.bottom, source.height, y, destination.height, placed.sourceY, placed.destinationY,
         placed.height);
    if (placed.width == 0 || placed.height == 0) placed.width = placed.height = 0;
    return placed;
}

template <typename Pixel>
const Pixel* RowOf(const PF_EffectWorld& world, int y) {
    if (!world.data) return nullptr;
    const auto* bytes =
        reinterpret_cast<const std::byte*>(world.data) + static_cast<std::ptrdiff_t>(y) * world.rowbytes;
    return static_cast<const Pixel*>(static_cast<const void*>(bytes));
}

template <typename Pixel>
Pixel* RowOf(PF_EffectWorld& world, int y) {
    return const_cast<Pixel*>(RowOf<Pixel>(static_cast<const PF_EffectWorld&>(world), y));
}

bool InField(int y, PF_Field field) {
    if (field == PF_Field_UPPER) return y % 2 == 0;
    if (field == PF_Field_LOWER) return y % 2 == 1;
    return true;
}

/// The mask's value at one of its pixels, 0..1.
template <typename Pixel>
float MaskValue(const Pixel& pixel, float fullScale, bool luminance) {
    if (!luminance) return static_cast<float>(pixel.alpha) / fullScale;
    return (0.3f * static_cast<float>(pixel.red) + 0.59f * static_cast<float>(pixel.green) +
            0.11f * static_cast<float>(pixel.blue)) /
           fullScale;
}

template <typename Pixel>
void ReadMaskRow(const PF_MaskWorld& mask, float fullScale, std::int64_t maskX, std::int64_t maskY,
                 std::vector<float>& factors) {
    const bool luminance = (mask.what_is_mask & PF_MaskFlag_LUMINANCE) != 0;
    const bool inverted = (mask.what_is_mask & PF_MaskFlag_INVERTED) != 0;
    const bool rowInside = maskY >= 0 && maskY < mask.mask.height;
    const Pixel* row = rowInside ? RowOf<Pixel>(mask.mask, static_cast<int>(maskY)) : nullptr;
    for (std::size_t i = 0; i < factors.size(); ++i) {
        const std::int64_t x = maskX + static_cast<std::int64_t>(i);
        const bool inside = rowInside && x >= 0 && x < mask.mask.width;
        const float value = inside ? MaskValue(row[x], fullScale, luminance) : 0.0f;
        factors[i] = inverted ? 1.0f - value : value;
    }
}

/// The mask's factors over a run of source pixels that begins at (sourceX, sourceY).
void ReadMask(const PF_MaskWorld& mask, int sourceX, int sourceY, std::vector<float>& factors) {
    const std::int64_t x = std::int64_t{sourceX} - mask.offset.x;
    const std::int64_t y = std::int64_t{sourceY} - mask.offset.y;
    switch (DepthOf(mask.mask)) {
        case Depth::k8:
            return ReadMaskRow<PF_Pixel>(mask, 255.0f, x, y, factors);
        case Depth::k16:
            return ReadMaskRow<PF_Pixel16>(mask, 32768.0f, x, y, factors);
        case Depth::k32:
            return ReadMaskRow<PF_PixelFloat>(mask, 1.0f, x, y, factors);
    }
}

/// Composites `count` pixels of nothing, for what a stencil's source does not reach.
template <typename Pixel>
void CompositeNothing(RowFunction<Pixel> run, Pixel* destination, int count, const RowPlace& place) {
    static constexpr std::array<Pixel, 256> nothing{};
    for (int at = 0; at < count; at += static_cast<int>(nothing.size())) {
        run(nothing.data(), destination + at, nullptr, std::min(count - at, static_cast<int>(nothing.size())), place);
    }
}

template <typename Pixel>
PF_Err Transfer(PF_Field field, const Placement& placed, const PF_EffectWorld& source, const PF_CompositeMode& mode,
                const PF_MaskWorld* mask, PF_EffectWorld& destination) {
    const RowFunction<Pixel> run = FindRowFunction<Pixel>(mode.xfer, mode.rgb_only != 0);
    if (!run) return PF_Err_BAD_CALLBACK_PARAM;

    const bool stencil = mode.xfer == PF_Xfer_MULTIPLY_ALPHA || mode.xfer == PF_Xfer_MULTIPLY_ALPHA_LUMA;
    const int top = stencil ? 0 : placed.destinationY;
    const int bottom = stencil ? destination.height : placed.destinationY + placed.height;
    const float opacity = static_cast<float>(mode.opacity) / 255.0f;
    const int right = placed.destinationX + placed.width;

    std::vector<std::vector<float>> factors(mask ? static_cast<std::size_t>(RowThreads()) : 0);
    for (auto& row : factors) row.resize(static_cast<std::size_t>(placed.width));

    RunRows(bottom - top, [&](int index, int thread) {
        const int y = top + index;
        if (!InField(y, field)) return true;
        Pixel* row = RowOf<Pixel>(destination, y);
        RowPlace place{0, y, static_cast<std::uint32_t>(mode.rand_seed), opacity};
        if (y < placed.destinationY || y >= placed.destinationY + placed.height) {
            CompositeNothing(run, row, destination.width, place);
            return true;
        }
        if (stencil) CompositeNothing(run, row, placed.destinationX, place);
        const int sourceY = y - placed.destinationY + placed.sourceY;
        std::vector<float>* rowFactors = mask ? &factors[static_cast<std::size_t>(thread)] : nullptr;
        if (rowFactors) ReadMask(*mask, placed.sourceX, sourceY, *rowFactors);
        place.x = placed.destinationX;
        run(RowOf<Pixel>(source, sourceY) + placed.sourceX, row + placed.destinationX,
            rowFactors ? rowFactors->data() : nullptr, placed.width, place);
        if (stencil) CompositeNothing(run, row + right, destination.width - right, place);
        return true;
    });
    return PF_Err_NONE;
}

/// A copy of a world's pixels under the same record, for a world that is laid over itself at another place.
World CopyOf(const PF_EffectWorld& world) {
    World copy = World::Create(world.width, world.height, DepthOf(world), false);
    if (copy.IsNull()) return copy;
    const std::size_t rowSize =
        static_cast<std::size_t>(world.width) * static_cast<std::size_t>(BytesPerPixel(DepthOf(world)));
    for (int y = 0; y < world.height; ++y) std::memcpy(copy.Row(y), RowOf<std::byte>(world, y), rowSize);
    return copy;
}

bool IsUsable(const PF_EffectWorld& world) {
    return PixelFormatOf(world) != PF_PixelFormat_INVALID && (world.data || world.width == 0 || world.height == 0);
}

}  // namespace

PF_Err TransferRect(PF_Quality, PF_ModeFlags, PF_Field field, const PF_Rect* sourceRect, const PF_EffectWorld* source,
                    const PF_CompositeMode* mode, const PF_MaskWorld* mask, A_long destinationX, A_long destinationY,
                    PF_EffectWorld* destination) {
    if (!source || !mode || !destination) return PF_Err_BAD_CALLBACK_PARAM;
    if (!IsUsable(*source) || !IsUsable(*destination) || (mask && !IsUsable(mask->mask))) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (PixelFormatOf(*source) != PixelFormatOf(*destination)) return PF_Err_BAD_CALLBACK_PARAM;

    const PF_Rect whole{0, 0, source->width, source->height};
    const Placement placed = Place(sourceRect ? *sourceRect : whole, *source, destinationX, destinationY, *destination);

    World copy;
    const bool moved = placed.sourceX != placed.destinationX || placed.sourceY != placed.destinationY;
    if (source->data == destination->data && moved && placed.width > 0) {
        copy = CopyOf(*source);
        if (copy.IsNull()) return PF_Err_OUT_OF_MEMORY;
        source = &copy.Def();
    }
    switch (DepthOf(*destination)) {
        case Depth::k8:
            return Transfer<PF_Pixel>(field, placed, *source, *mode, mask, *destination);
        case Depth::k16:
            return Transfer<PF_Pixel16>(field, placed, *source, *mode, mask, *destination);
        case Depth::k32:
            return Transfer<PF_PixelFloat>(field, placed, *source, *mode, mask, *destination);
    }
    return PF_Err_BAD_CALLBACK_PARAM;
}

}  // namespace umbrant::host
