// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// From what is seen and what is there to what must be drawn.

#include "cpu/sample_plan.h"

#include <algorithm>
#include <cmath>

#include "pixel/saturate.h"

namespace {

// Pixels whose centre a copy covers. The GPU snaps its corners to 1/256 pixel; so does this.
Range Covered(const Placement& place, int size) {
    const double begin = std::round(place.start * 256) / 256;
    const double end = std::round((place.start + place.length) * 256) / 256;
    return Intersect({ToInt32(std::ceil(begin - 0.5)), ToInt32(std::ceil(end - 0.5))}, {0, size});
}

// Texels that pixels `out` mix. A texel beyond the edge is the edge's own.
Range TexelsOf(const Placement& place, Range out) {
    const Stretch stretch(place);
    return Intersect({ToInt32(std::floor(stretch.At(out.begin))), ToInt32(std::floor(stretch.At(out.end - 1))) + 2},
                     {0, place.texels});
}

// The pixels of `out` that any texel of `texels` reaches.
Range PixelsOf(const Placement& place, Range out, Range texels) {
    const Stretch stretch(place);
    const auto texel = [&](int pixel) { return TexelAt(stretch.At(pixel)); };
    while (!out.Empty() && texel(out.begin) < texels.begin - 1) ++out.begin;
    while (!out.Empty() && texel(out.end - 1) >= texels.end) --out.end;
    return out;
}

// Columns that see any of the inputs that are kept. Beyond a clamped edge lies what lies on it; a mirrored input is
// always farther away than the input itself.
Range ColumnsSeeing(Range inputs, const Look& look, double reach, int columns) {
    Range seeing;
    seeing.begin = ToInt32(std::floor((inputs.begin - 2 - reach - look.first) / look.pitch));
    seeing.end = ToInt32(std::ceil((inputs.end + 1 + reach - look.first) / look.pitch)) + 1;
    if (look.edge == Edge::kClamp && inputs.begin == 0) seeing.begin = 0;
    if (look.edge == Edge::kClamp && inputs.end == look.size) seeing.end = columns;
    return Intersect(seeing, {0, columns});
}

Range DownRowsSeeing(const ColumnTiles& source, int reach, int rows) {
    Range seeing = {source.Rows().begin - reach, source.Rows().end + reach};
    if (source.Rows().begin == source.Distinct().begin) seeing.begin = 0;
    if (source.Rows().end == source.Distinct().end) seeing.end = rows;
    return Intersect(seeing, {0, rows});
}

// Rows of the blur across that the blur down reads for its rows `down`.
Range AcrossRowsFor(Range down, int reach, int rows, const ColumnTiles& source) {
    Range read = {down.begin - reach, down.end + reach};
    const Range direct = read;
    if (direct.begin < 0) read.end = std::max(read.end, -direct.begin);
    if (direct.end > rows) read.begin = std::min(read.begin, 2 * rows - direct.end);
    read = Intersect(read, {0, rows});
    // Rows outside the distinct ones are read from the nearest of them.
    const Range distinct = source.Distinct();
    read = {std::clamp(read.begin, distinct.begin, distinct.end - 1),
            std::clamp(read.end, distinct.begin + 1, distinct.end)};
    return Intersect(read, source.Rows());
}

}  // namespace

SampleParts PlanSample(const StackSample& sample, int outputWidth, int outputHeight) {
    SampleParts plan;
    plan.sample = &sample;
    if (sample.source->Empty()) return plan;
    plan.outColumns = Covered(sample.x, outputWidth);
    plan.outRows = Covered(sample.y, outputHeight);
    if (plan.outColumns.Empty() || plan.outRows.Empty()) return plan;

    plan.columns =
        Intersect(TexelsOf(sample.x, plan.outColumns),
                  ColumnsSeeing(sample.source->Columns(), sample.across, sample.acrossKernel.Reach(), sample.x.texels));
    const int reach = ToInt32(std::ceil(sample.downKernel.Reach())) + 1;
    plan.downRows = Intersect(TexelsOf(sample.y, plan.outRows), DownRowsSeeing(*sample.source, reach, sample.y.texels));
    if (plan.columns.Empty() || plan.downRows.Empty()) return plan;
    plan.acrossRows = AcrossRowsFor(plan.downRows, reach, sample.y.texels, *sample.source);
    plan.outColumns = PixelsOf(sample.x, plan.outColumns, plan.columns);
    plan.outRows = PixelsOf(sample.y, plan.outRows, plan.downRows);
    return plan;
}
