// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A source's rows thinned by 2, 4, 8, ...: what wide blurs read, whose copies have no high frequencies. Level l holds
// coefficients of the quintic spline on a grid of every 2^l-th row, also before the first row and after the last, where
// rows are mirrored.

#include <vector>

#include "cpu/column_tiles.h"

namespace umbrant::effect {

/// Rows of one level, turned as ColumnTiles turns them. Coefficient j is at row j 2^level of the pass.
struct PyramidLevel {
    Range rows;  ///< coefficients that are stored; the others are 0
    ptrdiff_t columns = 0;
    Buffer<float> values;

    int Tiles() const { return (rows.Size() + kTileRows - 1) / kTileRows; }
    /// Coefficients rows.begin + kTileRows x tile onwards.
    const float* Tile(int tile) const { return values.Get() + tile * columns * kTileRows; }
};

class RowPyramid {
 public:
    /// Rows of the source on each side of a coefficient's own that it is made from.
    static int Reach(int level);

    /// Thins the rows of `source`, a pass of `rows` rows, up to level `levels`. Of the pass's rows and their mirror
    /// images those in `needed` are read; coefficients that would need others are not to be used. Throws
    /// std::bad_alloc.
    void Build(const ColumnTiles& source, int rows, Range needed, int levels);

    /// Level 1 or above.
    const PyramidLevel& Level(int level) const { return levels_[static_cast<size_t>(level) - 1]; }

 private:
    std::vector<PyramidLevel> levels_;
};

}  // namespace umbrant::effect
