// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Bounding and turning a source.

#include "cpu/column_tiles.h"

#include <algorithm>
#include <cmath>

#include "cpu/thread_pool.h"

namespace umbrant::effect {

namespace {

// Whether `count` elements hold nothing; long runs of them go a cache line at a time.
template <typename Element>
bool AllZero(const Element* values, int count) {
    constexpr int kBlock = 64;
    int i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        Element any{};
        for (int k = 0; k < kBlock; ++k) any = values[i + k] != 0 ? Element{1} : any;
        if (any != 0) return false;
    }
    for (; i < count; ++i) {
        if (values[i] != 0) return false;
    }
    return true;
}

template <typename Element>
Region FindBoundsIn(const Element* values, int width, int height) {
    const auto row = [&](int y) { return values + static_cast<ptrdiff_t>(y) * width; };
    Region bounds{{width, 0}, {0, height}};
    while (bounds.y.begin < height && AllZero(row(bounds.y.begin), width)) ++bounds.y.begin;
    while (bounds.y.end > bounds.y.begin && AllZero(row(bounds.y.end - 1), width)) --bounds.y.end;
    for (int y = bounds.y.begin; y < bounds.y.end; ++y) {
        const Element* at = row(y);
        int left = 0;
        while (left < bounds.x.begin && at[left] == 0) ++left;
        bounds.x.begin = left;
        int right = width;
        while (right > bounds.x.end && at[right - 1] == 0) --right;
        bounds.x.end = right;
    }
    return bounds;
}

}  // namespace

Region FindBounds(const AlphaPlane& plane) {
    return plane.bytes ? FindBoundsIn(plane.bytes, plane.width, plane.height)
                       : FindBoundsIn(plane.floats, plane.width, plane.height);
}

void ColumnTiles::Build(const AlphaPlane& plane, const Region& bounds, const Look& look, int rows) {
    columns_ = bounds.x;
    distinct_ = {0, rows};
    if (look.edge == Edge::kClamp) {
        while (distinct_.begin + 1 < rows && look.At(distinct_.begin + 1) <= 0) ++distinct_.begin;
        while (distinct_.end - 1 > distinct_.begin && look.At(distinct_.end - 2) >= look.size - 1) --distinct_.end;
    }
    const auto isEmpty = [&](int row) {
        const auto above = TexelAt(look.At(row));
        const int a = EdgeIndex(above, look.size, look.edge);
        const int b = EdgeIndex(above + 1, look.size, look.edge);
        return std::max(a, b) < bounds.y.begin || std::min(a, b) >= bounds.y.end;
    };
    rows_ = distinct_;
    while (!rows_.Empty() && isEmpty(rows_.begin)) ++rows_.begin;
    while (!rows_.Empty() && isEmpty(rows_.end - 1)) --rows_.end;
    if (Empty()) return;

    values_.Reserve(static_cast<size_t>(Tiles()) * static_cast<size_t>(columns_.Size()) * kTileRows + kSlack);
    extents_.assign(static_cast<size_t>(Tiles()), {});
    scratch_.resize(std::max(scratch_.size(), static_cast<size_t>(PoolThreads())));
    RunTasks(Tiles(),
             [&](int tile, int worker) { BuildTile(plane, look, tile, scratch_[static_cast<size_t>(worker)]); });
}

void ColumnTiles::BuildTile(const AlphaPlane& plane, const Look& look, int tile, Buffer<float>& scratch) {
    const CpuKernels& kernels = CurrentKernels();
    const int columns = columns_.Size();
    float* rows = scratch.Reserve(static_cast<size_t>(columns) * kTileRows);
    const int first = rows_.begin + tile * kTileRows;
    const int count = std::min(kTileRows, rows_.end - first);
    std::fill(rows + ptrdiff_t{count} * columns, rows + ptrdiff_t{kTileRows} * columns, 0.0f);
    for (int row = 0; row < count; ++row) {
        const double at = look.At(first + row);
        const double floor = std::floor(at);
        const auto index = TexelAt(at);
        const ptrdiff_t above = ptrdiff_t{EdgeIndex(index, look.size, look.edge)} * plane.width + columns_.begin;
        const ptrdiff_t below = ptrdiff_t{EdgeIndex(index + 1, look.size, look.edge)} * plane.width + columns_.begin;
        const auto fraction = static_cast<float>(at - floor);
        float* out = rows + static_cast<ptrdiff_t>(row) * columns;
        if (plane.bytes) {
            kernels.mixBytes(plane.bytes + above, plane.bytes + below, fraction, columns, out);
        } else {
            kernels.mixFloats(plane.floats + above, plane.floats + below, fraction, columns, out);
        }
    }
    Extent& extent = extents_[static_cast<size_t>(tile)];
    // Bytes are all in 0..255.
    for (ptrdiff_t i = 0; plane.floats && i < ptrdiff_t{count} * columns; ++i) {
        extent.least = rows[i] < extent.least ? rows[i] : extent.least;
        extent.most = rows[i] > extent.most ? rows[i] : extent.most;
    }
    kernels.turnRows(rows, columns, columns, values_.Get() + static_cast<ptrdiff_t>(tile) * columns * kTileRows);
}

bool ColumnTiles::IsWithin(double full) const {
    // A mix of two opaque values may be off by their last bit.
    const double most = full * (1 + 1e-6);
    return std::all_of(extents_.begin(), extents_.end(), [&](const Extent& extent) {
        return extent.least >= 0 && static_cast<double>(extent.most) <= most;
    });
}

Range ColumnTiles::StoredRows(Range rows) const {
    return Intersect({std::clamp(rows.begin, distinct_.begin, distinct_.end - 1),
                      std::clamp(rows.end, distinct_.begin + 1, distinct_.end)},
                     rows_);
}

const float* ColumnTiles::Tile(int tile) const {
    return values_.Get() + static_cast<ptrdiff_t>(tile) * columns_.Size() * kTileRows;
}

}  // namespace umbrant::effect
