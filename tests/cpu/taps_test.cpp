// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Folded weights against the taps they stand for.

#include "cpu/taps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace umbrant::effect {

namespace {

TEST(EdgeIndex, ClampsAndMirrors) {
    struct Row {
        int64_t index;
        int clamped, mirrored;
    };
    for (const Row& row :
         {Row{0, 0, 0}, Row{4, 4, 4}, Row{-1, 0, 0}, Row{-2, 0, 1}, Row{5, 4, 4}, Row{6, 4, 3}, Row{-5, 0, 4},
          Row{-6, 0, 4}, Row{9, 4, 0}, Row{10, 4, 0}, Row{-10, 0, 0}, Row{1000000, 4, 0}}) {
        EXPECT_EQ(EdgeIndex(row.index, 5, Edge::kClamp), row.clamped) << row.index;
        EXPECT_EQ(EdgeIndex(row.index, 5, Edge::kMirror), row.mirrored) << row.index;
    }
    EXPECT_EQ(EdgeIndex(-7, 1, Edge::kMirror), 0);
}

TEST(TexelAt, RoundsDownAndEndsFarAwayWithWhatIsNoPlace) {
    EXPECT_EQ(TexelAt(2.75), 2);
    EXPECT_EQ(TexelAt(-0.25), -1);
    EXPECT_EQ(TexelAt(1e300), 1 << 30);
    EXPECT_EQ(TexelAt(-std::numeric_limits<double>::infinity()), -(1 << 30));
    EXPECT_EQ(TexelAt(std::numeric_limits<double>::quiet_NaN()), 1 << 30);
}

TEST(Kernel, WeightsAreTheShadersAndAddUpToTheGain) {
    const Kernel kernel = MakeKernel(4, 0.9, 0.5);
    ASSERT_EQ(kernel.weights.size(), 9u);
    double total = 0;
    for (double weight : kernel.weights) total += weight;
    EXPECT_NEAR(total, 0.5, 1e-12);
    EXPECT_NEAR(kernel.weights[8] / kernel.weights[4], std::exp(-0.5 / 0.06), 1e-15);
    EXPECT_NEAR(kernel.weights[6] / kernel.weights[4], std::exp(-0.5 * 0.25 / 0.06), 1e-15);
    EXPECT_DOUBLE_EQ(kernel.Reach(), 3.6);
}

TEST(Kernel, OneBeyondAllReasonKeepsItsReachAndNotItsSteps) {
    EXPECT_EQ(MakeKernel(65536, 0.5, 1).weights.size(), 131073u);
    const Kernel kernel = MakeKernel(std::numeric_limits<int>::max(), 0.5, 1);
    EXPECT_EQ(kernel.weights.size(), 131073u);
    EXPECT_DOUBLE_EQ(kernel.Reach(), 0.5 * std::numeric_limits<int>::max());
    EXPECT_GT(kernel.weights[65536], kernel.weights[0]);
}

struct FoldCase {
    const char* name;
    int size;
    Edge edge;
    int steps;
    double stride, centre;
};

const FoldCase kFolds[] = {
    {"inside", 60, Edge::kClamp, 5, 1.66, 30.3},
    {"at the left edge", 60, Edge::kClamp, 5, 1.66, 2.1},
    {"at the right edge", 60, Edge::kClamp, 5, 1.66, 58},
    {"outside", 60, Edge::kClamp, 5, 1.66, -40},
    {"mirrored left", 60, Edge::kMirror, 9, 0.98, 3},
    {"mirrored right", 60, Edge::kMirror, 9, 0.98, 57},
    {"longer than the row", 7, Edge::kMirror, 20, 0.9, 3},
    {"one input", 1, Edge::kMirror, 3, 1, 0},
    {"far apart", 60, Edge::kMirror, 3, 5, 30},
    {"on whole places", 60, Edge::kMirror, 3, 1, 30},
};

double Value(int i) {
    return std::sin(i * 1.7) + 2;
}

double Direct(const FoldCase& c, const Kernel& kernel, double centre) {
    double sum = 0;
    for (int i = -c.steps; i <= c.steps; ++i) {
        const double at = centre + i * c.stride;
        const double floor = std::floor(at);
        const auto input = static_cast<int64_t>(floor);
        const double a = Value(EdgeIndex(input, c.size, c.edge));
        const double b = Value(EdgeIndex(input + 1, c.size, c.edge));
        sum += kernel.weights[static_cast<size_t>(i + c.steps)] * (a + (at - floor) * (b - a));
    }
    return sum;
}

TEST(TapFolder, FoldsToTheSumOfTheTaps) {
    for (const FoldCase& c : kFolds) {
        const Kernel kernel = MakeKernel(c.steps, c.stride, 1);
        TapFolder folder;
        folder.Prepare(c.size);
        TapList list;
        // Twice, so that what a flush leaves behind shows.
        for (int block = 0; block < 2; ++block) {
            for (int output = 0; output < kTapOutputs; ++output) {
                folder.Fold(output, c.centre + 0.3 * output, kernel, {0, 1, c.size, c.edge});
            }
            folder.Flush({{0, c.size}, {0, c.size}, 0, 1}, &list);
        }
        ASSERT_EQ(list.Count(), 2);
        const TapBlocks taps = list.View();
        for (int block = 0; block < 2; ++block) {
            for (int output = 0; output < kTapOutputs; ++output) {
                double sum = 0;
                for (int e = taps.starts[block]; e < taps.starts[block + 1]; ++e) {
                    sum += static_cast<double>(taps.weights[kTapOutputs * e + output]) * Value(taps.offsets[e]);
                }
                EXPECT_NEAR(sum, Direct(c, kernel, c.centre + 0.3 * output), 1e-5) << c.name << ", output " << output;
            }
        }
    }
}

TEST(TapFolder, LeavesOutWhatIsNotKeptAndRepeatsWhatIsNotDistinct) {
    const Kernel kernel = MakeKernel(3, 1, 1);
    TapFolder folder;
    folder.Prepare(20);
    TapList list;
    folder.Fold(0, 4, kernel, {0, 1, 20, Edge::kClamp});
    folder.Flush({{3, 20}, {3, 6}, 2, 10}, &list);
    const TapBlocks taps = list.View();
    ASSERT_EQ(taps.starts[1], 3);
    EXPECT_EQ(taps.offsets[0], 10);
    EXPECT_EQ(taps.offsets[2], 30);
    // Inputs 1 to 3 are all like 3.
    EXPECT_NEAR(static_cast<double>(taps.weights[0]), kernel.weights[0] + kernel.weights[1] + kernel.weights[2], 1e-6);
    EXPECT_NEAR(static_cast<double>(taps.weights[kTapOutputs]), kernel.weights[3], 1e-6);
}

}  // namespace

}  // namespace umbrant::effect
