// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/coarse/wide_sample.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "cpu/coarse/spline.h"
#include "cpu/pitch.h"
#include "cpu/stack_drawer.h"

namespace umbrant::effect {

namespace {

constexpr int kChunkColumns = 32;
// Columns beyond those that are evaluated which the quintic filter reads.
constexpr int kFilterReach = 6;

int FloorDivide(int value, int by) {
    return value >= 0 ? value / by : -((by - 1 - value) / by);
}

/// An output's place in a copy: between two texels, or on the outermost ones, beyond which the copy is mirrored.
struct TexelPlace {
    TexelPlace(double at, int texels) {
        const auto floor = TexelAt(at);
        texel = static_cast<int>(std::clamp<int64_t>(floor, 0, texels - 1));
        fraction = floor < 0 || floor >= texels - 1 ? 0 : at - static_cast<double>(floor);
    }
    int texel;
    double fraction;
};

/// Coefficients of the blurred copy along y.
Range CopyRows(const StackSample& sample) {
    const Placement& place = sample.plan->place.y;
    const Range& out = sample.plan->regions.placed.y;
    const int grid = sample.decimation.Rows();
    const Stretch stretch(place);
    return {FloorDivide(TexelPlace(stretch.At(out.begin), place.texels).texel, grid) - 1,
            FloorDivide(TexelPlace(stretch.At(out.end - 1), place.texels).texel, grid) + 3};
}

/// Coefficients of the level that they are made from, in whole blocks.
Range LevelRows(const StackSample& sample, Range copy) {
    const int reach = CoarseReach(sample.downKernel, sample.decimation.Rows());
    return {copy.begin - reach, copy.begin + DivideUp(copy.Size(), kTapOutputs) * kTapOutputs + reach};
}

/// A spline's values at the texels of one place of its grid, and at the first of the next.
template <int kSpan>
class SplineValues {
 public:
    SplineValues(int grid, double (*spline)(double)) : grid_(grid), values_(static_cast<size_t>(grid) + 1) {
        for (int texel = 0; texel <= grid; ++texel) {
            for (int k = 0; k < kSpan; ++k) {
                values_[static_cast<size_t>(texel)][static_cast<size_t>(k)] =
                    spline(static_cast<double>(texel) / grid - (k - kBefore));
            }
        }
    }

    /// The first of the kSpan coefficients between which a texel lies.
    int First(int texel) const { return FloorDivide(texel, grid_) - kBefore; }
    /// Their weights for the linear mix of the values at the place's two texels, `pitch` apart.
    void Weigh(const TexelPlace& place, float* weights, ptrdiff_t pitch) const {
        const auto texel = static_cast<size_t>(place.texel - FloorDivide(place.texel, grid_) * grid_);
        for (size_t k = 0; k < kSpan; ++k) {
            const double here = values_[texel][k];
            const double next = values_[texel + 1][k];
            weights[static_cast<ptrdiff_t>(k) * pitch] = static_cast<float>(here + place.fraction * (next - here));
        }
    }

