// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/narrow_sample.h"

#include <algorithm>
#include <cmath>

#include "cpu/kernels/kernels.h"
#include "cpu/patch_size.h"
#include "cpu/pitch.h"
#include "cpu/stack_drawer.h"

namespace umbrant::effect {

namespace {

// Columns of a copy whose weights make one task.
constexpr int kChunkColumns = 64;
// A blur is done patch by patch while the rows that it reads beyond a patch's own are at most this share of them.
constexpr double kMostBeyond = 0.4;
// Columns and rows of a shared copy that make one task: whole vectors and blocks.
constexpr int kCopyColumns = 256;
constexpr int kCopyRows = 128;

}  // namespace

bool NarrowSample::IsShort(const StackSample& sample) {
    const double rows = CurrentPatchSize().height * Stretch(sample.plan->place.y).scale;
    return 2 * sample.plan->down.Reach() <= kMostBeyond * rows;
}

void NarrowSample::Start(const StackSample& sample) {
    const SampleRegions& regions = sample.plan->regions;
    Begin(sample, IsShort(sample) ? Ready::kNothing : Ready::kAcross, regions.down, regions.across.y);
    int width = copy_.x.Size();
    if (ready_ == Ready::kNothing) {
        // A column before the first and two after the last are read, and the first is at a whole block.
        const double columns = CurrentPatchSize().width * Stretch(sample.plan->place.x).scale + 3 + 2 * kTapOutputs;
        if (columns < width) width = static_cast<int>(columns) + 1;
    }
    pitch_ = PitchFor(width);
}

void NarrowSample::StartShared(const StackSample& sample, const Region& copy, Range across) {
    Begin(sample, Ready::kCopy, copy, across);
    pitch_ = PitchFor(std::min(kCopyColumns, copy.x.Size()));
    copyPitch_ = PitchFor(copy.x.Size());
}

void NarrowSample::StartAfter(const StackSample& sample, const NarrowSample& first) {
    sample_ = &sample;
    ready_ = Ready::kOthersCopy;
    copy_ = first.copy_;
    copyPitch_ = first.copyPitch_;
}

void NarrowSample::Begin(const StackSample& sample, Ready ready, const Region& copy, Range across) {
    sample_ = &sample;
    ready_ = ready;
    copy_ = copy;
    stored_ = sample.source->StoredRows(across);
    across_.resize(std::max(across_.size(), static_cast<size_t>(Chunks())));
}

int NarrowSample::Chunks() const {
    return DivideUp(copy_.x.Size(), kChunkColumns);
}
int NarrowSample::FirstTile() const {
    return (stored_.begin - sample_->source->Rows().begin) / kTileRows;
}
int NarrowSample::Tiles() const {
    return DivideUp(stored_.end - sample_->source->Rows().begin, kTileRows) - FirstTile();
}

size_t NarrowSample::PlaneSize() const {
    if (ready_ == Ready::kAcross) return static_cast<size_t>(pitch_ * Tiles() * kTileRows) + kSlack;
    if (ready_ != Ready::kCopy) return 0;
    return static_cast<size_t>(copyPitch_ * (copy_.y.Size() + kTapOutputs)) + kSlack;
}

int NarrowSample::PlaneTasks() const {
    if (ready_ == Ready::kAcross) return Tiles() * Chunks();
    if (ready_ != Ready::kCopy) return 0;
    return DivideUp(copy_.x.Size(), kCopyColumns) * DivideUp(copy_.y.Size(), kCopyRows);
}

// Task 0 is the blur down's weights and the columns' places, the others a chunk of columns each.
void NarrowSample::Weigh(int task, TapFolder& folder) {
    if (task == 0) {
        if (ready_ != Ready::kOthersCopy) WeighDown(folder);
        StretchColumns();
        return;
    }
    const Look& look = sample_->plan->across.x.look;
    const int chunk = task - 1;
    const int begin = copy_.x.begin + chunk * kChunkColumns;
    const int end = std::min(begin + kChunkColumns, copy_.x.end);
    const Range kept = sample_->source->Columns();
    folder.FoldRange({begin, end}, 1, sample_->acrossKernel, look, {{0, look.size}, kept, kept.begin, kTileRows},
                     &across_[static_cast<size_t>(chunk)]);
}

void NarrowSample::WeighDown(TapFolder& folder) {
    const Look look{0, 1, sample_->plan->across.y.outputs, Edge::kMirror};
    const Range rows = copy_.y;
    const int planeBegin = sample_->source->Rows().begin + FirstTile() * kTileRows;
    const KeptInputs stored{sample_->source->Distinct(), stored_, planeBegin, static_cast<int>(pitch_)};
    folder.FoldRange(rows, 1, sample_->downKernel, look, stored, &down_);
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
        texels_[column] = static_cast<int>(TexelAt(at)) - (copy_.x.begin - 1);
        fractions_[column] = static_cast<float>(at - floor);
        // A scale of at most 1 promises nothing: places that differ by 1 may lie on two sides of a texel's centre by
        // their last bits alone, and then a texel is stepped over.
        if (i > 0 && texels_[column] > texels_[column - 1] + 1) gentle_ = false;
    }
}

