// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// From what there is and what shows to what must be drawn. Everything is rounded outwards, so leaving out the rest
// changes no byte.

#include <algorithm>
#include <cmath>

#include "pixel/saturate.h"
#include "render/plan_parts.h"

namespace umbrant::effect {

namespace {

Range Limited(double begin, double end, int32_t size) {
    return {std::clamp(ToInt32(std::floor(begin)), 0, size), std::clamp(ToInt32(std::ceil(end)), 0, size)};
}

// Pixels whose centre a copy covers. GPUs snap its corners to 1/256 pixel, and the CPU renderer does the same.
Range Covered(const Placement& place, int32_t size, int32_t spare) {
    if (!(place.length > 0)) return {};
    const double begin = std::round(place.start * 256) / 256;
    const double end = std::round((place.start + place.length) * 256) / 256;
    return Limited(std::ceil(begin - 0.5) - spare, std::ceil(end - 0.5) + spare, size);
}

// Texels that pixels `out` mix. A texel beyond the edge is the edge's own.
Range TexelsOf(const Placement& place, const Range& out, int32_t spare) {
    const Stretch stretch(place);
    return Limited(std::floor(stretch.At(out.begin)) - spare, std::floor(stretch.At(out.end - 1)) + 2 + spare,
                   place.texels);
}

// The pixels of `out` that mix any of `texels`.
Range PixelsOf(const Placement& place, const Range& out, const Range& texels, int32_t spare) {
    const Stretch stretch(place);
    const auto texel = [&](int32_t pixel) { return TexelAt(stretch.At(pixel)); };
    // A damaged size may be the largest that there is.
    const int64_t before = int64_t{texels.begin} - 1 - spare;
    const int64_t after = int64_t{texels.end} + spare;
    Range pixels = out;
    while (!pixels.Empty() && texel(pixels.begin) < before) ++pixels.begin;
    while (!pixels.Empty() && texel(pixels.end - 1) >= after) --pixels.end;
    if (pixels.Empty()) return {};
    return Intersect({pixels.begin - spare, pixels.end + spare}, out);
}

// Rows of the buffer that hold anything after the blur across, which only resizes them.
Range RowsOf(const AxisSampling& axis, const Range& something, Precision precision) {
    if (axis.look.first == 0 && axis.look.pitch == 1) return something;
    return SeenThrough(axis, something, 0, precision);
}

// Rows that the blur down reads for its rows `down`. A mirrored row is nearer than its image, so it is among them.
Range RowsFor(const Range& down, double reach, int32_t rows, int32_t spare) {
    return Limited(down.begin - reach - 1 - spare, down.end + reach + 1 + spare, rows);
}

}  // namespace

// An output sees an input when a tap comes nearer than one input to it. A mirrored input is never nearer than the input
// itself, so mirrors see nothing more.
Range SeenThrough(const AxisSampling& axis, const Range& something, double reach, Precision precision) {
    if (something.Empty()) return {};
    // For the rounding of positions and of the reach, which must not add a whole input.
    constexpr double kRounding = 1.0 / 64;
    const Look& look = axis.look;
    const double far = reach + 1 + (precision == Precision::kExact ? kRounding : 1 - kRounding);
    Range seen = Limited((something.begin - far - look.first) / look.pitch,
                         (something.end - 1 + far - look.first) / look.pitch + 1, axis.outputs);
    if (look.edge == Edge::kClamp && something.begin == 0) seen.begin = 0;
    if (look.edge == Edge::kClamp && something.end == look.size) seen.end = axis.outputs;
    return seen;
}

SampleRegions RegionsOf(const SamplePlan& plan, const Region& something, int32_t width, int32_t height,
                        Precision precision) {
    if (something.Empty()) return {};
    const auto spare = static_cast<int32_t>(precision);
    const Region covered = {Covered(plan.place.x, width, spare), Covered(plan.place.y, height, spare)};
    if (covered.Empty()) return {};

    SampleRegions regions;
    regions.down.x = Intersect(TexelsOf(plan.place.x, covered.x, spare),
                               SeenThrough(plan.across.x, something.x, plan.across.blur.Reach(), precision));
    const Range rows = RowsOf(plan.across.y, something.y, precision);
    const int32_t size = plan.across.y.outputs;
    regions.down.y = Intersect(TexelsOf(plan.place.y, covered.y, spare),
                               SeenThrough({size, 1, {0, 1, size, Edge::kMirror}}, rows, plan.down.Reach(), precision));
    if (regions.down.Empty()) return {};
    regions.across = {regions.down.x, Intersect(RowsFor(regions.down.y, plan.down.Reach(), size, spare), rows)};
    regions.placed = {PixelsOf(plan.place.x, covered.x, regions.down.x, spare),
                      PixelsOf(plan.place.y, covered.y, regions.down.y, spare)};
    return regions.Empty() ? SampleRegions{} : regions;
}

}  // namespace umbrant::effect