 private:
    static constexpr int kBefore = kSpan / 2 - 1;
    int grid_;
    std::vector<std::array<double, kSpan>> values_;
};

}  // namespace

void WideSample::Start(const StackSample& sample, const PyramidLevel& level) {
    sample_ = &sample;
    level_ = &level;
    const PlacePlan& place = sample.plan->place;
    const Region& out = sample.plan->regions.placed;
    const int columns = sample.decimation.columns;
    const Stretch x(place.x);
    stretched_ = {FloorDivide(TexelPlace(x.At(out.x.begin), place.x.texels).texel, columns) - 2,
                  FloorDivide(TexelPlace(x.At(out.x.end - 1), place.x.texels).texel, columns) + 4};
    coarse_ = {stretched_.begin - kFilterReach, stretched_.end + kFilterReach};
    rows_ = CopyRows(sample);
    const Range read = Intersect(LevelRows(sample, rows_), level.rows);
    firstTile_ = read.Empty() ? 0 : (read.begin - level.rows.begin) / kTileRows;
    tiles_ = read.Empty() ? 0 : DivideUp(read.end - level.rows.begin, kTileRows) - firstTile_;
    pitch_ = PitchFor(coarse_.Size());
    across_.resize(std::max(across_.size(), static_cast<size_t>(Chunks())));
}

Range WideSample::RowsRead(const StackSample& sample) {
    const int grid = sample.decimation.Rows();
    const int reach = RowPyramid::Reach(sample.decimation.level);
    const Range level = LevelRows(sample, CopyRows(sample));
    return {level.begin * grid - reach, (level.end - 1) * grid + reach + 1};
}

int WideSample::Chunks() const {
    return DivideUp(coarse_.Size(), kChunkColumns);
}

size_t WideSample::PlaneSize() const {
    return static_cast<size_t>(pitch_) * static_cast<size_t>(tiles_) * kTileRows + kSlack;
}

void WideSample::Weigh(int task, TapFolder& folder) {
    if (task == 0) {
        WeighDown();
        WeighColumns();
        WeighRows();
        return;
    }
    const Look& look = sample_->plan->across.x.look;
    const int chunk = task - 1;
    const int begin = coarse_.begin + chunk * kChunkColumns;
    const int end = std::min(begin + kChunkColumns, coarse_.end);
    const Range kept = sample_->source->Columns();
    folder.FoldRange({begin, end}, sample_->decimation.columns, sample_->acrossKernel, look,
                     {{0, look.size}, kept, kept.begin, kTileRows}, &across_[static_cast<size_t>(chunk)]);
}

void WideSample::WeighDown() {
    const std::vector<float> kernel = CoarseKernel(sample_->downKernel, sample_->decimation.Rows());
    const int half = static_cast<int>(kernel.size() / 2);
    const int planeBegin = level_->rows.begin + firstTile_ * kTileRows;
    const Range stored = {planeBegin, std::min(planeBegin + tiles_ * kTileRows, level_->rows.end)};
    down_.Clear();
    for (int row = rows_.begin; row < rows_.end; row += kTapOutputs) {
        down_.AddBlock(kernel, row - half, stored, static_cast<int>(pitch_));
    }
}

void WideSample::WeighColumns() {
    const Stretch stretch(sample_->plan->place.x);
    const Range out = sample_->plan->regions.placed.x;
    const SplineValues<kQuinticSpan> spline(sample_->decimation.columns, QuinticSpline);
    const auto count = static_cast<size_t>(out.Size());
    texels_.resize(count);
    weights_.resize(count * kQuinticSpan);
    gentle_ = true;
    for (size_t i = 0; i < count; ++i) {
        const TexelPlace place(stretch.At(out.begin + static_cast<int>(i)), sample_->plan->place.x.texels);
        texels_[i] = spline.First(place.texel) - stretched_.begin;
        spline.Weigh(place, &weights_[i], static_cast<ptrdiff_t>(count));
        if (i > 0 && texels_[i] > texels_[i - 1] + 1) gentle_ = false;
    }
}

void WideSample::WeighRows() {
    const Placement& copy = sample_->plan->place.y;
    const Stretch stretch(copy);
    const Range out = sample_->plan->regions.placed.y;
    const SplineValues<kCubicSpan> spline(sample_->decimation.Rows(), CubicSpline);
    rowWeights_.resize(static_cast<size_t>(out.Size()));
    for (int i = 0; i < out.Size(); ++i) {
        const TexelPlace place(stretch.At(out.begin + i), copy.texels);
        RowWeights& row = rowWeights_[static_cast<size_t>(i)];
        row.first = spline.First(place.texel) - rows_.begin;
        spline.Weigh(place, row.weights, 1);
    }
}

const WideSample::RowWeights& WideSample::Row(int pixel) const {
    return rowWeights_[static_cast<size_t>(pixel - sample_->plan->regions.placed.y.begin)];
}

void WideSample::BlurAcross(int task, float* plane) const {
    const int tile = task / Chunks();
    const int chunk = task % Chunks();
    CurrentKernels().sumColumns(level_->Tile(firstTile_ + tile), across_[static_cast<size_t>(chunk)].View(), kTileRows,
                                plane + pitch_ * tile * kTileRows + ptrdiff_t{chunk} * kChunkColumns, pitch_);
}

void WideSample::Place(const Region& patch, const float* plane, WideMemory& memory, uint16_t* accumulated,
                       int width) const {
    const CpuKernels& kernels = CurrentKernels();
    const Region& placed = sample_->plan->regions.placed;
    const Region out = {Intersect(patch.x, placed.x), Intersect(patch.y, placed.y)};
    if (out.Empty()) return;
    const auto firstPixel = static_cast<size_t>(out.x.begin - placed.x.begin);
    const auto lastPixel = static_cast<size_t>(out.x.end - 1 - placed.x.begin);
    // Coefficients along x, from stretched_.begin on; the filter reads more of the plane.
    const Range used = {texels_[firstPixel], texels_[lastPixel] + kQuinticSpan};
    const int read = used.Size() + 2 * kFilterReach;
    const ptrdiff_t pitch = PitchFor(read);

    const int firstBlock = Row(out.y.begin).first / kTapOutputs;
    const int lastBlock = DivideUp(Row(out.y.end - 1).first + kCubicSpan, kTapOutputs);
    const int count = (lastBlock - firstBlock) * kTapOutputs;
    float* sums = memory.sums.Reserve(static_cast<size_t>(pitch) * static_cast<size_t>(count) + kSlack);
    kernels.sumRows(plane + used.begin, down_.View(), firstBlock, lastBlock, read, sums, pitch);

    const ptrdiff_t stretchedPitch = ptrdiff_t{DivideUp(out.x.Size(), kSlack) + 1} * kSlack;
    float* filtered = memory.filtered.Reserve(static_cast<size_t>(pitch) + 2 * size_t{kSlack});
    float* stretched =
        memory.stretched.Reserve(static_cast<size_t>(stretchedPitch) * static_cast<size_t>(count) + kSlack);
    const auto& filter = QuinticFilter();
    const SplineColumns columns{
        &texels_[firstPixel], &weights_[firstPixel], placed.x.Size(), out.x.Size(), gentle_, used.begin};
    for (int row = 0; row < count; ++row) {
        kernels.filterRow(sums + row * pitch, filter.data(), static_cast<int>(filter.size()), used.Size(), filtered);
        kernels.stretchSpline(filtered, columns, stretched + row * stretchedPitch);
    }
    for (int pixel = out.y.begin; pixel < out.y.end; ++pixel) {
        const RowWeights& row = Row(pixel);
        const float* rows[kCubicSpan];
        for (int k = 0; k < kCubicSpan; ++k) {
            rows[k] = stretched + (row.first - firstBlock * kTapOutputs + k) * stretchedPitch;
        }
        kernels.placeSpline(rows, row.weights, out.x.Size(),
                            accumulated + static_cast<ptrdiff_t>(pixel) * width + out.x.begin);
    }
}

}  // namespace umbrant::effect
