// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The splines' properties, and one axis of a decimated blur against the exact sum over its taps.

#include "cpu/coarse/spline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace umbrant::effect {

namespace {

TEST(Splines, AddUpToOneAtEveryPlaceAndEndAtTheirSupport) {
    for (double x = 0; x < 1; x += 0.0625) {
        double cubic = 0;
        double quintic = 0;
        for (int i = -4; i <= 4; ++i) {
            cubic += CubicSpline(x - i);
            quintic += QuinticSpline(x - i);
        }
        EXPECT_NEAR(cubic, 1, 1e-12) << x;
        EXPECT_NEAR(quintic, 1, 1e-12) << x;
    }
    EXPECT_NEAR(CubicSpline(0), 2.0 / 3, 1e-12);
    EXPECT_NEAR(CubicSpline(-1), 1.0 / 6, 1e-12);
    EXPECT_NEAR(QuinticSpline(0), 66.0 / 120, 1e-12);
    EXPECT_NEAR(QuinticSpline(1), 26.0 / 120, 1e-12);
    EXPECT_NEAR(QuinticSpline(-2), 1.0 / 120, 1e-12);
    EXPECT_EQ(CubicSpline(2), 0);
    EXPECT_EQ(QuinticSpline(-3), 0);
}

TEST(Splines, ThinningWeighsAllInputsAlike) {
    const auto first = FirstThinning();
    double even = 0;
    double odd = 0;
    for (size_t i = 0; i < first.size(); ++i) (i % 2 ? odd : even) += static_cast<double>(first[i]);
    EXPECT_NEAR(even, 0.5, 1e-6);
    EXPECT_NEAR(odd, 0.5, 1e-6);
    EXPECT_EQ(kNextThinning[3], 20 / 64.0f);
    EXPECT_EQ(kNextThinning[0] + kNextThinning[2] + kNextThinning[4] + kNextThinning[6], 0.5f);
}

// Thinned twice by two, or once by four with the wider spline: the two-scale relation.
TEST(Splines, TheNextThinningIsExact) {
    const auto first = FirstThinning();
    for (int i = -11; i <= 11; ++i) {
        double twice = 0;
        for (int k = -3; k <= 3; ++k) {
            const int at = i - 2 * k;
            if (at < -5 || at > 5) continue;
            twice += static_cast<double>(kNextThinning[static_cast<size_t>(k + 3)]) *
                     static_cast<double>(first[static_cast<size_t>(at + 5)]);
        }
        EXPECT_NEAR(twice, QuinticSpline(i / 4.0) / 4, 1e-7) << i;
    }
}

TEST(Splines, TheFilterMakesASplineThroughTheValues) {
    const auto& filter = QuinticFilter();
    double sum = 0;
    for (const float weight : filter) sum += static_cast<double>(weight);
    EXPECT_NEAR(sum, 1, 1e-6);
    // The spectrum of filter and spline together, up to a frequency that a blurred copy still has a hundredth of.
    for (double frequency = 0; frequency <= 0.25; frequency += 0.01) {
        double gain = 0;
        for (int i = -6; i <= 6; ++i) {
            gain +=
                static_cast<double>(filter[static_cast<size_t>(i + 6)]) * std::cos(6.283185307179586 * frequency * i);
        }
        const double spline =
            (66 + 52 * std::cos(6.283185307179586 * frequency) + 2 * std::cos(2 * 6.283185307179586 * frequency)) / 120;
        EXPECT_NEAR(gain * spline, 1, 3e-4) << frequency;
    }
}

/// Runs of nothing and full alpha, in units.
std::vector<double> Runs(int count, int longest) {
    std::mt19937 engine(3);
    std::vector<double> values(static_cast<size_t>(count));
    int left = 0;
    double value = 0;
    for (double& each : values) {
        if (left-- <= 0) {
            left = static_cast<int>(engine() % static_cast<unsigned>(longest));
            value = engine() % 2 ? 65535 : 0;
        }
        each = value;
    }
    return values;
}

struct AxisCase {
    int steps;
    double stride;
    int level;
    double most;  ///< units at opacity 1
    double mean;
};

class CoarseAxis : public testing::TestWithParam<AxisCase> {};

// The bounds are a little above what was measured: the floor of even taps where the stride is 1, and the faint copy of
// uneven taps else.
TEST_P(CoarseAxis, IsNearTheExactBlur) {
    const AxisCase& c = GetParam();
    const Kernel kernel = MakeKernel(c.steps, c.stride, 1);
    constexpr int kCount = 4096;
    const std::vector<double> source = Runs(kCount, 60);
    std::vector<double> coefficients = source;
    for (int level = 1; level <= c.level; ++level) {
        const auto first = FirstThinning();
        const bool isFirst = level == 1;
        const int half = isFirst ? 5 : 3;
        std::vector<double> next(coefficients.size() / 2, 0.0);
        for (size_t j = 5; j + 5 < next.size(); ++j) {
            for (int i = -half; i <= half; ++i) {
                const float weight =
                    isFirst ? first[static_cast<size_t>(i + 5)] : kNextThinning[static_cast<size_t>(i + 3)];
                next[j] += static_cast<double>(weight) * coefficients[static_cast<size_t>(static_cast<int>(2 * j) + i)];
            }
        }
        coefficients = next;
    }
    const int grid = 1 << c.level;
    const std::vector<float> blur = CoarseKernel(kernel, grid);
    const int half = static_cast<int>(blur.size() / 2);
    double sum = 0;
    for (const float weight : blur) sum += static_cast<double>(weight);
    EXPECT_NEAR(sum, 1, 1e-5);

    double worst = 0;
    double total = 0;
    int counted = 0;
    for (int at = 1000; at < kCount - 1000; ++at) {
        double exact = 0;
        for (int i = -kernel.steps; i <= kernel.steps; ++i) {
            const double place = at + i * kernel.stride;
            const auto texel = static_cast<size_t>(place);
            const double fraction = place - static_cast<double>(texel);
            exact += kernel.weights[static_cast<size_t>(i + kernel.steps)] *
                     (source[texel] + fraction * (source[texel + 1] - source[texel]));
        }
        double value = 0;
        for (int k = at / grid - 1; k <= at / grid + 2; ++k) {
            double coefficient = 0;
            for (int i = -half; i <= half; ++i) {
                coefficient +=
                    static_cast<double>(blur[static_cast<size_t>(i + half)]) * coefficients[static_cast<size_t>(k + i)];
            }
            value += coefficient * CubicSpline(static_cast<double>(at) / grid - k);
        }
        worst = std::max(worst, std::abs(value - exact));
        total += std::abs(value - exact);
        ++counted;
    }
    EXPECT_LE(worst, c.most);
    EXPECT_LE(total / counted, c.mean);
    EXPECT_GT(worst, 0) << "something was decimated";
}

INSTANTIATE_TEST_SUITE_P(All, CoarseAxis,
                         testing::Values(AxisCase{20, 1, 1, 4, 0.6}, AxisCase{48, 1, 2, 2, 0.3},
                                         AxisCase{100, 1, 3, 1.5, 0.35}, AxisCase{124, 1, 3, 1, 0.2},
                                         AxisCase{250, 1, 4, 1, 0.2}, AxisCase{49, 48.3 / 49, 2, 30, 1.6},
                                         AxisCase{125, 124.01 / 125, 3, 6, 0.7}),
                         [](const auto& row) {
                             return "Steps" + std::to_string(row.param.steps) + (row.param.stride == 1 ? "" : "Uneven");
                         });

}  // namespace

}  // namespace umbrant::effect
