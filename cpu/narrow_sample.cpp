// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/narrow_sample.h"

#include <algorithm>
#include <cmath>

#include "cpu/kernels.h"
#include "cpu/stack_drawer.h"

namespace umbrant::effect {

namespace {

// Columns of a copy whose weights make one task.
constexpr int kChunkColumns = 64;
// Rows of a patch's blur across come in multiples of this: what every instruction set works on at a time.
constexpr int kRowStep = 16;
// A blur is done patch by patch while the rows that it reads beyond a patch's own are at most this share of them.
constexpr double kMostBeyond = 0.4;

int Divide(int count, int by) {
    return (count + by - 1) / by;
}

// Whole cache lines, an odd number of pairs of them, so that the rows of a narrow strip spread over the cache's sets.
ptrdiff_t PitchFor(int columns) {
    const int chunks = Divide(columns, kColumnChunk) | 1;
    return ptrdiff_t{chunks} * kColumnChunk;
}

}  // namespace

void NarrowSample::Start(const StackSample& sample, int patchWidth, int patchHeight) {
    sample_ = &sample;
    columns_ = sample.plan->regions.down.x;
    stored_ = sample.source->StoredRows(sample.plan->regions.across.y);
    const double rows = patchHeight * Stretch(sample.plan->place.y).scale;
    hasPlane_ = 2 * sample.plan->down.Reach() > kMostBeyond * rows;
    int width = columns_.Size();
    if (!hasPlane_) {
        // A column before the first and two after the last are read, and the first is at a whole block.
        const double columns = patchWidth * Stretch(sample.plan->place.x).scale + 3 + 2 * kTapOutputs;
        if (columns < width) width = static_cast<int>(columns) + 1;
    }
    pitch_ = PitchFor(width);
    across_.resize(std::max(across_.size(), static_cast<size_t>(Chunks())));
}

int NarrowSample::Chunks() const {
    return Divide(columns_.Size(), kChunkColumns);
}
int NarrowSample::FirstTile() const {
    return (stored_.begin - sample_->source->Rows().begin) / kTileRows;
}
int NarrowSample::Tiles() const {
    return Divide(stored_.end - sample_->source->Rows().begin, kTileRows) - FirstTile();
}

size_t NarrowSample::PlaneSize() const {
    if (!hasPlane_) return 0;
    return static_cast<size_t>(pitch_) * static_cast<size_t>(Tiles()) * kTileRows + kSlack;
}

// Task 0 is the blur down's weights and the columns' places, the others a chunk of columns each.
void NarrowSample::Weigh(int task, TapFolder& folder) {
    if (task == 0) {
        WeighDown(folder);
        StretchColumns();
        return;
    }
    const Look& look = sample_->plan->across.x.look;
    const int chunk = task - 1;
    const int begin = columns_.begin + chunk * kChunkColumns;
    const int end = std::min(begin + kChunkColumns, columns_.end);
    TapList& list = across_[static_cast<size_t>(chunk)];
    const Range kept = sample_->source->Columns();
    const KeptInputs stored{{0, look.size}, kept, kept.begin, kTileRows};
    list.Clear();
    folder.Prepare(look.size);
    for (int block = begin; block < end; block += kTapOutputs) {
        for (int column = block; column < std::min(block + kTapOutputs, end); ++column) {
            folder.Fold(column - block, look.At(column), sample_->acrossKernel, look);
        }
        folder.Flush(stored, &list);
    }
}

void NarrowSample::WeighDown(TapFolder& folder) {
    const Look look{0, 1, sample_->plan->across.y.outputs, Edge::kMirror};
    const Range rows = sample_->plan->regions.down.y;
    const int planeBegin = sample_->source->Rows().begin + FirstTile() * kTileRows;
    const KeptInputs stored{sample_->source->Distinct(), stored_, planeBegin, static_cast<int>(pitch_)};
    down_.Clear();
    folder.Prepare(look.size);
    for (int block = rows.begin; block < rows.end; block += kTapOutputs) {
        for (int row = block; row < std::min(block + kTapOutputs, rows.end); ++row) {
            folder.Fold(row - block, look.At(row), sample_->downKernel, look);
        }
        folder.Flush(stored, &down_);
    }
}

void NarrowSample::StretchColumns() {
    const Stretch stretch(sample_->plan->place.x);
    const Range out = sample_->plan->regions.placed.x;
    texels_.resize(static_cast<size_t>(out.Size()));
    fractions_.resize(static_cast<size_t>(out.Size()));
    gentle_ = true;
    for (int i = 0; i < out.Size(); ++i) {
        const auto column = static_cast<size_t>(i);
        const double at = stretch.At(out.begin + i);
        const double floor = std::floor(at);
        texels_[column] = static_cast<int>(TexelAt(at)) - (columns_.begin - 1);
        fractions_[column] = static_cast<float>(at - floor);
        // A scale of at most 1 promises nothing: places that differ by 1 may lie on two sides of a texel's centre by
        // their last bits alone, and then a texel is stepped over.
        if (i > 0 && texels_[column] > texels_[column - 1] + 1) gentle_ = false;
    }
}

// The columns of one chunk in the rows of one tile.
void NarrowSample::BlurAcross(int task, float* plane) const {
    const int tile = task / Chunks();
    const int chunk = task % Chunks();
    float* out = plane + pitch_ * tile * kTileRows + ptrdiff_t{chunk} * kChunkColumns;
    CurrentKernels().blurColumns(sample_->source->Tile(FirstTile() + tile), across_[static_cast<size_t>(chunk)].View(),
                                 kTileRows, out, pitch_);
}

bool NarrowSample::FindPart(const Region& patch, Part* part) const {
    const Region& placed = sample_->plan->regions.placed;
    const Range down = sample_->plan->regions.down.y;
    part->out = {Intersect(patch.x, placed.x), Intersect(patch.y, placed.y)};
    if (part->out.Empty()) return false;

    const Stretch stretch(sample_->plan->place.y);
    const auto above = TexelAt(stretch.At(part->out.y.begin));
    const auto below = TexelAt(stretch.At(part->out.y.end - 1)) + 1;
    const Range rows = {static_cast<int>(std::max<int64_t>(above, down.begin)),
                        static_cast<int>(std::min<int64_t>(below + 1, down.end))};
    if (rows.Empty()) return false;
    part->firstBlock = (rows.begin - down.begin) / kTapOutputs;
    part->blocks = Divide(rows.end - down.begin, kTapOutputs) - part->firstBlock;
    part->rows = {down.begin + part->firstBlock * kTapOutputs, rows.end};

    const auto first = static_cast<size_t>(part->out.x.begin - placed.x.begin);
    const auto last = static_cast<size_t>(part->out.x.end - 1 - placed.x.begin);
    const Range columns =
        Intersect({columns_.begin - 1 + texels_[first], columns_.begin + texels_[last] + 1}, columns_);
    if (columns.Empty()) return false;
    const int block = (columns.begin - columns_.begin) / kTapOutputs;
    part->columns = {columns_.begin + block * kTapOutputs, columns.end};
    return true;
}

Range NarrowSample::RowsRead(int firstBlock, int blocks) const {
    const TapBlocks taps = down_.View();
    Range read{INT32_MAX, 0};
    for (int block = firstBlock; block < firstBlock + blocks; ++block) {
        const int begin = taps.starts[block];
        const int end = taps.starts[block + 1];
        if (begin == end) continue;
        read.begin = std::min(read.begin, static_cast<int32_t>(taps.offsets[begin] / pitch_));
        read.end = std::max(read.end, static_cast<int32_t>(taps.offsets[end - 1] / pitch_) + 1);
    }
    if (read.Empty()) return {0, 0};
    return {read.begin / kRowStep * kRowStep, Divide(read.end, kRowStep) * kRowStep};
}

// Rows of the plane, counted from its first, for the columns of a part.
void NarrowSample::BlurPartAcross(const Part& part, Range rows, float* out) const {
    const CpuKernels& kernels = CurrentKernels();
    const int firstBlock = (part.columns.begin - columns_.begin) / kTapOutputs;
    const int lastBlock = Divide(part.columns.end - columns_.begin, kTapOutputs);
    constexpr int kChunkBlocks = kChunkColumns / kTapOutputs;
    for (int block = firstBlock; block < lastBlock;) {
        const int chunk = block / kChunkBlocks;
        const int end = std::min(lastBlock, (chunk + 1) * kChunkBlocks);
        TapBlocks taps = across_[static_cast<size_t>(chunk)].View();
        taps.starts += block - chunk * kChunkBlocks;
        taps.count = end - block;
        float* columns = out + ptrdiff_t{kTapOutputs} * (block - firstBlock);
        for (int row = rows.begin; row < rows.end;) {
            const int tile = row / kTileRows;
            const int tileEnd = std::min(rows.end, (tile + 1) * kTileRows);
            kernels.blurColumns(sample_->source->Tile(FirstTile() + tile) + (row - tile * kTileRows), taps,
                                tileEnd - row, columns + (row - rows.begin) * pitch_, pitch_);
            row = tileEnd;
        }
        block = end;
    }
}

void NarrowSample::Place(const Region& patch, const float* plane, NarrowMemory& memory, uint16_t* accumulated,
                         int width) const {
    Part part;
    if (!FindPart(patch, &part)) return;
    const float* in = nullptr;
    TapBlocks taps = down_.View();
    ptrdiff_t pitch = pitch_;
    if (hasPlane_) {
        in = plane + (part.columns.begin - columns_.begin);
        pitch = PitchFor(part.columns.Size());
    } else {
        const Range rows = RowsRead(part.firstBlock, part.blocks);
        float* across = memory.across.Reserve(static_cast<size_t>(pitch_) * static_cast<size_t>(rows.Size()) + kSlack);
        BlurPartAcross(part, rows, across);
        taps.base = static_cast<int32_t>(rows.begin * pitch_);
        in = across;
    }
    const auto rowCount = static_cast<size_t>(part.blocks) * kTapOutputs;
    float* rows = memory.down.Reserve(static_cast<size_t>(pitch) * rowCount + kSlack);
    CurrentKernels().blurRows(in, taps, part.firstBlock, part.firstBlock + part.blocks, part.columns.Size(), rows,
                              pitch);
    PlaceRows(part, rows, pitch, memory, accumulated, width);
}

void NarrowSample::PlaceRows(const Part& part, const float* rows, ptrdiff_t pitch, NarrowMemory& memory,
                             uint16_t* accumulated, int width) const {
    const PlacePlan& copy = sample_->plan->place;
    const int columns = part.columns.Size();
    const Stretch stretch(copy.y);
    const CpuKernels& kernels = CurrentKernels();
    float* mixed = memory.row.Reserve(static_cast<size_t>(pitch) + size_t{2} * kSlack) + 1;
    const float* nothing = memory.zeroes.Reserve(static_cast<size_t>(pitch) + kSlack);
    const auto rowOf = [&](int64_t row) {
        const int index = EdgeIndex(row, copy.y.texels, Edge::kMirror);
        return index < part.rows.begin || index >= part.rows.end ? nothing : rows + (index - part.rows.begin) * pitch;
    };

    const auto first = static_cast<size_t>(part.out.x.begin - sample_->plan->regions.placed.x.begin);
    const PlaceColumns place{&texels_[first], &fractions_[first], part.out.x.Size(), gentle_,
                             part.columns.begin - columns_.begin};
    const Range down = sample_->plan->regions.down.y;
    for (int pixel = part.out.y.begin; pixel < part.out.y.end; ++pixel) {
        const double at = stretch.At(pixel);
        const auto texel = TexelAt(at);
        // Further out there are mirror images of the copy, which the output does not show.
        if (texel < down.begin - 1) continue;
        if (texel >= down.end) break;
        kernels.mixRows(rowOf(texel), rowOf(texel + 1), static_cast<float>(at - static_cast<double>(texel)), columns,
                        mixed);
        // Beyond the copy's edge lies its mirror image; beyond what is not 0, nothing.
        if (part.columns.begin == columns_.begin) mixed[-1] = columns_.begin == 0 ? mixed[0] : 0;
        if (part.columns.end == columns_.end) mixed[columns] = columns_.end == copy.x.texels ? mixed[columns - 1] : 0;
        kernels.placeRow(mixed - 1, place, accumulated + static_cast<ptrdiff_t>(pixel) * width + part.out.x.begin);
    }
}

}  // namespace umbrant::effect
