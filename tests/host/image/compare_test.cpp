// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// When two pictures count as the same.

#include "host/image/compare.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/host/image/filled_worlds.h"

namespace umbrant::host {

namespace {

Picture Of(World world) {
    Picture picture;
    picture.window = {0, 0, world.Width(), world.Height()};
    picture.frameWidth = world.Width();
    picture.frameHeight = world.Height();
    picture.pixels = std::move(world);
    return picture;
}

TEST(Compare, ThePictureItself) {
    const Picture picture = Of(Filled8(4, 3, {200, 1, 2, 3}));
    const auto result = Compare(picture, picture, {});
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->close);
    EXPECT_EQ(result->worst, 0);
    EXPECT_EQ(result->counted, 0);
    EXPECT_EQ(result->pixels, 12);
}

struct ToleranceCase {
    const char* name;
    int different;  // of 1000 pixels
    int by;
    bool close;
};

TEST(Compare, ThreeNumbersDecide) {
    const ToleranceCase cases[] = {
        {"none", 0, 0, true},
        {"five in a thousand by one", 5, 1, true},
        {"six in a thousand by one", 6, 1, false},
        {"one by three", 1, 3, true},
        {"one by four", 1, 4, false},
    };
    for (const ToleranceCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Picture first = Of(Filled8(100, 10, {255, 100, 100, 100}));
        Picture second = Of(Filled8(100, 10, {255, 100, 100, 100}));
        for (int i = 0; i < row.different; ++i) {
            Pixel8(second.pixels, 7 * i, 3).green = static_cast<A_u_char>(100 + row.by);
        }
        const auto result = Compare(first, second, {});
        ASSERT_TRUE(result);
        EXPECT_EQ(result->close, row.close);
        EXPECT_EQ(result->counted, row.different);
        EXPECT_NEAR(result->worst, row.by / 255.0, 1e-9);
    }
}

TEST(Compare, TheWorstPixelIsNamed) {
    const Picture first = Of(Filled8(9, 9, {255, 100, 100, 100}));
    Picture second = Of(Filled8(9, 9, {255, 100, 100, 100}));
    Pixel8(second.pixels, 2, 2).red = 110;
    Pixel8(second.pixels, 5, 7).blue = 51;
    const auto result = Compare(first, second, {});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->x, 5);
    EXPECT_EQ(result->y, 7);
    EXPECT_NEAR(result->first[3], 100 / 255.0, 1e-9);
    EXPECT_NEAR(result->second[3], 0.2, 1e-9);
    ASSERT_EQ(result->differences.size(), 81u);
    EXPECT_NEAR(result->differences[7 * 9 + 5], 49 / 255.0, 1e-7);
    EXPECT_NEAR(result->differences[2 * 9 + 2], 10 / 255.0, 1e-7);
    EXPECT_EQ(result->differences[0], 0);
}

TEST(Compare, ColoursUnderNoAlphaCountOnlyWhenAskedFor) {
    const Picture first = Of(Filled8(4, 4, {0, 255, 255, 255}));
    const Picture second = Of(Filled8(4, 4, {0, 0, 0, 0}));
    EXPECT_TRUE(Compare(first, second, {})->close);
    EXPECT_FALSE(Compare(first, second, {}, true)->close);
}

TEST(Compare, WindowsAreLaidInTheirFrame) {
    Picture small = Of(Filled8(2, 2, {255, 9, 9, 9}));
    small.frameWidth = small.frameHeight = 6;
    small.window = {2, 3, 4, 5};
    Picture large = Of(Filled8(6, 6, {0, 0, 0, 0}));
    for (const auto& [x, y] : {std::pair{2, 3}, std::pair{3, 3}, std::pair{2, 4}, std::pair{3, 4}}) {
        Pixel8(large.pixels, x, y) = {255, 9, 9, 9};
    }
    const auto result = Compare(small, large, {});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->worst, 0);
    EXPECT_EQ(result->pixels, 36);
    EXPECT_EQ(result->window.right, 6);
}

TEST(Compare, DepthsMayDiffer) {
    const Picture eight = Of(Filled8(3, 3, {255, 51, 102, 153}));
    const Picture real = Of(FilledFloat(3, 3, {1, 0.2f, 0.4f, 0.6f}));
    EXPECT_TRUE(Compare(eight, real, {})->close);
}

TEST(Compare, NotANumberEqualsOnlyItself) {
    Picture number = Of(FilledFloat(3, 3, {1, 0.2f, 0.4f, 0.6f}));
    Picture none = Of(FilledFloat(3, 3, {1, 0.2f, 0.4f, 0.6f}));
    PixelFloat(none.pixels, 1, 2).green = std::nanf("");
    const auto result = Compare(number, none, {});
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->close);
    EXPECT_TRUE(std::isinf(result->worst));
    EXPECT_EQ(result->x, 1);
    EXPECT_EQ(result->y, 2);
    EXPECT_TRUE(Compare(none, none, {})->close);
}

TEST(Compare, FramesOfDifferentSizesAreNotComparable) {
    EXPECT_FALSE(Compare(Of(Filled8(4, 4, {})), Of(Filled8(4, 5, {})), {}));
    EXPECT_FALSE(Compare(Of(Filled8(5, 4, {})), Of(Filled8(4, 4, {})), {}));
}

}  // namespace

}  // namespace umbrant::host