void NarrowSample::MakePlane(int task, NarrowMemory& memory, float* plane) const {
    if (ready_ == Ready::kCopy) {
        const Part part = CopyPart(task);
        BlurPart(part, memory,
                 plane + (part.rows.begin - copy_.y.begin) * copyPitch_ + (part.columns.begin - copy_.x.begin),
                 copyPitch_);
        return;
    }
    // The columns of one chunk in the rows of one tile.
    const int tile = task / Chunks();
    const int chunk = task % Chunks();
    float* out = plane + pitch_ * tile * kTileRows + ptrdiff_t{chunk} * kChunkColumns;
    CurrentKernels().blurColumns(sample_->source->Tile(FirstTile() + tile), across_[static_cast<size_t>(chunk)].View(),
                                 kTileRows, out, pitch_);
}

NarrowSample::Part NarrowSample::CopyPart(int task) const {
    const int across = DivideUp(copy_.x.Size(), kCopyColumns);
    const int x = copy_.x.begin + task % across * kCopyColumns;
    const int y = copy_.y.begin + task / across * kCopyRows;
    Part part;
    part.columns = {x, std::min(x + kCopyColumns, copy_.x.end)};
    part.rows = {y, std::min(y + kCopyRows, copy_.y.end)};
    part.firstBlock = (y - copy_.y.begin) / kTapOutputs;
    part.blocks = DivideUp(part.rows.Size(), kTapOutputs);
    return part;
}

bool NarrowSample::FindPart(const Region& out, Part* part) const {
    const Stretch stretch(sample_->plan->place.y);
    const auto above = TexelAt(stretch.At(out.y.begin));
    const auto below = TexelAt(stretch.At(out.y.end - 1)) + 1;
    const Range rows = {static_cast<int>(std::max<int64_t>(above, copy_.y.begin)),
                        static_cast<int>(std::min<int64_t>(below + 1, copy_.y.end))};
    if (rows.Empty()) return false;
    part->firstBlock = (rows.begin - copy_.y.begin) / kTapOutputs;
    part->blocks = DivideUp(rows.end - copy_.y.begin, kTapOutputs) - part->firstBlock;
    part->rows = {copy_.y.begin + part->firstBlock * kTapOutputs, rows.end};

    const int placedBegin = sample_->plan->regions.placed.x.begin;
    const auto first = static_cast<size_t>(out.x.begin - placedBegin);
    const auto last = static_cast<size_t>(out.x.end - 1 - placedBegin);
    const Range columns = Intersect({copy_.x.begin - 1 + texels_[first], copy_.x.begin + texels_[last] + 1}, copy_.x);
    if (columns.Empty()) return false;
    const int block = (columns.begin - copy_.x.begin) / kTapOutputs;
    part->columns = {copy_.x.begin + block * kTapOutputs, columns.end};
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
    return {read.begin / kRowStep * kRowStep, DivideUp(read.end, kRowStep) * kRowStep};
}

