// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Samples are drawn in groups, and the output in patches: a task places all samples of a group in one patch, whose sums
// stay in the cache meanwhile. Three stages per group: its weights, the blurs across that patches share, and the
// patches. One run of the pool does the last stage of a group together with the middle one of the next and the first of
// the one after that, so that no thread waits at the end of a stage.

#include "cpu/stack_drawer.h"

#include <algorithm>

#include "cpu/kernels/kernels.h"
#include "cpu/patch_size.h"
#include "cpu/pitch.h"
#include "cpu/sample_group.h"
#include "cpu/thread_pool.h"

namespace umbrant::effect {

namespace {

PatchSize patchSize;

}  // namespace

struct StackDrawer::Memory {
    SampleGroup groups[3];
    Buffer<float> planes[2];  ///< what patches share, of even and odd groups
    std::vector<SampleMemory> workers;
    Buffer<uint16_t> accumulated;
    int width = 0;
    int height = 0;

    int PatchColumns() const { return DivideUp(width, patchSize.width); }
    int Patches() const { return PatchColumns() * DivideUp(height, patchSize.height); }
    void DrawPatch(const SampleGroup& group, int index, const float* blurred, bool isFirst, SampleMemory& worker);
    void RunStages(SampleGroup* weighed, SampleGroup* made, SampleGroup* placed, int step);
};

void SetPatchSize(PatchSize size) {
    patchSize = size;
}
PatchSize CurrentPatchSize() {
    return patchSize;
}

StackDrawer::StackDrawer() : memory_(std::make_unique<Memory>()) {}
StackDrawer::~StackDrawer() = default;

void StackDrawer::Memory::DrawPatch(const SampleGroup& group, int index, const float* blurred, bool isFirst,
                                    SampleMemory& worker) {
    const int x = index % PatchColumns() * patchSize.width;
    const int y = index / PatchColumns() * patchSize.height;
    const Region patch = {{x, std::min(x + patchSize.width, width)}, {y, std::min(y + patchSize.height, height)}};
    uint16_t* sums = accumulated.Get();
    if (isFirst) {
        for (int row = patch.y.begin; row < patch.y.end; ++row) {
            std::fill_n(sums + ptrdiff_t{row} * width + patch.x.begin, patch.x.Size(), uint16_t{0});
        }
    }
    group.Place(patch, blurred, worker, sums, width);
}

void StackDrawer::Memory::RunStages(SampleGroup* weighed, SampleGroup* made, SampleGroup* placed, int step) {
    float* madePlanes = nullptr;
    if (made) madePlanes = planes[(step - 1) % 2].Reserve(made->PlaneSize());
    const float* placedPlanes = planes[step % 2].Get();
    const int placeTasks = placed ? Patches() : 0;
    const int planeTasks = made ? made->PlaneTasks() : 0;
    const int weighTasks = weighed ? weighed->WeighTasks() : 0;
    RunTasks(placeTasks + planeTasks + weighTasks, [&](int task, int worker) {
        SampleMemory& own = workers[static_cast<size_t>(worker)];
        if (task < placeTasks) {
            DrawPatch(*placed, task, placedPlanes, step == 2, own);
        } else if (task < placeTasks + planeTasks) {
            made->MakePlane(task - placeTasks, own, madePlanes);
        } else {
            weighed->Weigh(task - placeTasks - planeTasks, own);
        }
    });
}

const uint16_t* StackDrawer::Draw(const std::vector<StackSample>& samples, int width, int height) {
    Memory& m = *memory_;
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    m.accumulated.Reserve(pixels + kSlack);
    m.width = width;
    m.height = height;
    m.workers.resize(std::max(m.workers.size(), static_cast<size_t>(PoolThreads())));

    // A group with no samples takes the place of those before the first and after the last.
    size_t next = 0;
    SampleGroup* weighed = nullptr;
    SampleGroup* made = nullptr;
    SampleGroup* placed = nullptr;
    for (int step = 0; step == 0 || weighed || made; ++step) {
        placed = made;
        made = weighed;
        weighed = nullptr;
        if (next < samples.size() || step == 0) {
            weighed = &m.groups[step % 3];
            next = weighed->Start(samples, next);
        }
        m.RunStages(weighed, made, placed, step);
    }
    return m.accumulated.Get();
}

}  // namespace umbrant::effect
