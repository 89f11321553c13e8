// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The easing curves at their joints and limits.

#include "pixel/easing.h"
#include "tests/pixel/special_numbers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace umbrant::effect {

namespace {

constexpr double kTiny = 5e-324;

struct CurveCase {
    const char* name;
    double t, b, c, d;
    double result;
};

TEST(EaseIn, Values) {
    const CurveCase rows[] = {
        {"start", 0, 5, 10, 1, 5},
        {"negative zero is the start", -0.0, 5, 10, 1, 5},
        {"end", 1, 5, 10, 1, 15},
        {"middle", 0.5, 0, 1, 1, 0.03125},
        {"the jump above the start", kTiny, 7, 1024, 1, 8},
        {"beyond the end", 2, 0, 1, 1, 1024},
        {"no length, after", 1, 3, 2, 0, kInf},
        {"no length, before", -1, 3, 2, 0, 3},
        {"start without length", 0, 3, 2, 0, 3},
    };
    for (const CurveCase& row : rows) EXPECT_EQ(easeIn(row.t, row.b, row.c, row.d), row.result) << row.name;
    EXPECT_TRUE(std::isnan(easeIn(kNaN, 0, 1, 1)));
}

// ((t / d) + -1) * 10, in this order: 9/10 is inexact, so the exponent is not quite -1.
TEST(EaseIn, OrderOfOperations) {
    const volatile double ratio = 9.0 / 10.0;
    const volatile double shifted = ratio - 1.0;
    EXPECT_EQ(easeIn(9, 0, 1, 10), std::exp2(shifted * 10.0));
    EXPECT_NE(easeIn(9, 0, 1, 10), 0.5);
}

TEST(EaseInOut, Values) {
    const CurveCase rows[] = {
        {"start", 0, 5, 10, 1, 5},
        {"end, by the early return", 1, 0, 1, 1, 1},
        {"end of another length", 4, 1, 6, 4, 7},
        {"middle", 0.5, 0, 1, 1, 0.5},
        {"middle of another length", 2, 10, 4, 4, 12},
        {"first quarter", 0.25, 0, 1, 1, 0.015625},
        {"third quarter", 0.75, 0, 1, 1, 0.984375},
        {"no length, after", 3, 2, 8, 0, 10},
        {"no length, before", -3, 2, 8, 0, 2},
        {"no length, at the start", 0, 2, 8, 0, 2},
        {"far beyond the end", 1e300, 2, 8, 1, 10},
    };
    for (const CurveCase& row : rows) EXPECT_EQ(easeInOut(row.t, row.b, row.c, row.d), row.result) << row.name;
    EXPECT_TRUE(std::isnan(easeInOut(kNaN, 0, 1, 1)));
    EXPECT_TRUE(std::isnan(easeInOut(1, 0, 1, kNaN)));
}

// The end is exact through the early return alone: the curve itself stops at 2 - 2^-10.
TEST(EaseInOut, JustBeforeTheEndIsNotTheEnd) {
    const double before = easeInOut(std::nextafter(1.0, 0.0), 0, 1, 1);
    EXPECT_NEAR(before, 0.5 * (2.0 - 1.0 / 1024.0), 1e-12);
    EXPECT_LT(before, 1.0);
}

TEST(WeightFloat, Values) {
    const struct {
        double a, b, w, result;
    } rows[] = {
        {2, 4, 0.25, 2.5}, {2, 4, 0, 2}, {2, 4, 1, 4}, {4, 2, 0.5, 3}, {2, 4, -1, 0}, {2, 4, 2, 6}, {0, 0, 0.3, 0},
    };
    for (const auto& row : rows) EXPECT_EQ(weightFloat(row.a, row.b, row.w), row.result);
}

// a - (a - b) w is not a + (b - a) w nor a (1 - w) + b w in the last bit.
TEST(WeightFloat, FormIsFixed) {
    int different = 0;
    for (int i = 1; i < 500; ++i) {
        const double a = 0.1 * i, b = 1.7 / i, w = i / 499.0;
        const volatile double difference = a - b;
        const volatile double product = difference * w;
        EXPECT_EQ(weightFloat(a, b, w), a - product);
        if (a - product != a * (1.0 - w) + b * w) ++different;
    }
    EXPECT_GT(different, 0);
}

}  // namespace

}  // namespace umbrant::effect
