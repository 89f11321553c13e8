// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A wide blur on coarse grids: across at every few columns of thinned rows, down between coarse rows, and evaluated as
// a spline where the copy is placed. Its time does not grow with the blur's reach.

#include <cstdint>
#include <vector>

#include "cpu/buffer.h"
#include "cpu/coarse/decimation.h"
#include "cpu/coarse/row_pyramid.h"
#include "cpu/taps.h"

namespace umbrant::effect {

struct StackSample;

/// A pool thread's own memory.
struct WideMemory {
    Buffer<float> sums;
    Buffer<float> filtered;
    Buffer<float> stretched;
};

/// The stages of one sample. Tasks of one stage may run at the same time.
class WideSample {
 public:
    /// Rows of the buffer and of its mirror images that a sample reads on its grids.
    static Range RowsRead(const StackSample& sample);

    void Start(const StackSample& sample, const PyramidLevel& level);

    int WeighTasks() const { return Chunks() + 1; }
    void Weigh(int task, TapFolder& folder);

    /// Floats of the plane that the blur across makes.
    size_t PlaneSize() const;
    int AcrossTasks() const { return tiles_ * Chunks(); }
    void BlurAcross(int task, float* plane) const;

    /// Adds what of the sample lies in `patch` to `accumulated`, `width` pixels a row.
    void Place(const Region& patch, const float* plane, WideMemory& memory, uint16_t* accumulated, int width) const;

 private:
    /// The first coefficient, from rows_.begin on, and the weights of an output row.
    struct RowWeights {
        int first;
        float weights[kCubicSpan];
    };

    int Chunks() const;
    void WeighDown();
    void WeighColumns();
    void WeighRows();
    const RowWeights& Row(int pixel) const;

    const StackSample* sample_ = nullptr;
    const PyramidLevel* level_ = nullptr;
    Range coarse_;       ///< columns of the plane, on the coarse grid
    Range stretched_;    ///< those with a coefficient after the filter
    Range rows_;         ///< coefficients of the blurred copy
    int firstTile_ = 0;  ///< of the level, which is the plane's first
    int tiles_ = 0;      ///< of the level that the blur down reads
    ptrdiff_t pitch_ = 0;
    std::vector<TapList> across_;  ///< per chunk of columns
    TapList down_;
    std::vector<int32_t> texels_;
    std::vector<float> weights_;
    bool gentle_ = false;
    std::vector<RowWeights> rowWeights_;  ///< per output row
};

}  // namespace umbrant::effect
