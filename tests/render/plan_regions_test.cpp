// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Bounds of layers, and how far a pass carries them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "render/alpha_regions.h"
#include "render/plan_parts.h"
#include "render/work_extent.h"
#include "tests/support/test_world.h"

namespace {

void ExpectRegion(const Region& region, int left, int top, int right, int bottom) {
    EXPECT_EQ(region.x.begin, left);
    EXPECT_EQ(region.y.begin, top);
    EXPECT_EQ(region.x.end, right);
    EXPECT_EQ(region.y.end, bottom);
}

TEST(FindAlpha, HoldsEveryPixelThatIsNotZero) {
    TestWorld world(90, 40, sizeof(PF_Pixel));
    const auto clear = [&] {
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 90; ++x) world.At8(x, y) = {0, 1, 2, 3};
        }
    };
    clear();
    EXPECT_TRUE(FindAlpha(world.world, 8).Empty());
    world.At8(70, 7) = {1, 0, 0, 0};
    ExpectRegion(FindAlpha(world.world, 8), 70, 7, 71, 8);
    world.At8(3, 20) = {255, 0, 0, 0};
    ExpectRegion(FindAlpha(world.world, 8), 3, 7, 71, 21);
    world.At8(0, 39) = world.At8(89, 0) = {9, 0, 0, 0};
    ExpectRegion(FindAlpha(world.world, 8), 0, 0, 90, 40);
    clear();
    SetWorksEverywhere(true);
    ExpectRegion(FindAlpha(world.world, 8), 0, 0, 90, 40);
    SetWorksEverywhere(false);
}

TEST(FindAlpha, CountsWhatIsNoNumberAndBelowZero) {
    TestWorld world(10, 10, sizeof(PF_PixelFloat));
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) world.AtFloat(x, y) = {y < 5 ? 0.0f : -0.0f, 1, 1, 1};
    }
    EXPECT_TRUE(FindAlpha(world.world, 32).Empty());
    for (const float value : {-1e-30f, std::numeric_limits<float>::denorm_min(), std::nanf(""), 7.0f}) {
        world.AtFloat(4, 6).alpha = value;
        ExpectRegion(FindAlpha(world.world, 32), 4, 6, 5, 7);
    }
}

TEST(FindHoles, HoldsEveryPixelThatIsNotFull) {
    TestWorld eight(10, 10, sizeof(PF_Pixel));
    TestWorld real(10, 10, sizeof(PF_PixelFloat));
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) {
            eight.At8(x, y) = {255, 0, 0, 0};
            real.AtFloat(x, y) = {x < 5 ? 1.0f : 2.0f, 0, 0, 0};
        }
    }
    EXPECT_TRUE(FindHoles(eight.world, 8).Empty());
    EXPECT_TRUE(FindHoles(real.world, 32).Empty());
    eight.At8(2, 3).alpha = 254;
    ExpectRegion(FindHoles(eight.world, 8), 2, 3, 3, 4);
    for (const float value : {0.999f, -1.0f, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        real.AtFloat(4, 6).alpha = value;
        ExpectRegion(FindHoles(real.world, 32), 4, 6, 5, 7);
    }
}

// Whether output `i` has a tap within one input of any of [begin, end), by trying them.
bool Sees(const PassAxis& axis, const Range& something, double reach, int output) {
    const int inputs = axis.look.size;
    const double covered = static_cast<double>(axis.scale) * inputs;
    const double at = ((output + 0.5) / axis.outputs - 0.5) * covered + inputs / 2.0 - 0.5;
    for (double tap = at - reach; tap <= at + reach + 1e-9; tap += 0.05) {
        for (int side = 0; side < 2; ++side) {
            int input = static_cast<int>(std::floor(tap)) + side;
            if (axis.look.edge == Edge::kClamp) {
                input = std::clamp(input, 0, inputs - 1);
            } else {
                const int period = 2 * inputs;
                input = ((input % period) + period) % period;
                if (input >= inputs) input = period - 1 - input;
            }
            if (input >= something.begin && input < something.end) return true;
        }
    }
    return false;
}

TEST(SeenThrough, HoldsEveryOutputThatATapReaches) {
    const struct {
        const char* name;
        int inputs, outputs;
        double covered;  ///< inputs
        Edge edge;
        Range something;
        double reach;
        int slack;  ///< outputs that may be held though they see nothing, each side
    } rows[] = {
        {"in the middle", 100, 60, 100, Edge::kClamp, {40, 50}, 5, 3},
        {"a padded buffer", 100, 84, 140, Edge::kClamp, {40, 50}, 12.5, 3},
        {"at the clamped edge", 100, 84, 140, Edge::kClamp, {0, 10}, 3, 3},
        {"at the other clamped edge", 100, 84, 140, Edge::kClamp, {95, 100}, 3, 3},
        {"full", 100, 84, 140, Edge::kClamp, {0, 100}, 3, 3},
        {"mirrored near the edge", 50, 50, 50, Edge::kMirror, {1, 4}, 6, 3},
        {"mirrored beyond the middle", 20, 20, 20, Edge::kMirror, {15, 16}, 60, 3},
        {"no reach", 64, 64, 64, Edge::kMirror, {10, 11}, 0, 3},
        {"few outputs", 1000, 7, 1000, Edge::kClamp, {500, 501}, 1, 1},
        {"one input", 1, 9, 9, Edge::kClamp, {0, 1}, 1, 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const PassAxis axis =
            ScaledAxis(row.outputs, static_cast<float>(row.covered / row.inputs), row.inputs, row.edge);
        int first = row.outputs, last = -1;
        for (int i = 0; i < row.outputs; ++i) {
            if (!Sees(axis, row.something, row.reach, i)) continue;
            first = std::min(first, i);
            last = i;
        }
        const Range exact = SeenThrough(axis, row.something, row.reach, Precision::kExact);
        const Range seen = SeenThrough(axis, row.something, row.reach, Precision::kDriver);
        EXPECT_LE(exact.begin, first);
        EXPECT_GT(exact.end, last);
        EXPECT_LE(seen.begin, exact.begin);
        EXPECT_GE(seen.end, exact.end);
        EXPECT_GE(seen.begin, first - row.slack);
        EXPECT_LE(seen.end, last + 1 + row.slack);
    }
    EXPECT_TRUE(SeenThrough(ScaledAxis(10, 1, 10, Edge::kClamp), {}, 100, Precision::kDriver).Empty());
}

}  // namespace
