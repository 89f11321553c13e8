// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/coarse/spline.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace umbrant::effect {

namespace {

constexpr double kTwoPi = 6.283185307179586;
// Frequencies up to half a cycle of the coarse grid at which filters are designed, each in the middle of its share.
constexpr int kFrequencies = 512;
// Those that are evaluated together: their recurrences do not wait for each other.
constexpr int kTogether = 8;
static_assert(kFrequencies % kTogether == 0);

constexpr double FrequencyOf(int step) {
    return (step + 0.5) / (2.0 * kFrequencies);
}

double Sinc(double x) {
    const double angle = x * kTwoPi / 2;
    return std::abs(angle) < 1e-9 ? 1 : std::sin(angle) / angle;
}

/// The spectrum of the B-spline of a degree.
double SplineSpectrum(double frequency, int degree) {
    return std::pow(Sinc(frequency), degree + 1);
}

/// From the spectrum of a signal to that of its best approximation's coefficients, in the cubic spline's space.
double Projection(double frequency) {
    double sum = 0;
    for (int alias = -3; alias <= 3; ++alias) {
        const double part = SplineSpectrum(frequency + alias, 3);
        sum += part * part;
    }
    return SplineSpectrum(frequency, 3) / sum;
}

/// 1 up to 0.3 cycles, 0 from 0.45 on.
double Taper(double frequency) {
    constexpr double kBegin = 0.3;
    constexpr double kEnd = 0.45;
    if (frequency <= kBegin) return 1;
    if (frequency >= kEnd) return 0;
    return 0.5 + 0.5 * std::cos(kTwoPi / 2 * (frequency - kBegin) / (kEnd - kBegin));
}

/// What every coarse kernel's spectrum is multiplied with and divided by.
struct KernelDesign {
    KernelDesign() {
        for (int step = 0; step < kFrequencies; ++step) {
            const auto i = static_cast<size_t>(step);
            taper[i] = Taper(FrequencyOf(step));
            projection[i] = Projection(FrequencyOf(step));
            quintic[i] = SplineSpectrum(FrequencyOf(step), 5);
        }
        for (int i = 0; i < kTurns; ++i) cosines[static_cast<size_t>(i)] = std::cos(kTwoPi * i / kTurns);
    }

    /// The cosine of `distance` places at a frequency.
    double Cosine(int step, int distance) const {
        return cosines[static_cast<size_t>((2 * step + 1) * int64_t{distance} % kTurns)];
    }

    static constexpr int kTurns = 4 * kFrequencies;
    std::array<double, kFrequencies> taper{};
    std::array<double, kFrequencies> projection{};
    std::array<double, kFrequencies> quintic{};
    std::array<double, kTurns> cosines{};
};

const KernelDesign& Design() {
    static const KernelDesign design;
    return design;
}

/// A kernel's cosine sums at kTogether frequencies of a grid of every `grid`-th row, by the recurrence of cosines.
void SumCosines(const std::vector<double>& rows, int firstStep, int grid, double (&spectrum)[kTogether]) {
    double turn[kTogether];
    double before[kTogether];
    double now[kTogether];
    for (int i = 0; i < kTogether; ++i) {
        turn[i] = std::cos(kTwoPi * FrequencyOf(firstStep + i) / grid);
        before[i] = 1;
        now[i] = turn[i];
        spectrum[i] = rows[0];
    }
    for (size_t row = 1; row < rows.size(); ++row) {
        const double twice = 2 * rows[row];
        for (int i = 0; i < kTogether; ++i) {
            spectrum[i] += twice * now[i];
            before[i] = std::exchange(now[i], 2 * turn[i] * now[i] - before[i]);
        }
    }
}

/// The weights of whole rows at distances 0, 1, 2, ... that a kernel's taps fold into, with a sum over both sides of 1.
std::vector<double> FoldedHalf(const Kernel& kernel) {
    std::vector<double> rows(static_cast<size_t>(kernel.Reach()) + 3, 0.0);
    double total = 0;
    for (int i = -kernel.steps; i <= kernel.steps; ++i) {
        const double at = i * kernel.stride;
        const double floor = std::floor(at);
        const double weight = kernel.weights[static_cast<size_t>(i + kernel.steps)];
        total += weight;
        const auto add = [&](double row, double share) {
            if (row >= 0) rows[static_cast<size_t>(row)] += weight * share;
        };
        add(floor, 1 - (at - floor));
        add(floor + 1, at - floor);
    }
    for (double& row : rows) row /= total;
    return rows;
}

/// Solves `count` linear equations in place by elimination; the matrix is that of a least-squares fit.
template <size_t kCount>
void Solve(double (&matrix)[kCount][kCount + 1], double (&solution)[kCount]) {
    for (size_t i = 0; i < kCount; ++i) {
        for (size_t row = i + 1; row < kCount; ++row) {
            const double factor = matrix[row][i] / matrix[i][i];
            for (size_t column = i; column <= kCount; ++column) matrix[row][column] -= factor * matrix[i][column];
        }
    }
    for (size_t i = kCount; i-- > 0;) {
        double sum = matrix[i][kCount];
        for (size_t column = i + 1; column < kCount; ++column) sum -= matrix[i][column] * solution[column];
        solution[i] = sum / matrix[i][i];
    }
}

std::array<float, 13> FitQuinticFilter() {
    constexpr size_t kHalf = 7;
    double matrix[kHalf][kHalf + 1] = {};
    for (int step = 0; step < kFrequencies; ++step) {
        const double frequency = FrequencyOf(step);
        const double sampled = (66 + 52 * std::cos(kTwoPi * frequency) + 2 * std::cos(2 * kTwoPi * frequency)) / 120;
        // A blurred copy's own spectrum on the finest grid that is allowed.
        constexpr double kSigma = 1.6;
        const double present = std::exp(-kTwoPi * kTwoPi / 2 * kSigma * kSigma * frequency * frequency) + 1e-4;
        double basis[kHalf];
        for (size_t i = 0; i < kHalf; ++i) {
            basis[i] = (i == 0 ? 1 : 2) * std::cos(kTwoPi * frequency * static_cast<double>(i)) * sampled;
        }
        for (size_t row = 0; row < kHalf; ++row) {
            for (size_t column = 0; column < kHalf; ++column) {
                matrix[row][column] += present * present * basis[row] * basis[column];
            }
            matrix[row][kHalf] += present * present * basis[row];
        }
    }
    double half[kHalf];
    Solve(matrix, half);
    double sum = half[0];
    for (size_t i = 1; i < kHalf; ++i) sum += 2 * half[i];
    std::array<float, 13> weights{};
    for (size_t i = 0; i < kHalf; ++i) {
        weights[6 - i] = weights[6 + i] = static_cast<float>(half[i] / sum);
    }
    return weights;
}

}  // namespace

