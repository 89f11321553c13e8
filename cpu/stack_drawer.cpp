// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Three stages per sample: its weights, the blur across, and the blur down with the placing. One run of the pool does
// the last stage of a sample together with the middle one of the next and the first of the one after that, so that no
// thread waits at the end of a stage.

#include "cpu/stack_drawer.h"

#include <algorithm>
#include <cmath>

#include "cpu/kernels.h"
#include "cpu/thread_pool.h"

namespace umbrant::effect {

namespace {

// Columns of a copy whose weights make one task.
constexpr int kChunkColumns = 64;
// Rows of a copy that one task blurs down and places: as many as fit the second-level cache beside what they are made
// from. The last block of a strip is there only for the first row of the next.
constexpr int kStripRows = 64;
constexpr int kStripStep = kStripRows - kTapOutputs;

int Divide(int count, int by) {
    return (count + by - 1) / by;
}

// Whole cache lines, an odd number of pairs of them, so that the rows of a narrow strip spread over the cache's sets.
ptrdiff_t PitchFor(int columns) {
    const int chunks = Divide(columns, kColumnChunk) | 1;
    return ptrdiff_t{chunks} * kColumnChunk;
}

/// What the stages of one sample hand on.
struct Slot {
    const StackSample* sample = nullptr;
    Range columns;                ///< of the copy
    Range stored;                 ///< rows of the source that the blur across reads
    std::vector<TapList> across;  ///< per kChunkColumns columns
    TapList down;
    std::vector<int32_t> texels;  ///< per output column, from columns.begin - 1 on
    std::vector<float> fractions;
    bool gentle = false;  ///< no column is more than one texel beyond the one before
    ptrdiff_t pitch = 0;
    WideSample wide;

    bool IsWide() const { return sample->decimation.IsWide(); }

    void Start(const StackSample& next) {
        sample = &next;
        if (IsWide()) return wide.Start(next, *next.level);
        columns = next.plan->regions.down.x;
        stored = next.source->StoredRows(next.plan->regions.across.y);
        pitch = PitchFor(columns.Size());
        across.resize(std::max(across.size(), static_cast<size_t>(Chunks())));
    }
    Range DownRows() const { return sample->plan->regions.down.y; }
    const Region& Placed() const { return sample->plan->regions.placed; }
    int Chunks() const { return Divide(columns.Size(), kChunkColumns); }
    int FirstTile() const { return (stored.begin - sample->source->Rows().begin) / kTileRows; }
    int Tiles() const { return Divide(stored.end - sample->source->Rows().begin, kTileRows) - FirstTile(); }
    /// The row of the copy that the plane's first is.
    int PlaneBegin() const { return sample->source->Rows().begin + FirstTile() * kTileRows; }
    size_t PlaneSize() const {
        if (IsWide()) return wide.PlaneSize();
        return static_cast<size_t>(pitch) * static_cast<size_t>(Tiles()) * kTileRows + kSlack;
    }
    int WeighTasks() const { return IsWide() ? wide.WeighTasks() : Chunks() + 1; }
    int AcrossTasks() const { return IsWide() ? wide.AcrossTasks() : Tiles() * Chunks(); }
    int PlaceTasks() const { return IsWide() ? wide.PlaceTasks() : Strips(); }
    int Strips() const { return std::max(1, Divide(DownRows().Size() - kTapOutputs, kStripStep)); }
};

/// A pool thread's own.
struct WorkerMemory {
    TapFolder folder;
    Buffer<float> strip;
    Buffer<float> row;
    Buffer<float> zeroes;  ///< never written
    WideMemory wide;
};

}  // namespace

struct StackDrawer::Memory {
    Slot slots[3];
    Buffer<float> planes[2];  ///< what the blur across makes, of even and odd samples
    std::vector<WorkerMemory> workers;
    Buffer<uint16_t> accumulated;
    int width = 0;

