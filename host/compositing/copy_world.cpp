// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/copy_world.h"

#include <cstdint>
#include <cstring>

#include "host/compositing/rectangles.h"
#include "host/compositing/row_pool.h"
#include "host/compositing/world.h"
#include "hostapi/errors.h"

namespace umbrant::host {

namespace {

/// Where a copy reads and writes: `from` and `to` have the same size and are inside their worlds.
struct Placement {
    PF_LRect from{};
    PF_LRect to{};
};

/// Cuts both rectangles to their worlds without moving one against the other.
Placement Clipped(PF_LRect from, PF_LRect to, const PF_EffectWorld& source, const PF_EffectWorld& destination) {
    const std::int64_t dx = static_cast<std::int64_t>(to.left) - from.left;
    const std::int64_t dy = static_cast<std::int64_t>(to.top) - from.top;
    const PF_LRect read = Intersection(from, BoundsOf(source));
    if (IsEmpty(read)) return {};
    const auto shifted = [](A_long at, std::int64_t by) {
        return static_cast<A_long>(std::clamp<std::int64_t>(at + by, INT32_MIN, INT32_MAX));
    };
    const PF_LRect landed{shifted(read.left, dx), shifted(read.top, dy), shifted(read.right, dx),
                          shifted(read.bottom, dy)};
    const PF_LRect written = Intersection(landed, BoundsOf(destination));
    if (IsEmpty(written)) return {};
    return {{shifted(written.left, -dx), shifted(written.top, -dy), shifted(written.right, -dx),
             shifted(written.bottom, -dy)},
            written};
}

template <typename Pixel>
void CopyRows(const Placement& placement, const PF_EffectWorld& source, const PF_EffectWorld& destination) {
    const std::size_t bytes = static_cast<std::size_t>(WidthOf(placement.to)) * sizeof(Pixel);
    ForEachRowRange(HeightOf(placement.to), [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            std::memcpy(RowOf<Pixel>(destination, placement.to.top + y) + placement.to.left,
                        RowOf<Pixel>(source, placement.from.top + y) + placement.from.left, bytes);
        }
    });
}

template <typename Pixel>
void CopyScaled(const PF_LRect& from, const PF_LRect& to, const PF_EffectWorld& source,
                const PF_EffectWorld& destination) {
    const PF_LRect bounds = BoundsOf(source);
    const PF_LRect written = Intersection(to, BoundsOf(destination));
    const auto nearest = [](int at, int toStart, int toSize, int fromStart, int fromSize) {
        return fromStart + static_cast<int>((2 * (static_cast<std::int64_t>(at) - toStart) + 1) * fromSize /
                                            (2 * static_cast<std::int64_t>(toSize)));
    };
    ForEachRowRange(HeightOf(written), [&](int begin, int end) {
        for (int y = written.top + begin; y < written.top + end; ++y) {
            const int sourceY = nearest(y, to.top, HeightOf(to), from.top, HeightOf(from));
            if (sourceY < bounds.top || sourceY >= bounds.bottom) continue;
            for (int x = written.left; x < written.right; ++x) {
                const int sourceX = nearest(x, to.left, WidthOf(to), from.left, WidthOf(from));
                if (sourceX < bounds.left || sourceX >= bounds.right) continue;
                RowOf<Pixel>(destination, y)[x] = RowOf<Pixel>(source, sourceY)[sourceX];
            }
        }
    });
}

template <typename Pixel>
void Copy(const PF_LRect& from, const PF_LRect& to, const PF_EffectWorld& source, const PF_EffectWorld& destination) {
    if (WidthOf(from) == WidthOf(to) && HeightOf(from) == HeightOf(to)) {
        CopyRows<Pixel>(Clipped(from, to, source, destination), source, destination);
    } else {
        CopyScaled<Pixel>(from, to, source, destination);
    }
}

}  // namespace

PF_Err CopyWorld(const PF_EffectWorld* source, PF_EffectWorld* destination, const PF_Rect* sourceRect,
                 const PF_Rect* destinationRect) {
    if (!source || !destination) return PF_Err_BAD_CALLBACK_PARAM;
    const PF_PixelFormat format = PixelFormatOf(*source);
    if (format == PF_PixelFormat_INVALID || format != PixelFormatOf(*destination)) return PF_Err_BAD_CALLBACK_PARAM;
    const PF_LRect from = sourceRect ? *sourceRect : BoundsOf(*source);
    const PF_LRect to = destinationRect ? *destinationRect : BoundsOf(*destination);
    if (IsEmpty(from) || IsEmpty(to)) return PF_Err_NONE;

    // A world onto itself goes through a second one, so that no row is read after it was written.
    World between;
    const PF_EffectWorld* readable = source;
    if (source->data && source->data == destination->data) {
        between = World::Create(source->width, source->height, DepthOf(*source), false);
        if (between.IsNull()) return PF_Err_OUT_OF_MEMORY;
        const PF_Err error = CopyWorld(source, &between.Def(), nullptr, nullptr);
        if (error) return error;
        readable = &between.Def();
    }
    if (format == PF_PixelFormat_ARGB32) Copy<PF_Pixel>(from, to, *readable, *destination);
    if (format == PF_PixelFormat_ARGB64) Copy<PF_Pixel16>(from, to, *readable, *destination);
    if (format == PF_PixelFormat_ARGB128) Copy<PF_PixelFloat>(from, to, *readable, *destination);
    return PF_Err_NONE;
}

}  // namespace umbrant::host
