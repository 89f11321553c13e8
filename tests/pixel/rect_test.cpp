// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Rectangles, edge cases first.

#include "pixel/rect.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace umbrant::effect {

namespace {

bool Same(const PF_LRect& a, const PF_LRect& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

TEST(IsEmptyRect, Cases) {
    const struct {
        const char* name;
        PF_LRect rect;
        bool empty;
    } rows[] = {
        {"one pixel", {0, 0, 1, 1}, false},
        {"zero", {0, 0, 0, 0}, true},
        {"no width", {3, 0, 3, 5}, true},
        {"no height", {0, 3, 5, 3}, true},
        {"negative width", {5, 0, 4, 5}, true},
        {"negative height", {0, 5, 5, 4}, true},
        {"left of the origin", {-5, -5, -4, -4}, false},
        {"whole range", {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, false},
        {"inverted whole range", {INT32_MAX, 0, INT32_MIN, 1}, true},
    };
    for (const auto& row : rows) EXPECT_EQ(IsEmptyRect(&row.rect), row.empty) << row.name;
}

TEST(UnionLRect, Cases) {
    const struct {
        const char* name;
        PF_LRect src, dst, result;
    } rows[] = {
        {"overlapping", {0, 0, 10, 10}, {5, -5, 15, 5}, {0, -5, 15, 10}},
        {"apart", {0, 0, 1, 1}, {10, 20, 11, 21}, {0, 0, 11, 21}},
        {"inside", {2, 2, 3, 3}, {0, 0, 10, 10}, {0, 0, 10, 10}},
        {"around", {0, 0, 10, 10}, {2, 2, 3, 3}, {0, 0, 10, 10}},
        {"empty destination", {1, 2, 3, 4}, {9, 9, 9, 9}, {1, 2, 3, 4}},
        {"empty source", {100, 100, 100, 200}, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {"both empty: the source's numbers", {7, 8, 7, 8}, {1, 2, 1, 2}, {7, 8, 7, 8}},
        {"inverted destination", {1, 2, 3, 4}, {50, 0, 40, 10}, {1, 2, 3, 4}},
    };
    for (const auto& row : rows) {
        PF_LRect dst = row.dst;
        UnionLRect(&row.src, &dst);
        EXPECT_TRUE(Same(dst, row.result)) << row.name;
    }
    PF_LRect self = {1, 2, 3, 4};
    UnionLRect(&self, &self);
    EXPECT_TRUE(Same(self, {1, 2, 3, 4}));
}

TEST(IsEdgePixel, Cases) {
    const PF_LRect rect = {10, 20, 15, 28};
    const struct {
        const char* name;
        A_long x, y;
        bool edge;
    } rows[] = {
        {"top left", 10, 20, true},
        {"bottom right", 15, 28, true},
        {"right of top right", 16, 20, false},
        {"top right", 15, 20, true},
        {"bottom left", 10, 28, true},
        {"on the left side", 10, 24, true},
        {"on the right side", 15, 24, true},
        {"one left of the right side", 14, 24, false},
        {"on the top", 12, 20, true},
        {"on the bottom", 12, 28, true},
        {"one above the bottom", 12, 27, false},
        {"inside", 12, 24, false},
        {"above the left side", 10, 19, false},
        {"below the right side", 15, 29, false},
        {"left of the top", 9, 20, false},
        {"outside", 0, 0, false},
    };
    for (const auto& row : rows) EXPECT_EQ(IsEdgePixel(&rect, row.x, row.y), row.edge) << row.name;
}

}  // namespace

}  // namespace umbrant::effect
