// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a blur across reads: the source at the rows of the pass, turned so that a column's neighbouring rows lie side by
// side. One source serves every sample that is blurred in the same buffer, so the turning is paid once.

#include <cstdint>
#include <vector>

#include "cpu/buffer.h"
#include "cpu/taps.h"

namespace umbrant::effect {

/// One channel of a picture, rows `width` elements apart.
struct AlphaPlane {
    const uint8_t* bytes = nullptr;  ///< 0..255; or
    const float* floats = nullptr;   ///< any values
    int width = 0;
    int height = 0;
    double full = 1;  ///< an opaque pixel's value: 255, 1, or 65535 after rounding to 16 bits
};

inline float AlphaValue(uint8_t alpha) {
    return static_cast<float>(alpha);
}
/// What is not a number counts as 0.
inline float AlphaValue(float alpha) {
    const float number = alpha == alpha ? alpha : 0.0f;
    const float most = number < kMostAlpha ? number : kMostAlpha;
    return most > -kMostAlpha ? most : -kMostAlpha;
}

/// The part outside which every value is 0. Reads every element once. Not-a-number counts as a value.
Region FindBounds(const AlphaPlane& plane);

class ColumnTiles {
 public:
    /// Turns `plane` at the `rows` rows that `look` gives, each mixed of the two nearest. Only `bounds` is read; it
    /// must hold all that is not 0.
    void Build(const AlphaPlane& plane, const Region& bounds, const Look& look, int rows);

    Range Columns() const { return columns_; }  ///< source columns kept
    Range Rows() const { return rows_; }        ///< rows of the pass that are not 0
    /// Rows of the pass that differ; those before and after are like the first and the last.
    Range Distinct() const { return distinct_; }
    /// What is stored of `rows`: those that are not 0, outer ones read from the nearest distinct one.
    Range StoredRows(Range rows) const;
    bool Empty() const { return columns_.Empty() || rows_.Empty(); }
    /// Whether every value that is stored is in 0..`full`.
    bool IsWithin(double full) const;

    int Tiles() const { return (rows_.Size() + kTileRows - 1) / kTileRows; }
    /// Rows Rows().begin + kTileRows x tile onwards, for CpuKernels::blurColumns; column 0 is Columns().begin.
    const float* Tile(int tile) const;

 private:
    void BuildTile(const AlphaPlane& plane, const Look& look, int tile, Buffer<float>& scratch);

    Range columns_;
    Range rows_;
    Range distinct_;
    Buffer<float> values_;
    struct Extent {
        float least = 0;
        float most = 0;
    };
    std::vector<Extent> extents_;         ///< of each tile's values
    std::vector<Buffer<float>> scratch_;  ///< a tile's rows before they are turned, per pool thread
};

}  // namespace umbrant::effect
