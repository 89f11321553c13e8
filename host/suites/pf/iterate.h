// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The walk over pixels behind the iterate suites and utilities: rows spread over the cores, the effect's function
// called for every pixel.

#include <atomic>

#include "host/compositing/rectangles.h"
#include "host/compositing/row_pool.h"
#include "host/compositing/world.h"
#include "host/suites/services.h"
#include "host/suites/timed_call.h"
#include "hostapi/errors.h"

struct PF_InData;

namespace umbrant::host {

/// What an effect's pixel function looks like for one kind of pixel.
template <typename Pixel>
using PixelFunction = PF_Err (*)(void* refcon, A_long x, A_long y, Pixel* in, Pixel* out);

template <typename Pixel>
PF_PixelFormat FormatOfPixel();

/// What the effect sees where there is no source pixel.
enum class Outside { kSkipped, kTransparent };

/// The order in which rows are handed to effects' functions. For a judge: an effect must not care. Process-wide; set
/// before the first walk.
enum class RowOrder { kNeighbours, kScattered };
void SetRowOrder(RowOrder order);

/// Runs `work(index, thread)` for [0, count) on the pool, in the caller's service scope, until one returns an error;
/// that error is returned. An exception of the effect's function becomes PF_Err_INTERNAL_STRUCT_DAMAGED and a report.
PF_Err RunForEffect(int count, const std::function<PF_Err(int index, int thread)>& work);

/// Calls `function` for every pixel of `area` (null: the whole destination) that is in the destination. With a
/// source, `in` is the source pixel at (x, y) - origin; where there is none the pixel is left out, or `in` is
/// transparent. Without a source `in` is the destination's own pixel. The origin may be null for (0, 0).
/// PF_Err_BAD_CALLBACK_PARAM for a null function or destination, or a world of another format.
template <typename Pixel>
PF_Err IteratePixels(const PF_EffectWorld* source, const PF_Rect* area, const PF_Point* origin, Outside outside,
                     void* refcon, PixelFunction<Pixel> function, const PF_EffectWorld* destination) {
    if (!function || !destination || PixelFormatOf(*destination) != FormatOfPixel<Pixel>()) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (source && PixelFormatOf(*source) != FormatOfPixel<Pixel>()) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kWalk);
    PF_LRect walked = BoundsOf(*destination);
    if (area) walked = Intersection(walked, *area);
    const int dx = origin ? origin->x : 0;
    const int dy = origin ? origin->y : 0;
    PF_LRect covered = BoundsOf(*destination);
    if (source) covered = {dx, dy, dx + source->width, dy + source->height};
    if (outside == Outside::kSkipped) walked = Intersection(walked, covered);

    return RunForEffect(HeightOf(walked), [&](int row, int) {
        const int y = walked.top + row;
        Pixel* out = RowOf<Pixel>(*destination, y);
        const bool rowCovered = y >= covered.top && y < covered.bottom;
        Pixel* sourceRow = source && rowCovered ? RowOf<Pixel>(*source, y - dy) : nullptr;
        for (int x = walked.left; x < walked.right; ++x) {
            Pixel transparent{};
            Pixel* in = source ? &transparent : out + x;
            if (sourceRow && x >= covered.left && x < covered.right) in = sourceRow + (x - dx);
            if (const PF_Err error = function(refcon, x, y, in, out + x)) return error;
        }
        return PF_Err_NONE;
    });
}

/// Calls `function` `iterations` times, on several threads; PF_Iterations_ONCE_PER_PROCESSOR: once per thread.
PF_Err IterateGeneric(A_long iterations, void* refcon,
                      PF_Err (*function)(void* refcon, A_long threadIndex, A_long i, A_long iterations));

/// Sends every channel of an 8-bit world through its table of 256 values; a null table changes nothing.
PF_Err IterateLut(const PF_EffectWorld* source, const PF_Rect* area, const A_u_char* alpha, const A_u_char* red,
                  const A_u_char* green, const A_u_char* blue, const PF_EffectWorld* destination);

/// The three walks as the suites' slots have them, for one kind of pixel.
template <typename Pixel>
struct IterateCalls {
    static PF_Err Iterate(PF_InData*, A_long, A_long, PF_EffectWorld* source, const PF_Rect* area, void* refcon,
                          PixelFunction<Pixel> function, PF_EffectWorld* destination) {
        return IteratePixels<Pixel>(source, area, nullptr, Outside::kSkipped, refcon, function, destination);
    }
    static PF_Err IterateOrigin(PF_InData*, A_long, A_long, PF_EffectWorld* source, const PF_Rect* area,
                                const PF_Point* origin, void* refcon, PixelFunction<Pixel> function,
                                PF_EffectWorld* destination) {
        return IteratePixels<Pixel>(source, area, origin, Outside::kSkipped, refcon, function, destination);
    }
    static PF_Err IterateOriginNonClip(PF_InData*, A_long, A_long, PF_EffectWorld* source, const PF_Rect* area,
                                       const PF_Point* origin, void* refcon, PixelFunction<Pixel> function,
                                       PF_EffectWorld* destination) {
        return IteratePixels<Pixel>(source, area, origin, Outside::kTransparent, refcon, function, destination);
    }
};

/// iterate_lut as the slots have it.
PF_Err IterateLutCall(PF_InData*, A_long, A_long, PF_EffectWorld* source, const PF_Rect* area, A_u_char* alpha,
                      A_u_char* red, A_u_char* green, A_u_char* blue, PF_EffectWorld* destination);

template <>
inline PF_PixelFormat FormatOfPixel<PF_Pixel>() {
    return PF_PixelFormat_ARGB32;
}
template <>
inline PF_PixelFormat FormatOfPixel<PF_Pixel16>() {
    return PF_PixelFormat_ARGB64;
}
template <>
inline PF_PixelFormat FormatOfPixel<PF_PixelFloat>() {
    return PF_PixelFormat_ARGB128;
}

}  // namespace umbrant::host
