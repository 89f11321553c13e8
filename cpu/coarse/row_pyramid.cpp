// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/coarse/row_pyramid.h"

#include <algorithm>
#include <array>
#include <vector>

#include "cpu/coarse/spline.h"
#include "cpu/thread_pool.h"

namespace umbrant::effect {

namespace {

// Rows that one tile of coefficients is made from: those of its own places, and the spline's reach on both sides.
constexpr int kMostTaps = 11;
constexpr int kInputs = 2 * kTileRows + kMostTaps - 2;

int HalfDown(int value) {
    return value >> 1;
}

/// Neighbouring inputs whose places are neighbours too: upwards, or downwards in a mirror image.
struct InputRun {
    int first = 0;
    int count = 0;
    ptrdiff_t place = 0;  ///< of the first, in a column
    int step = 1;
};

/// The runs of inputs that do not hold 0.
std::vector<InputRun> RunsOf(const std::array<ptrdiff_t, kInputs>& places, int used) {
    std::vector<InputRun> runs;
    for (int i = 0; i < used; ++i) {
        const ptrdiff_t place = places[static_cast<size_t>(i)];
        if (place < 0) continue;
        InputRun* last = runs.empty() ? nullptr : &runs.back();
        if (last && last->first + last->count == i) {
            const ptrdiff_t step = place - (last->place + ptrdiff_t{last->step} * (last->count - 1));
            if (last->count == 1 && step == -1) last->step = -1;
            if (step == last->step) {
                ++last->count;
                continue;
            }
        }
        runs.push_back({i, 1, place, 1});
    }
    return runs;
}

/// Thins columns of `in` whose inputs are in these runs.
void ThinRuns(const float* in, const std::vector<InputRun>& runs, decltype(CpuKernels::thinByEleven) thin,
              const float* weights, ptrdiff_t columns, float* out) {
    // Inputs outside of the runs stay 0.
    alignas(64) float line[(kInputs / kTileRows + 1) * kTileRows] = {};
    for (ptrdiff_t column = 0; column < columns; ++column) {
        for (const InputRun& run : runs) {
            const float* from = in + run.place + column * kTileRows;
            if (run.step > 0) {
                std::copy_n(from, run.count, line + run.first);
            } else {
                std::reverse_copy(from + 1 - run.count, from + 1, line + run.first);
            }
        }
        thin(line, kTileRows, 0, weights, 1, out + column * kTileRows);
    }
}

/// Which row of the source's tiles row `row` of the pass is, mirrored at the pass's edges; -1 where it is 0.
int StoredRow(const ColumnTiles& source, int64_t row, int rows) {
    const int inside = EdgeIndex(row, rows, Edge::kMirror);
    const int distinct = std::clamp(inside, source.Distinct().begin, source.Distinct().end - 1);
    if (distinct < source.Rows().begin || distinct >= source.Rows().end) return -1;
    return distinct - source.Rows().begin;
}

bool AreNeighbours(const std::array<int, kInputs>& rows, size_t used) {
    if (rows[0] < 0) return false;
    for (size_t i = 1; i < used; ++i) {
        if (rows[i] != rows[0] + static_cast<int>(i)) return false;
    }
    return true;
}

/// `stored` says which row of `in` a row is, or -1 for one that holds 0.
template <size_t kTaps, typename Stored>
void Thin(const float* in, Range inputs, ptrdiff_t columns, const std::array<float, kTaps>& weights,
          const Stored& stored, PyramidLevel& level) {
    constexpr int kReach = static_cast<int>(kTaps) / 2;
    level.columns = columns;
    level.rows = {HalfDown(inputs.begin - kReach + 1), HalfDown(inputs.end - 1 + kReach) + 1};
    const int tiles = level.Tiles();
    const ptrdiff_t pitch = columns * kTileRows;
    float* out = level.values.Reserve(static_cast<size_t>(tiles) * static_cast<size_t>(pitch) + kSlack);
    const auto thinNeighbours = kTaps == kMostTaps ? CurrentKernels().thinByEleven : CurrentKernels().thinBySeven;
    RunTasks(tiles, [&](int tile, int) {
        std::array<int, kInputs> rows{};
        const int first = 2 * (level.rows.begin + tile * kTileRows) - kReach;
        for (int i = 0; i < kInputs; ++i) rows[static_cast<size_t>(i)] = stored(first + i);
        if (AreNeighbours(rows, 2 * size_t{kTileRows} + kTaps - 2)) {
            thinNeighbours(in + rows[0] / kTileRows * pitch, pitch, rows[0] % kTileRows, weights.data(), columns,
                           out + tile * pitch);
            return;
        }
        std::array<ptrdiff_t, kInputs> places{};
        for (size_t i = 0; i < places.size(); ++i) {
            places[i] = rows[i] < 0 ? -1 : rows[i] / kTileRows * pitch + rows[i] % kTileRows;
        }
        const std::vector<InputRun> runs = RunsOf(places, 2 * kTileRows + static_cast<int>(kTaps) - 2);
        ThinRuns(in, runs, thinNeighbours, weights.data(), columns, out + tile * pitch);
    });
}

}  // namespace

int RowPyramid::Reach(int level) {
    // 11 taps, then 7 of twice, four times, ... the distance.
    return 5 + 3 * ((1 << level) - 2);
}

void RowPyramid::Build(const ColumnTiles& source, int rows, Range needed, int levels) {
    if (levels_.size() < static_cast<size_t>(levels)) levels_.resize(static_cast<size_t>(levels));
    // What is not 0 among the rows and their mirror images.
    Range inputs = source.Rows();
    if (inputs.begin == source.Distinct().begin) inputs.begin = 0;
    if (inputs.end == source.Distinct().end) inputs.end = rows;
    const Range filled = inputs;
    if (needed.begin < -filled.begin) inputs.begin = -filled.end;
    if (needed.end > 2 * rows - filled.end) inputs.end = 2 * rows - filled.begin;
    inputs = Intersect(inputs, needed);
    inputs.end = std::max(inputs.begin, inputs.end);
    const ptrdiff_t columns = source.Columns().Size();
    Thin(
        source.Tile(0), inputs, columns, FirstThinning(), [&](int64_t row) { return StoredRow(source, row, rows); },
        levels_[0]);
    for (size_t i = 1; i < static_cast<size_t>(levels); ++i) {
        const PyramidLevel& finer = levels_[i - 1];
        Thin(
            finer.values.Get(), finer.rows, columns, kNextThinning,
            [&](int64_t row) {
                if (row < finer.rows.begin || row >= finer.rows.end) return -1;
                return static_cast<int>(row) - finer.rows.begin;
            },
            levels_[i]);
    }
}

}  // namespace umbrant::effect
