// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Bounds of layers, and how far a pass carries them.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "render/passes/alpha_regions.h"
#include "render/passes/work_extent.h"
#include "render/plan_parts.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

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
bool Sees(const AxisSampling& axis, const Range& something, double reach, int output) {
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
        const AxisSampling axis =
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

void ExpectWithin(const Region& inner, const Region& outer) {
    if (inner.Empty()) return;
    EXPECT_LE(outer.x.begin, inner.x.begin);
    EXPECT_LE(outer.y.begin, inner.y.begin);
    EXPECT_GE(outer.x.end, inner.x.end);
    EXPECT_GE(outer.y.end, inner.y.end);
}

void ExpectHolds(const Range& range, const std::vector<bool>& needed) {
    for (int i = 0; i < static_cast<int>(needed.size()); ++i) {
        EXPECT_TRUE((i >= range.begin && i < range.end) || !needed[static_cast<size_t>(i)]) << i;
    }
}

/// One axis of a sample's last pass, followed pixel by pixel.
struct Followed {
    std::vector<bool> texels;  ///< of the copy: not 0 and mixed by a pixel
    std::vector<bool> pixels;  ///< of the output: those that mix such a texel

    bool Any() const { return std::count(pixels.begin(), pixels.end(), true) > 0; }
};

// `drawn` are the texels that are not 0.
Followed Place(const Placement& place, int size, const std::vector<bool>& drawn) {
    Followed followed{std::vector<bool>(drawn.size()), std::vector<bool>(static_cast<size_t>(size))};
    const Stretch stretch(place);
    for (int pixel = 0; pixel < size; ++pixel) {
        if (pixel + 0.5 < place.start || pixel + 0.5 >= place.start + place.length) continue;
        const int64_t texel = TexelAt(stretch.At(pixel));
        for (const int64_t mixed : {texel, texel + 1}) {
            const auto index = static_cast<size_t>(std::clamp<int64_t>(mixed, 0, place.texels - 1));
            if (drawn[index]) followed.texels[index] = followed.pixels[static_cast<size_t>(pixel)] = true;
        }
    }
    return followed;
}

std::vector<bool> SeenBy(const AxisSampling& axis, const Range& something, double reach) {
    std::vector<bool> seen;
    for (int i = 0; i < axis.outputs; ++i) seen.push_back(Sees(axis, something, reach, i));
    return seen;
}

constexpr int kWidth = 30, kHeight = 26;

// 24 x 20 inputs in a buffer of another size, placed anywhere about an output of kWidth x kHeight. Only clamped passes
// look beyond their inputs without a blur.
SamplePlan RandomPlan(int number, const std::function<double(double, double)>& between) {
    const Edge edge = number % 2 ? Edge::kClamp : Edge::kMirror;
    const double widest = edge == Edge::kClamp ? 1.6 : 1;
    SamplePlan plan;
    plan.across.x = ScaledAxis(8 + number % 20, static_cast<float>(between(0.6, widest)), 24, edge);
    plan.across.y = ScaledAxis(8 + number % 17, static_cast<float>(between(0.6, widest)), 20, edge);
    plan.across.blur = {1, 1, 0, between(0, 6)};
    plan.down = {1, 1, 0, between(0, 6)};
    const auto scale = static_cast<float>(between(0.2, 2));
    plan.place.x = PlaceAxis(scale, static_cast<float>(between(-2, 2)), 1, kWidth, plan.across.x.outputs);
    plan.place.y = PlaceAxis(scale, static_cast<float>(between(-2, 2)), 1, kHeight, plan.across.y.outputs);
    return plan;
}

TEST(RegionsOf, HoldsAllThatIsNotZeroAndShows) {
    std::mt19937 engine(5);
    const auto between = [&](double low, double high) {
        return low + (high - low) * (static_cast<double>(engine()) / 4294967296.0);
    };
    int shown = 0;
    for (int number = 0; number < 300; ++number) {
        SCOPED_TRACE(number);
        const SamplePlan plan = RandomPlan(number, between);
        const int left = static_cast<int>(between(0, 23)), top = static_cast<int>(between(0, 19));
        const Region something = {{left, left + 1 + number % (24 - left)}, {top, top + 1 + number % (20 - top)}};
        const SampleRegions exact = RegionsOf(plan, something, kWidth, kHeight, Precision::kExact);
        const SampleRegions driver = RegionsOf(plan, something, kWidth, kHeight, Precision::kDriver);
        ExpectWithin(exact.across, driver.across);
        ExpectWithin(exact.down, driver.down);
        ExpectWithin(exact.placed, driver.placed);

        const Followed x = Place(plan.place.x, kWidth, SeenBy(plan.across.x, something.x, plan.across.blur.Reach()));
        const std::vector<bool> resized = SeenBy(plan.across.y, something.y, 0);
        const auto first = std::find(resized.begin(), resized.end(), true) - resized.begin();
        const Range rows = {static_cast<int>(first),
                            static_cast<int>(first + std::count(resized.begin(), resized.end(), true))};
        const AxisSampling down = ScaledAxis(plan.across.y.outputs, 1, plan.across.y.outputs, Edge::kMirror);
        const Followed y = Place(plan.place.y, kHeight, SeenBy(down, rows, plan.down.Reach()));
        if (!x.Any() || !y.Any()) continue;
        ++shown;
        ExpectHolds(exact.placed.x, x.pixels);
        ExpectHolds(exact.placed.y, y.pixels);
        ExpectHolds(exact.across.x, x.texels);
        ExpectHolds(exact.down.x, x.texels);
        ExpectHolds(exact.down.y, y.texels);
        std::vector<bool> read(y.texels.size());
        for (int row = rows.begin; row < rows.end; ++row) {
            for (int i = 0; i < down.outputs; ++i) {
                if (y.texels[static_cast<size_t>(i)] && Sees(down, {row, row + 1}, plan.down.Reach(), i)) {
                    read[static_cast<size_t>(row)] = true;
                }
            }
        }
        ExpectHolds(exact.across.y, read);
    }
    EXPECT_GT(shown, 100) << "else the test proves nothing";
}

TEST(RegionsOf, IsEmptyBesideTheOutputAndForACopyWithoutExtent) {
    SamplePlan plan;
    plan.across.x = plan.across.y = ScaledAxis(10, 1, 10, Edge::kClamp);
    const Region something = {{0, 10}, {0, 10}};
    const struct { float scale, translation; } rows[] = {{1, 3}, {1, -3}, {0, 0}, {-1, 0}, {std::nanf(""), 0}};
    for (const auto& row : rows) {
        plan.place.x = plan.place.y = PlaceAxis(row.scale, row.translation, 1, 10, 10);
        EXPECT_TRUE(RegionsOf(plan, something, 10, 10, Precision::kDriver).Empty()) << row.scale << row.translation;
    }
    plan.place.x = plan.place.y = PlaceAxis(1, 0, 1, 10, 10);
    EXPECT_FALSE(RegionsOf(plan, something, 10, 10, Precision::kExact).Empty());
    EXPECT_TRUE(RegionsOf(plan, {}, 10, 10, Precision::kExact).Empty());
}

}  // namespace

}  // namespace umbrant::effect
