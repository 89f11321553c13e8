// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Conversions to integers at and beyond every limit.

#include "pixel/saturate.h"
#include "tests/pixel/special_numbers.h"

#include <gtest/gtest.h>

#include <cmath>

namespace umbrant::effect {

namespace {

TEST(Saturate, ToInt32) {
    const struct {
        double value;
        int32_t result;
    } rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {0.999, 0},
        {-0.999, 0},
        {1.5, 1},
        {-1.5, -1},
        {2147483646.9, 2147483646},
        {2147483647.0, INT32_MAX},
        {2147483647.5, INT32_MAX},
        {2147483648.0, INT32_MAX},
        {1e308, INT32_MAX},
        {-2147483647.9, -2147483647},
        {-2147483648.0, INT32_MIN},
        {-2147483648.9, INT32_MIN},
        {-2147483649.0, INT32_MIN},
        {kInf, INT32_MAX},
        {-kInf, INT32_MIN},
        {kNaN, 0},
        {-kNaN, 0},
        {5e-324, 0},
    };
    for (const auto& row : rows) EXPECT_EQ(ToInt32(row.value), row.result) << row.value;
}

TEST(Saturate, ToUint8) {
    const struct {
        double value;
        int result;
    } rows[] = {
        {0.0, 0},     {-0.0, 0},    {-1e-9, 0},   {0.999, 0},  {1.0, 1},    {127.5, 127}, {254.999, 254},
        {255.0, 255}, {255.5, 255}, {256.0, 255}, {1e30, 255}, {kInf, 255}, {-kInf, 0},   {kNaN, 0},
    };
    for (const auto& row : rows) EXPECT_EQ(ToUint8(row.value), row.result) << row.value;
}

static_assert(ToInt32(kNaN) == 0 && ToUint8(300.0) == 255, "usable in constants");

}  // namespace

}  // namespace umbrant::effect
