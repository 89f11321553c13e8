// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The rule by which samples are decimated.

#include "cpu/coarse/decimation.h"

#include <gtest/gtest.h>

#include <vector>

namespace umbrant::effect {

namespace {

DecimationCase Sample(double reach, double stride, double opacity = 0.3, int texels = 1000) {
    return {opacity, {reach, stride, texels}, {reach, stride, texels}, reach * texels * texels};
}

TEST(DecimationRule, NarrowBlursAndThoseAcrossTheirWholeBufferStayExact) {
    EXPECT_FALSE(GridsFor(Sample(13.9, 1)).IsWide());
    EXPECT_FALSE(GridsFor(Sample(20.4, 1)).IsWide()) << "its rows cannot be thinned by two";
    EXPECT_TRUE(GridsFor(Sample(20.5, 1)).IsWide());
    EXPECT_FALSE(GridsFor(Sample(120, 1, 0.3, 120)).IsWide());
    EXPECT_FALSE(GridsFor(Sample(0, 1)).IsWide());
    DecimationCase one = Sample(100, 1);
    one.across.reach = 10;
    EXPECT_FALSE(GridsFor(one).IsWide()) << "both axes must be wide";
}

// Sigma is 0.245 of the reach: at least 2.5 places of the grid down, 1.6 across.
TEST(DecimationRule, GridsGrowWithTheReach) {
    struct Row {
        double reach;
        int columns;
        int level;
    };
    for (const Row& row : {Row{20.5, 3, 1}, {40.8, 6, 1}, {40.9, 6, 2}, {81.7, 12, 3}, {163.4, 25, 4}, {300, 32, 4}}) {
        const Decimation grids = GridsFor(Sample(row.reach, 1));
        EXPECT_EQ(grids.columns, row.columns) << row.reach;
        EXPECT_EQ(grids.level, row.level) << row.reach;
    }
}

// A grid sees the taps' beat against the texels: columns are at most 0.03 / |1 - stride|.
TEST(DecimationRule, UnevenTapsBoundTheColumns) {
    EXPECT_EQ(GridsFor(Sample(124, 0.991)).columns, 3);
    EXPECT_EQ(GridsFor(Sample(124, 1.009)).columns, 3);
    EXPECT_EQ(GridsFor(Sample(124, 0.95)).columns, 1);
    EXPECT_TRUE(GridsFor(Sample(124, 0.95)).IsWide()) << "rows alone";
}

TEST(DecimationRule, ErrorsArePredictedFromTheGridAndTheTaps) {
    const DecimationCase even = Sample(124, 1, 1);
    const PredictedError floor = PredictError(even, {18, 3});
    EXPECT_DOUBLE_EQ(floor.most, 2.3 + 0.5) << "sigma is 1.69 places across and 3.8 down";
    EXPECT_DOUBLE_EQ(floor.mean, 0.29 + 0.08);
    const DecimationCase uneven = Sample(124, 0.99, 1);
    const double copy = 65535 * 0.01 * 1.63 / 124;
    EXPECT_NEAR(PredictError(uneven, {18, 3}).most, floor.most + 1.5 * copy, 1e-9) << "down, and spread across";
    EXPECT_NEAR(PredictError(uneven, {1, 3}).most, 0.5 + copy, 1e-9) << "nothing is decimated across";
    EXPECT_NEAR(PredictError(Sample(124, 0.99, 0.25), {18, 3}).most, (floor.most + 1.5 * copy) / 4, 1e-9);
    EXPECT_EQ(PredictError(even, {}).most, 0);
}

TEST(DecimationRule, TheSumsOfErrorsKeepTheBounds) {
    std::vector<DecimationCase> samples;
    for (int i = 0; i < 36; ++i) samples.push_back(Sample(15 + 3.1 * i, 1 - 0.05 * (i % 7) / (15 + i), 0.4));
    const std::vector<Decimation> grids = ChooseDecimation(samples);
    PredictedError sum;
    int wide = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const PredictedError error = PredictError(samples[i], grids[i]);
        sum.most += error.most;
        sum.mean += error.mean;
        wide += grids[i].IsWide() ? 1 : 0;
    }
    EXPECT_LE(sum.most, 1.5 * 36 / (0.5 + 0.5 * 8 / 36));
    EXPECT_LE(sum.mean, 2.57);
    EXPECT_GT(wide, 5);
    EXPECT_LT(wide, 36) << "the sums would go beyond";
}

TEST(DecimationRule, AStackOfFewOpaqueSamplesIsExactRatherThanWrong) {
    const std::vector<Decimation> grids = ChooseDecimation({Sample(20, 0.95, 1), Sample(21, 0.95, 1)});
    EXPECT_FALSE(grids[0].IsWide());
    EXPECT_FALSE(grids[1].IsWide());
    EXPECT_TRUE(ChooseDecimation({}).empty());
}

}  // namespace

}  // namespace umbrant::effect
