// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A sample on its whole grid: blurred across, blurred down and stretched into place, with a rounding to 16 bits after
// each pass, as the GPU's buffers round.

#include <cstdint>
#include <vector>

#include "cpu/buffer.h"
#include "cpu/taps.h"

namespace umbrant::effect {

struct StackSample;

/// A pool thread's own memory.
struct NarrowMemory {
    Buffer<float> across;
    Buffer<float> down;
    Buffer<float> row;
    Buffer<float> zeroes;  ///< never written
};

/// The stages of one sample. Tasks of one stage may run at the same time. A short blur is done anew for every patch, so
/// that it stays in the second-level cache. A long one would be done several times over, as patches share most of its
/// rows: its blur across is done once, for the whole copy.
class NarrowSample {
 public:
    /// Patches are at most `patchWidth` by `patchHeight` pixels.
    void Start(const StackSample& sample, int patchWidth, int patchHeight);

    int WeighTasks() const { return Chunks() + 1; }
    void Weigh(int task, TapFolder& folder);

    /// Floats of the plane that the blur across makes; 0 when it is done patch by patch.
    size_t PlaneSize() const;
    int AcrossTasks() const { return hasPlane_ ? Tiles() * Chunks() : 0; }
    void BlurAcross(int task, float* plane) const;

    /// Adds what of the sample lies in `patch` to `accumulated`, `width` pixels a row.
    void Place(const Region& patch, const float* plane, NarrowMemory& memory, uint16_t* accumulated, int width) const;

 private:
    /// What of the copy a part of the output is made from.
    struct Part {
        Region out;          ///< pixels
        Range columns;       ///< texels, the first at a multiple of kTapOutputs from the first of all
        Range rows;          ///< the same
        int firstBlock = 0;  ///< of `rows`
        int blocks = 0;
    };

    int Chunks() const;
    int FirstTile() const;
    int Tiles() const;
    bool FindPart(const Region& patch, Part* part) const;
    void WeighDown(TapFolder& folder);
    void StretchColumns();
    /// Rows of the plane that the blur down of these blocks reads.
    Range RowsRead(int firstBlock, int blocks) const;
    void BlurPartAcross(const Part& part, Range rows, float* out) const;
    void PlaceRows(const Part& part, const float* rows, ptrdiff_t pitch, NarrowMemory& memory, uint16_t* accumulated,
                   int width) const;

    const StackSample* sample_ = nullptr;
    Range columns_;  ///< of the copy
    Range stored_;   ///< rows of the source that the blur across reads
    bool hasPlane_ = false;
    ptrdiff_t pitch_ = 0;          ///< floats from row to row of the plane, or of a patch's rows
    std::vector<TapList> across_;  ///< per chunk of columns
    TapList down_;
    std::vector<int32_t> texels_;  ///< per output column, from columns_.begin - 1 on
    std::vector<float> fractions_;
    bool gentle_ = false;  ///< no column is more than one texel beyond the one before
};

}  // namespace umbrant::effect
