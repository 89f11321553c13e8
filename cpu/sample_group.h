// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Samples of a stack that are drawn together: weighed, then blurred as far as patches share it, then placed patch by
// patch.

#include <cstdint>
#include <vector>

#include "cpu/coarse/wide_sample.h"
#include "cpu/narrow_sample.h"
#include "cpu/stack_drawer.h"

namespace umbrant::effect {

/// A pool thread's own.
struct SampleMemory {
    TapFolder folder;
    NarrowMemory narrow;
    WideMemory wide;
};

/// A sample on either kind of grid.
class DrawnSample {
 public:
    void Start(const StackSample& sample);
    NarrowSample& AsNarrow();

    size_t PlaneSize() const { return isWide_ ? wide_.PlaneSize() : narrow_.PlaneSize(); }
    int WeighTasks() const { return isWide_ ? wide_.WeighTasks() : narrow_.WeighTasks(); }
    void Weigh(int task, SampleMemory& memory);
    int PlaneTasks() const { return isWide_ ? wide_.AcrossTasks() : narrow_.PlaneTasks(); }
    void MakePlane(int task, SampleMemory& memory, float* plane) const;
    void Place(const Region& patch, const float* plane, SampleMemory& memory, uint16_t* accumulated, int width) const;

 private:
    bool isWide_ = false;
    NarrowSample narrow_;
    WideSample wide_;
};

/// The stages of a group. Tasks of one stage may run at the same time.
class SampleGroup {
 public:
    /// Takes samples from `next` on; returns the first that it leaves.
    size_t Start(const std::vector<StackSample>& all, size_t next);

    int WeighTasks() const { return weighEnds_.empty() ? 0 : weighEnds_.back(); }
    void Weigh(int task, SampleMemory& memory);

    /// Floats of all planes.
    size_t PlaneSize() const { return planeSize_; }
    int PlaneTasks() const { return planeEnds_.empty() ? 0 : planeEnds_.back(); }
    void MakePlane(int task, SampleMemory& memory, float* planes) const;

    /// Adds what of the samples lies in `patch` to `accumulated`, `width` pixels a row, in their order.
    void Place(const Region& patch, const float* planes, SampleMemory& memory, uint16_t* accumulated, int width) const;

 private:
    size_t Count() const { return planes_.size(); }
    void StartSamples(const std::vector<StackSample>& all, size_t first, size_t end);
    void Add();

    std::vector<DrawnSample> samples_;  ///< as many as ever; the first Count() count
    std::vector<size_t> planes_;        ///< where the plane that each reads begins
    std::vector<int> weighEnds_;        ///< tasks of the samples up to each
    std::vector<int> planeEnds_;        ///< the same
    size_t planeSize_ = 0;
};

}  // namespace umbrant::effect
