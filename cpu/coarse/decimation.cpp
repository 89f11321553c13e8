// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/coarse/decimation.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <numeric>

namespace umbrant::effect {

namespace {

// The kernel is a Gaussian, cut at its reach: its sigma is this share of the reach.
constexpr double kSigmaOfReach = 0.245;
// Below this the paths of coarse grids cost as much as the exact one, and errors are large.
constexpr double kLeastReach = 14;
constexpr int kMostColumns = 32;
constexpr int kMostLevel = 4;
// Sigma in places of the grid, at least.
constexpr double kLeastAcross = 1.6;
constexpr double kLeastDown = 2.5;
// The beat of the taps against the texels must be slow on the grid.
constexpr double kMostBeat = 0.03;

constexpr double kMostErrorOfSample = 1.5;
// One step of 8 bits is 257 units: a mean error of m units moves a share of m / 257 of the pixels, of which 1 % may.
constexpr double kMostMeanOfStack = 2.57;
constexpr double kFewSamples = 8;

/// The error of a decimated blur along one axis at opacity 1, by sigma in places of the grid: the worst of hard runs,
/// edges, noise, stripes and strokes, computed in double precision with even taps.
struct GridError {
    double sigma;  ///< from this on
    PredictedError across;
    PredictedError down;
};
constexpr GridError kGridErrors[] = {
    {0.0, {1207, 124}, {1772, 259}},  {1.0, {25, 2.8}, {152, 14}},      {1.25, {14, 1.6}, {99, 10}},
    {1.5, {2.3, 0.29}, {26, 2.6}},    {1.75, {1.3, 0.14}, {9.6, 1.1}},  {2.0, {1.2, 0.12}, {6, 0.7}},
    {2.25, {1.0, 0.1}, {3.5, 0.43}},  {2.5, {0.95, 0.1}, {2.5, 0.28}},  {2.75, {0.9, 0.1}, {1.6, 0.16}},
    {3.25, {0.8, 0.09}, {1.2, 0.11}}, {3.75, {0.9, 0.09}, {0.5, 0.08}}, {4.5, {0.7, 0.08}, {0.45, 0.05}},
    {6.0, {0.7, 0.09}, {0.3, 0.04}},
};

const GridError& ErrorAt(double sigma) {
    const auto* after = std::find_if(std::begin(kGridErrors) + 1, std::end(kGridErrors),
                                     [&](const GridError& row) { return row.sigma > sigma; });
    return *(after - 1);
}

/// Taps that are not a texel apart leave a faint copy of the source that no smooth kernel has. Its height at a thin
/// line: half of it shows at a hard edge.
double UnevenTaps(const BlurReach& blur) {
    return 65535 * std::abs(1 - blur.stride) * 1.63 / blur.reach;
}

std::atomic<bool>& Exactly() {
    static std::atomic<bool> exactly = [] {
        const char* wanted = std::getenv("UMBRANT_CPU_EXACT");
        return wanted && std::strcmp(wanted, "1") == 0;
    }();
    return exactly;
}

}  // namespace

bool DrawsExactly() {
    return Exactly();
}

void SetDrawsExactly(bool exactly) {
    Exactly() = exactly;
}

Decimation GridsFor(const DecimationCase& sample) {
    const double reach = std::min(sample.across.reach, sample.down.reach);
    if (!(reach >= kLeastReach) || sample.across.reach >= sample.across.texels ||
        sample.down.reach >= sample.down.texels) {
        return {};
    }
    Decimation grids;
    while (grids.level < kMostLevel && kSigmaOfReach * sample.down.reach / (2 << grids.level) >= kLeastDown) {
        ++grids.level;
    }
    if (!grids.IsWide()) return {};
    const double beat = std::max(std::abs(1 - sample.across.stride), 1e-6);
    const double columns = std::min(kSigmaOfReach * sample.across.reach / kLeastAcross, kMostBeat / beat);
    grids.columns = static_cast<int>(std::clamp(columns, 1.0, static_cast<double>(kMostColumns)));
    return grids;
}

PredictedError PredictError(const DecimationCase& sample, const Decimation& grids) {
    if (!grids.IsWide()) return {};
    PredictedError error = ErrorAt(kSigmaOfReach * sample.down.reach / grids.Rows()).down;
    error.most += UnevenTaps(sample.down);
    // Their mean, measured: a hard edge every 30 texels or so.
    error.mean += UnevenTaps(sample.down) / 40;
    if (grids.columns > 1) {
        // The same copy, spread: a tap meets a texel at another place in each column.
        error.most += UnevenTaps(sample.across) / 2;
        error.mean += UnevenTaps(sample.across) / 80;
        const PredictedError across = ErrorAt(kSigmaOfReach * sample.across.reach / grids.columns).across;
        error.most += across.most;
        error.mean += across.mean;
    }
    return {sample.opacity * error.most, sample.opacity * error.mean};
}

std::vector<Decimation> ChooseDecimation(const std::vector<DecimationCase>& samples) {
    std::vector<Decimation> grids;
    std::vector<PredictedError> errors;
    for (const DecimationCase& sample : samples) {
        grids.push_back(GridsFor(sample));
        errors.push_back(PredictError(sample, grids.back()));
    }
    std::vector<size_t> order(samples.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return samples[a].work * errors[b].most > samples[b].work * errors[a].most;
    });
    // The largest errors of a few samples may meet in one pixel; those of many do not.
    const auto count = static_cast<double>(samples.size());
    const double most = kMostErrorOfSample * count / (0.5 + 0.5 * std::min(1.0, kFewSamples / count));
    PredictedError sum;
    for (const size_t index : order) {
        if (!grids[index].IsWide()) continue;
        const PredictedError with{sum.most + errors[index].most, sum.mean + errors[index].mean};
        if (with.most > most || with.mean > kMostMeanOfStack) {
            grids[index] = {};
        } else {
            sum = with;
        }
    }
    return grids;
}

}  // namespace umbrant::effect
