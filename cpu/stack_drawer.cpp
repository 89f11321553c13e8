// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Samples are drawn in groups, and the output in patches: a task places all samples of a group in one patch, whose sums
// stay in the cache meanwhile. Three stages per group: its weights, the blurs across that patches share, and the
// patches. One run of the pool does the last stage of a group together with the middle one of the next and the first of
// the one after that, so that no thread waits at the end of a stage.

#include "cpu/stack_drawer.h"

#include <algorithm>

#include "cpu/kernels.h"
#include "cpu/narrow_sample.h"
#include "cpu/patch_size.h"
#include "cpu/thread_pool.h"

namespace umbrant::effect {

namespace {

PatchSize patchSize;

// The planes of a group stay in the third-level cache; a group has at least one sample.
constexpr size_t kMostPlaneFloats = size_t{1} << 20;
constexpr size_t kMostSamples = 48;

int Divide(int count, int by) {
    return (count + by - 1) / by;
}

/// A sample on either kind of grid.
class DrawnSample {
 public:
    void Start(const StackSample& sample) {
        isWide_ = sample.decimation.IsWide();
        if (isWide_) {
            wide_.Start(sample, *sample.level);
        } else {
            narrow_.Start(sample, patchSize.width, patchSize.height);
        }
    }
    size_t PlaneSize() const { return isWide_ ? wide_.PlaneSize() : narrow_.PlaneSize(); }
    int WeighTasks() const { return isWide_ ? wide_.WeighTasks() : narrow_.WeighTasks(); }
    int AcrossTasks() const { return isWide_ ? wide_.AcrossTasks() : narrow_.AcrossTasks(); }
    void Weigh(int task, TapFolder& folder) {
        if (isWide_) {
            wide_.Weigh(task, folder);
        } else {
            narrow_.Weigh(task, folder);
        }
    }
    void BlurAcross(int task, float* plane) const {
        if (isWide_) {
            wide_.BlurAcross(task, plane);
        } else {
            narrow_.BlurAcross(task, plane);
        }
    }
    template <typename Memory>
    void Place(const Region& patch, const float* plane, Memory& memory, uint16_t* accumulated, int width) const {
        if (isWide_) {
            wide_.Place(patch, plane, memory.wide, accumulated, width);
        } else {
            narrow_.Place(patch, plane, memory.narrow, accumulated, width);
        }
    }

 private:
    bool isWide_ = false;
    NarrowSample narrow_;
    WideSample wide_;
};

/// Samples that are placed together.
struct Group {
    std::vector<DrawnSample> samples;  ///< as many as ever; the first `count` count
    size_t count = 0;
    std::vector<size_t> planes;   ///< where each sample's plane begins
    std::vector<int> weighEnds;   ///< tasks of the samples up to each
    std::vector<int> acrossEnds;  ///< the same
    size_t planeFloats = 0;

    int WeighTasks() const { return count ? weighEnds[count - 1] : 0; }
    int AcrossTasks() const { return count ? acrossEnds[count - 1] : 0; }

    /// Takes samples from `next` on; returns the first that it leaves.
    size_t Start(const std::vector<StackSample>& all, size_t next) {
        count = 0;
        planeFloats = 0;
        while (next < all.size() && count < kMostSamples) {
            if (samples.size() == count) samples.emplace_back();
            DrawnSample& sample = samples[count];
            sample.Start(all[next]);
            const size_t plane = sample.PlaneSize();
            if (count > 0 && plane > 0 && planeFloats + plane > kMostPlaneFloats) break;
            Add(sample);
            planeFloats += plane;
            ++next;
        }
        return next;
    }

