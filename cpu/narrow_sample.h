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
/// rows: its blur across is done once, for the whole copy. Neighbouring samples that have the same copy share it.
class NarrowSample {
 public:
    /// Whether the sample's blur reaches so little beyond a patch that it is done patch by patch.
    static bool IsShort(const StackSample& sample);

    void Start(const StackSample& sample);
    /// For the first of samples that share a copy: all of them need `copy` of it, blurred from the rows `across`.
    void StartShared(const StackSample& sample, const Region& copy, Range across);
    /// For the others, after `first` has started: they are placed from its plane.
    void StartAfter(const StackSample& sample, const NarrowSample& first);

    int WeighTasks() const { return ready_ == Ready::kOthersCopy ? 1 : Chunks() + 1; }
    void Weigh(int task, TapFolder& folder);

    /// Floats of the plane that patches share; 0 when everything is done patch by patch, or by another sample.
    size_t PlaneSize() const;
    int PlaneTasks() const;
    void MakePlane(int task, NarrowMemory& memory, float* plane) const;

    /// Adds what of the sample lies in `patch` to `accumulated`, `width` pixels a row.
    void Place(const Region& patch, const float* plane, NarrowMemory& memory, uint16_t* accumulated, int width) const;

 private:
    /// What patches find in a plane.
    enum class Ready {
        kNothing,
        kAcross,      ///< the blur across
        kCopy,        ///< the copy
        kOthersCopy,  ///< the copy, made by another sample
    };
    /// A part of the copy.
    struct Part {
        Range columns;       ///< the first at a multiple of kTapOutputs from the first of all
        Range rows;          ///< the same
        int firstBlock = 0;  ///< of `rows`
        int blocks = 0;
    };

    void Begin(const StackSample& sample, Ready ready, const Region& copy, Range across);
    bool HasCopy() const { return ready_ == Ready::kCopy || ready_ == Ready::kOthersCopy; }
    int Chunks() const;
    int FirstTile() const;
    int Tiles() const;
    /// The part that the pixels `out` are made from; false when there is none.
    bool FindPart(const Region& out, Part* part) const;
    Part CopyPart(int task) const;
    void WeighDown(TapFolder& folder);
    void StretchColumns();
    /// Rows of the plane that the blur down of these blocks reads.
    Range RowsRead(int firstBlock, int blocks) const;
    void BlurPartAcross(const Part& part, Range rows, float* out) const;
    void BlurPart(const Part& part, NarrowMemory& memory, float* out, ptrdiff_t outPitch) const;
    void PlaceRows(const Part& part, const Region& out, const float* rows, ptrdiff_t pitch, NarrowMemory& memory,
                   uint16_t* accumulated, int width) const;

    const StackSample* sample_ = nullptr;
    Ready ready_ = Ready::kNothing;
    Region copy_;                  ///< what of the copy is made
    Range stored_;                 ///< rows of the source that the blur across reads
    ptrdiff_t pitch_ = 0;          ///< floats from row to row of what the blur across makes
    ptrdiff_t copyPitch_ = 0;      ///< floats from row to row of a whole copy
    std::vector<TapList> across_;  ///< per chunk of columns
    TapList down_;
    std::vector<int32_t> texels_;  ///< per output column, from copy_.x.begin - 1 on
    std::vector<float> fractions_;
    bool gentle_ = false;  ///< no column is more than one texel beyond the one before
};

}  // namespace umbrant::effect