    void Weigh(Slot& slot, int task, TapFolder& folder);
    void WeighDown(Slot& slot, TapFolder& folder);
    void StretchColumns(Slot& slot);
    void BlurAcross(const Slot& slot, float* plane, int task);
    void BlurDownAndPlace(const Slot& slot, const float* plane, int strip, WorkerMemory& worker);
    void PlaceRows(const Slot& slot, const float* rows, Range have, Range texelRows, WorkerMemory& worker);
};

StackDrawer::StackDrawer() : memory_(std::make_unique<Memory>()) {}
StackDrawer::~StackDrawer() = default;

// Task 0 is the blur down's weights and the columns' places, the others a chunk of columns each.
void StackDrawer::Memory::Weigh(Slot& slot, int task, TapFolder& folder) {
    if (slot.IsWide()) return slot.wide.Weigh(task, folder);
    if (task == 0) {
        WeighDown(slot, folder);
        StretchColumns(slot);
        return;
    }
    const StackSample& sample = *slot.sample;
    const Look& look = sample.plan->across.x.look;
    const int chunk = task - 1;
    const int begin = slot.columns.begin + chunk * kChunkColumns;
    const int end = std::min(begin + kChunkColumns, slot.columns.end);
    TapList& list = slot.across[static_cast<size_t>(chunk)];
    const Range kept = sample.source->Columns();
    const KeptInputs stored{{0, look.size}, kept, kept.begin, kTileRows};
    list.Clear();
    folder.Prepare(look.size);
    for (int block = begin; block < end; block += kTapOutputs) {
        for (int column = block; column < std::min(block + kTapOutputs, end); ++column) {
            folder.Fold(column - block, look.At(column), sample.acrossKernel, look);
        }
        folder.Flush(stored, &list);
    }
}

void StackDrawer::Memory::WeighDown(Slot& slot, TapFolder& folder) {
    const StackSample& sample = *slot.sample;
    const Look look{0, 1, sample.plan->across.y.outputs, Edge::kMirror};
    const Range rows = slot.DownRows();
    const KeptInputs stored{sample.source->Distinct(), slot.stored, slot.PlaneBegin(), static_cast<int>(slot.pitch)};
    slot.down.Clear();
    folder.Prepare(look.size);
    for (int block = rows.begin; block < rows.end; block += kTapOutputs) {
        for (int row = block; row < std::min(block + kTapOutputs, rows.end); ++row) {
            folder.Fold(row - block, look.At(row), sample.downKernel, look);
        }
        folder.Flush(stored, &slot.down);
    }
}

void StackDrawer::Memory::StretchColumns(Slot& slot) {
    const Stretch stretch(slot.sample->plan->place.x);
    const Range out = slot.Placed().x;
    slot.texels.resize(static_cast<size_t>(out.Size()));
    slot.fractions.resize(static_cast<size_t>(out.Size()));
    slot.gentle = true;
    for (int i = 0; i < out.Size(); ++i) {
        const auto column = static_cast<size_t>(i);
        const double at = stretch.At(out.begin + i);
        const double floor = std::floor(at);
        slot.texels[column] = static_cast<int>(TexelAt(at)) - (slot.columns.begin - 1);
        slot.fractions[column] = static_cast<float>(at - floor);
        // A scale of at most 1 promises nothing: places that differ by 1 may lie on two sides of a texel's centre by
        // their last bits alone, and then a texel is stepped over.
        if (i > 0 && slot.texels[column] > slot.texels[column - 1] + 1) slot.gentle = false;
    }
}

// The columns of one chunk in the rows of one tile.
void StackDrawer::Memory::BlurAcross(const Slot& slot, float* plane, int task) {
    if (slot.IsWide()) return slot.wide.BlurAcross(task, plane);
    const int tile = task / slot.Chunks();
    const int chunk = task % slot.Chunks();
    float* out = plane + slot.pitch * tile * kTileRows + ptrdiff_t{chunk} * kChunkColumns;
    CurrentKernels().blurColumns(slot.sample->source->Tile(slot.FirstTile() + tile),
                                 slot.across[static_cast<size_t>(chunk)].View(), kTileRows, out, slot.pitch);
}

void StackDrawer::Memory::BlurDownAndPlace(const Slot& slot, const float* plane, int strip, WorkerMemory& worker) {
    if (slot.IsWide()) return slot.wide.Place(strip, plane, worker.wide, accumulated.Get(), width);
    const Range down = slot.DownRows();
    const Range have = Intersect({down.begin + strip * kStripStep, down.begin + strip * kStripStep + kStripRows}, down);
    float* rows = worker.strip.Reserve(static_cast<size_t>(slot.pitch) * kStripRows + kSlack);
    const int firstBlock = (have.begin - down.begin) / kTapOutputs;
    CurrentKernels().blurRows(plane, slot.down.View(), firstBlock, firstBlock + Divide(have.Size(), kTapOutputs),
                              slot.columns.Size(), rows, slot.pitch);
    // A pixel belongs to the strip that has its upper texel; the first and the last strip take the edges' too.
    Range texelRows = {have.begin, have.begin + kStripStep};
    if (strip == 0) texelRows.begin = have.begin - 1;
    if (strip == slot.Strips() - 1) texelRows.end = have.end;
    PlaceRows(slot, rows, have, texelRows, worker);
}

void StackDrawer::Memory::PlaceRows(const Slot& slot, const float* rows, Range have, Range texelRows,
                                    WorkerMemory& worker) {
    const PlacePlan& copy = slot.sample->plan->place;
    const Region& out = slot.Placed();
    const int columns = slot.columns.Size();
    const Stretch stretch(copy.y);
    const CpuKernels& kernels = CurrentKernels();
    float* mixed = worker.row.Reserve(static_cast<size_t>(slot.pitch) + size_t{2} * kSlack) + 1;
    const float* nothing = worker.zeroes.Reserve(static_cast<size_t>(slot.pitch) + kSlack);
    const auto rowOf = [&](int64_t row) {
        const int index = EdgeIndex(row, copy.y.texels, Edge::kMirror);
        return index < have.begin || index >= have.end ? nothing : rows + (index - have.begin) * slot.pitch;
    };

    int pixel =
        std::max(out.y.begin, static_cast<int>(TexelAt((texelRows.begin - stretch.offset) / stretch.scale)) - 1);
    const PlaceColumns place{slot.texels.data(), slot.fractions.data(), out.x.Size(), slot.gentle};
    for (; pixel < out.y.end; ++pixel) {
        const double at = stretch.At(pixel);
        const auto texel = TexelAt(at);
        if (texel < texelRows.begin) continue;
        if (texel >= texelRows.end) break;
        kernels.mixRows(rowOf(texel), rowOf(texel + 1), static_cast<float>(at - static_cast<double>(texel)), columns,
                        mixed);
        // Beyond the copy's edge lies its mirror image; beyond what is not 0, nothing.
        mixed[-1] = slot.columns.begin == 0 ? mixed[0] : 0;
        mixed[columns] = slot.columns.end == copy.x.texels ? mixed[columns - 1] : 0;
        kernels.placeRow(mixed - 1, place, accumulated.Get() + static_cast<ptrdiff_t>(pixel) * width + out.x.begin);
    }
}

const uint16_t* StackDrawer::Draw(const std::vector<StackSample>& samples, int width, int height) {
    Memory& m = *memory_;
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    std::fill_n(m.accumulated.Reserve(pixels + kSlack), pixels, uint16_t{0});
    m.width = width;
    m.workers.resize(std::max(m.workers.size(), static_cast<size_t>(PoolThreads())));

    const int count = static_cast<int>(samples.size());
    for (int step = 0; step < count + 2; ++step) {
        Slot* weighed = step < count ? &m.slots[step % 3] : nullptr;
        Slot* across = step >= 1 && step - 1 < count ? &m.slots[(step - 1) % 3] : nullptr;
        Slot* down = step >= 2 ? &m.slots[(step - 2) % 3] : nullptr;
        float* acrossPlane = nullptr;
        const float* downPlane = m.planes[step % 2].Get();
        if (weighed) weighed->Start(samples[static_cast<size_t>(step)]);
        if (across) {
            acrossPlane = m.planes[(step - 1) % 2].Reserve(across->PlaneSize());
        }
        const int downTasks = down ? down->PlaceTasks() : 0;
        const int acrossTasks = across ? across->AcrossTasks() : 0;
        const int weighTasks = weighed ? weighed->WeighTasks() : 0;
        RunTasks(downTasks + acrossTasks + weighTasks, [&](int task, int worker) {
            WorkerMemory& own = m.workers[static_cast<size_t>(worker)];
            if (task < downTasks) {
                m.BlurDownAndPlace(*down, downPlane, task, own);
            } else if (task < downTasks + acrossTasks) {
                m.BlurAcross(*across, acrossPlane, task - downTasks);
            } else {
                m.Weigh(*weighed, task - downTasks - acrossTasks, own.folder);
            }
        });
    }
    return m.accumulated.Get();
}

}  // namespace umbrant::effect