double CubicSpline(double x) {
    const double a = std::abs(x);
    if (a >= 2) return 0;
    const double b = 2 - a;
    if (a >= 1) return b * b * b / 6;
    return 2.0 / 3 - a * a + a * a * a / 2;
}

double QuinticSpline(double x) {
    const double a = std::abs(x);
    double sum = 0;
    // Truncated powers, from the near end of the support.
    const double signs[] = {1, -6, 15};
    for (int i = 0; i < 3; ++i) {
        const double part = 3 - a - i;
        if (part > 0) sum += signs[i] * part * part * part * part * part;
    }
    return sum / 120;
}

std::array<float, 11> FirstThinning() {
    std::array<float, 11> weights{};
    for (int i = 0; i < 11; ++i) weights[static_cast<size_t>(i)] = static_cast<float>(QuinticSpline((i - 5) / 2.0) / 2);
    return weights;
}

const std::array<float, 13>& QuinticFilter() {
    static const std::array<float, 13> weights = FitQuinticFilter();
    return weights;
}

void CreateSplineTables() {
    QuinticFilter();
    Design();
}

int CoarseReach(const Kernel& kernel, int grid) {
    return static_cast<int>(std::ceil(kernel.Reach() / grid)) + 7;
}

std::vector<float> CoarseKernel(const Kernel& kernel, int grid) {
    const KernelDesign& design = Design();
    const std::vector<double> rows = FoldedHalf(kernel);
    const int half = CoarseReach(kernel, grid);
    std::vector<double> weights(static_cast<size_t>(half) + 1, 0.0);
    for (int first = 0; first < kFrequencies && design.taper[static_cast<size_t>(first)] > 0; first += kTogether) {
        double spectrum[kTogether];
        SumCosines(rows, first, grid, spectrum);
        for (int step = first; step < first + kTogether; ++step) {
            const auto at = static_cast<size_t>(step);
            const double gain = design.taper[at] * spectrum[step - first] * design.projection[at] / design.quintic[at];
            for (int i = 0; i <= half; ++i) {
                weights[static_cast<size_t>(i)] += gain * design.Cosine(step, i) / kFrequencies;
            }
        }
    }
    double sum = weights[0];
    for (int i = 1; i <= half; ++i) sum += 2 * weights[static_cast<size_t>(i)];
    std::vector<float> all(2 * static_cast<size_t>(half) + 1);
    for (int i = -half; i <= half; ++i) {
        all[static_cast<size_t>(i + half)] = static_cast<float>(weights[static_cast<size_t>(std::abs(i))] / sum);
    }
    return all;
}

}  // namespace umbrant::effect
