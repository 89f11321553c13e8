// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/sample_group.h"

#include <algorithm>

namespace umbrant::effect {

namespace {

// The planes of a group stay in the third-level cache; a group has at least one sample.
constexpr size_t kMostPlaneFloats = size_t{1} << 20;
constexpr size_t kMostSamples = 48;

bool AreEqual(const BlurPlan& a, const BlurPlan& b) {
    return a.steps == b.steps && a.inputStride == b.inputStride;
}

bool AreEqual(const Look& a, const Look& b) {
    return a.first == b.first && a.pitch == b.pitch && a.size == b.size && a.edge == b.edge;
}

/// Whether two samples have the same copy, placed differently, and so small a blur that they can share it. Opacity is
/// in the copy, before the first rounding, so that samples of different opacity have different copies.
bool ShareCopy(const StackSample& a, const StackSample& b) {
    const AcrossPlan& across = a.plan->across;
    const AcrossPlan& other = b.plan->across;
    return !a.decimation.IsWide() && !b.decimation.IsWide() && NarrowSample::IsShort(a) && a.source == b.source &&
           AreEqual(across.blur, other.blur) && across.opacity == other.opacity &&
           AreEqual(across.x.look, other.x.look) && across.y.outputs == other.y.outputs &&
           AreEqual(a.plan->down, b.plan->down);
}

/// Where the samples from `first` on that share a copy end.
size_t EndOfShared(const std::vector<StackSample>& all, size_t first) {
    size_t end = first + 1;
    while (end < all.size() && ShareCopy(all[first], all[end])) ++end;
    return end;
}

/// The sample that a task belongs to, of which `ends` says where the tasks end; `task` becomes its own.
size_t SampleOf(const std::vector<int>& ends, int& task) {
    const auto index = static_cast<size_t>(std::upper_bound(ends.begin(), ends.end(), task) - ends.begin());
    if (index > 0) task -= ends[index - 1];
    return index;
}

}  // namespace

void DrawnSample::Start(const StackSample& sample) {
    isWide_ = sample.decimation.IsWide();
    if (isWide_) {
        wide_.Start(sample, *sample.level);
    } else {
        narrow_.Start(sample);
    }
}

NarrowSample& DrawnSample::AsNarrow() {
    isWide_ = false;
    return narrow_;
}

void DrawnSample::Weigh(int task, SampleMemory& memory) {
    if (isWide_) {
        wide_.Weigh(task, memory.folder);
    } else {
        narrow_.Weigh(task, memory.folder);
    }
}

void DrawnSample::MakePlane(int task, SampleMemory& memory, float* plane) const {
    if (isWide_) {
        wide_.BlurAcross(task, plane);
    } else {
        narrow_.MakePlane(task, memory.narrow, plane);
    }
}

void DrawnSample::Place(const Region& patch, const float* plane, SampleMemory& memory, uint16_t* accumulated,
                        int width) const {
    if (isWide_) {
        wide_.Place(patch, plane, memory.wide, accumulated, width);
    } else {
        narrow_.Place(patch, plane, memory.narrow, accumulated, width);
    }
}

size_t SampleGroup::Start(const std::vector<StackSample>& all, size_t next) {
    planes_.clear();
    weighEnds_.clear();
    planeEnds_.clear();
    planeSize_ = 0;
    while (next < all.size() && Count() < kMostSamples) {
        const size_t end = std::min(EndOfShared(all, next), next + kMostSamples - Count());
        StartSamples(all, next, end);
        const size_t plane = samples_[Count()].PlaneSize();
        if (Count() > 0 && plane > 0 && planeSize_ + plane > kMostPlaneFloats) break;
        for (; next < end; ++next) Add();
        planeSize_ += plane;
    }
    return next;
}

// Samples that share a copy, or one alone.
void SampleGroup::StartSamples(const std::vector<StackSample>& all, size_t first, size_t end) {
    const size_t count = Count();
    samples_.resize(std::max(samples_.size(), count + (end - first)));
    if (end == first + 1) return samples_[count].Start(all[first]);
    Region copy = all[first].plan->regions.down;
    Range across = all[first].plan->regions.across.y;
    for (size_t i = first + 1; i < end; ++i) {
        const SampleRegions& regions = all[i].plan->regions;
        copy = {Around(copy.x, regions.down.x), Around(copy.y, regions.down.y)};
        across = Around(across, regions.across.y);
    }
    NarrowSample& owner = samples_[count].AsNarrow();
    owner.StartShared(all[first], copy, across);
    for (size_t i = first + 1; i < end; ++i) samples_[count + (i - first)].AsNarrow().StartAfter(all[i], owner);
}

void SampleGroup::Add() {
    const DrawnSample& sample = samples_[Count()];
    weighEnds_.push_back(WeighTasks() + sample.WeighTasks());
    planeEnds_.push_back(PlaneTasks() + sample.PlaneTasks());
    planes_.push_back(planeSize_);
}

void SampleGroup::Weigh(int task, SampleMemory& memory) {
    const size_t sample = SampleOf(weighEnds_, task);
    samples_[sample].Weigh(task, memory);
}

void SampleGroup::MakePlane(int task, SampleMemory& memory, float* planes) const {
    const size_t sample = SampleOf(planeEnds_, task);
    samples_[sample].MakePlane(task, memory, planes + planes_[sample]);
}

void SampleGroup::Place(const Region& patch, const float* planes, SampleMemory& memory, uint16_t* accumulated,
                        int width) const {
    for (size_t i = 0; i < Count(); ++i) samples_[i].Place(patch, planes + planes_[i], memory, accumulated, width);
}

}  // namespace umbrant::effect