    void Add(const DrawnSample& sample) {
        const int weigh = WeighTasks() + sample.WeighTasks();
        const int across = AcrossTasks() + sample.AcrossTasks();
        planes.resize(std::max(planes.size(), count + 1));
        weighEnds.resize(planes.size());
        acrossEnds.resize(planes.size());
        planes[count] = planeFloats;
        weighEnds[count] = weigh;
        acrossEnds[count] = across;
        ++count;
    }
    /// The sample that a task belongs to; `task` becomes its own.
    size_t SampleOf(const std::vector<int>& ends, int& task) const {
        const auto counted = ends.begin() + static_cast<ptrdiff_t>(count);
        const auto index = static_cast<size_t>(std::upper_bound(ends.begin(), counted, task) - ends.begin());
        if (index > 0) task -= ends[index - 1];
        return index;
    }
};

/// A pool thread's own.
struct WorkerMemory {
    TapFolder folder;
    NarrowMemory narrow;
    WideMemory wide;
};

}  // namespace

struct StackDrawer::Memory {
    Group groups[3];
    Buffer<float> planes[2];  ///< what the blurs across make, of even and odd groups
    std::vector<WorkerMemory> workers;
    Buffer<uint16_t> accumulated;
    int width = 0;
    int height = 0;

    int PatchColumns() const { return Divide(width, patchSize.width); }
    int Patches() const { return PatchColumns() * Divide(height, patchSize.height); }
    void DrawPatch(const Group& group, int index, const float* blurred, bool isFirst, WorkerMemory& worker);
    void RunStages(Group* weighed, Group* across, Group* placed, int step);
};

void SetPatchSize(PatchSize size) {
    patchSize = size;
}

StackDrawer::StackDrawer() : memory_(std::make_unique<Memory>()) {}
StackDrawer::~StackDrawer() = default;

void StackDrawer::Memory::DrawPatch(const Group& group, int index, const float* blurred, bool isFirst,
                                    WorkerMemory& worker) {
    const int x = index % PatchColumns() * patchSize.width;
    const int y = index / PatchColumns() * patchSize.height;
    const Region patch = {{x, std::min(x + patchSize.width, width)}, {y, std::min(y + patchSize.height, height)}};
    uint16_t* sums = accumulated.Get();
    if (isFirst) {
        for (int row = patch.y.begin; row < patch.y.end; ++row) {
            std::fill_n(sums + ptrdiff_t{row} * width + patch.x.begin, patch.x.Size(), uint16_t{0});
        }
    }
    for (size_t i = 0; i < group.count; ++i) {
        group.samples[i].Place(patch, blurred + group.planes[i], worker, sums, width);
    }
}

void StackDrawer::Memory::RunStages(Group* weighed, Group* across, Group* placed, int step) {
    float* acrossPlanes = nullptr;
    if (across) acrossPlanes = planes[(step - 1) % 2].Reserve(across->planeFloats);
    const float* placedPlanes = planes[step % 2].Get();
    const int placeTasks = placed ? Patches() : 0;
    const int acrossTasks = across ? across->AcrossTasks() : 0;
    const int weighTasks = weighed ? weighed->WeighTasks() : 0;
    RunTasks(placeTasks + acrossTasks + weighTasks, [&](int task, int worker) {
        WorkerMemory& own = workers[static_cast<size_t>(worker)];
        if (task < placeTasks) {
            DrawPatch(*placed, task, placedPlanes, step == 2, own);
            return;
        }
        task -= placeTasks;
        if (task < acrossTasks) {
            const size_t sample = across->SampleOf(across->acrossEnds, task);
            across->samples[sample].BlurAcross(task, acrossPlanes + across->planes[sample]);
            return;
        }
        task -= acrossTasks;
        const size_t sample = weighed->SampleOf(weighed->weighEnds, task);
        weighed->samples[sample].Weigh(task, own.folder);
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
    Group* weighed = nullptr;
    Group* across = nullptr;
    Group* placed = nullptr;
    for (int step = 0; step == 0 || weighed || across; ++step) {
        placed = across;
        across = weighed;
        weighed = nullptr;
        if (next < samples.size() || step == 0) {
            weighed = &m.groups[step % 3];
            next = weighed->Start(samples, next);
        }
        m.RunStages(weighed, across, placed, step);
    }
    return m.accumulated.Get();
}

}  // namespace umbrant::effect