// Rows of the plane, counted from its first, for the columns of a part.
void NarrowSample::BlurPartAcross(const Part& part, Range rows, float* out) const {
    const CpuKernels& kernels = CurrentKernels();
    const int firstBlock = (part.columns.begin - copy_.x.begin) / kTapOutputs;
    const int lastBlock = DivideUp(part.columns.end - copy_.x.begin, kTapOutputs);
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

// Both blurs of a part, the one across in the worker's memory.
void NarrowSample::BlurPart(const Part& part, NarrowMemory& memory, float* out, ptrdiff_t outPitch) const {
    const Range rows = RowsRead(part.firstBlock, part.blocks);
    float* across = memory.across.Reserve(static_cast<size_t>(pitch_) * static_cast<size_t>(rows.Size()) + kSlack);
    BlurPartAcross(part, rows, across);
    TapBlocks taps = down_.View();
    taps.base = static_cast<int32_t>(rows.begin * pitch_);
    CurrentKernels().blurRows(across, taps, part.firstBlock, part.firstBlock + part.blocks, part.columns.Size(), out,
                              outPitch);
}

void NarrowSample::Place(const Region& patch, const float* plane, NarrowMemory& memory, uint16_t* accumulated,
                         int width) const {
    const Region& placed = sample_->plan->regions.placed;
    const Region out = {Intersect(patch.x, placed.x), Intersect(patch.y, placed.y)};
    Part part;
    if (out.Empty() || !FindPart(out, &part)) return;
    if (HasCopy()) {
        const float* rows =
            plane + (part.rows.begin - copy_.y.begin) * copyPitch_ + (part.columns.begin - copy_.x.begin);
        return PlaceRows(part, out, rows, copyPitch_, memory, accumulated, width);
    }
    const ptrdiff_t pitch = PitchFor(part.columns.Size());
    const auto rowCount = static_cast<size_t>(part.blocks) * kTapOutputs;
    float* rows = memory.down.Reserve(static_cast<size_t>(pitch) * rowCount + kSlack);
    if (ready_ == Ready::kNothing) {
        BlurPart(part, memory, rows, pitch);
    } else {
        CurrentKernels().blurRows(plane + (part.columns.begin - copy_.x.begin), down_.View(), part.firstBlock,
                                  part.firstBlock + part.blocks, part.columns.Size(), rows, pitch);
    }
    PlaceRows(part, out, rows, pitch, memory, accumulated, width);
}

void NarrowSample::PlaceRows(const Part& part, const Region& out, const float* rows, ptrdiff_t pitch,
                             NarrowMemory& memory, uint16_t* accumulated, int width) const {
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

    const auto first = static_cast<size_t>(out.x.begin - sample_->plan->regions.placed.x.begin);
    const PlaceColumns place{&texels_[first], &fractions_[first], out.x.Size(), gentle_,
                             part.columns.begin - copy_.x.begin};
    for (int pixel = out.y.begin; pixel < out.y.end; ++pixel) {
        const double at = stretch.At(pixel);
        const auto texel = TexelAt(at);
        // Further out there are mirror images of the copy, which the output does not show.
        if (texel < copy_.y.begin - 1) continue;
        if (texel >= copy_.y.end) break;
        kernels.mixRows(rowOf(texel), rowOf(texel + 1), static_cast<float>(at - static_cast<double>(texel)), columns,
                        mixed);
        // Beyond the copy's edge lies its mirror image; beyond what is not 0, nothing.
        if (part.columns.begin == copy_.x.begin) mixed[-1] = copy_.x.begin == 0 ? mixed[0] : 0;
        if (part.columns.end == copy_.x.end) mixed[columns] = copy_.x.end == copy.x.texels ? mixed[columns - 1] : 0;
        kernels.placeRow(mixed - 1, place, accumulated + static_cast<ptrdiff_t>(pixel) * width + out.x.begin);
    }
}

}  // namespace umbrant::effect
