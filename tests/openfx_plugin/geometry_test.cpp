// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Coordinates and scales.

#include "openfx/images/geometry.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace umbrant::openfx {
namespace {

void ExpectFraction(double ratio, int numerator, int denominator) {
    const Fraction fraction = FractionOf(ratio);
    EXPECT_EQ(fraction.numerator, numerator) << ratio;
    EXPECT_EQ(fraction.denominator, denominator) << ratio;
}

TEST(Geometry, ScalesBecomeSmallFractions) {
    ExpectFraction(1, 1, 1);
    ExpectFraction(0.5, 1, 2);
    ExpectFraction(0.25, 1, 4);
    ExpectFraction(1.0 / 3, 1, 3);
    ExpectFraction(2.0 / 3, 2, 3);
    ExpectFraction(0.375, 3, 8);
    ExpectFraction(0.1, 1, 10);
    ExpectFraction(static_cast<double>(0.1f), 1, 10);
    ExpectFraction(1.0 / 64, 1, 64);
    ExpectFraction(719.0 / 1920, 719, 1920);
}

TEST(Geometry, ScalesThatNoImageHasBecomeTheNearest) {
    ExpectFraction(2, 1, 1);
    ExpectFraction(0.001, 1, 64);
    ExpectFraction(0, 1, 1);
    ExpectFraction(-1, 1, 1);
    ExpectFraction(std::nan(""), 1, 1);
    const Fraction odd = FractionOf(std::sqrt(0.5));
    EXPECT_NEAR(static_cast<double>(odd.numerator) / odd.denominator, std::sqrt(0.5), 1e-8);
}

TEST(Geometry, EqualPartsAreADownsample) {
    FrameOptions options;
    SetScale({0.5, 0.5}, options);
    EXPECT_EQ(options.downsample, 2);
    EXPECT_EQ(options.scaleX.denominator, 1);
    FrameOptions other;
    SetScale({0.5, 0.25}, other);
    EXPECT_EQ(other.downsample, 1);
    EXPECT_EQ(other.scaleX.denominator, 2);
    EXPECT_EQ(other.scaleY.denominator, 4);
}

TEST(Geometry, RegionsBecomeThePixelsThatTheyTouch) {
    const auto pixels = FullPixels({-7.5, 11, 100, 50.25}, 1);
    ASSERT_TRUE(pixels);
    EXPECT_EQ(pixels->x1, -8);
    EXPECT_EQ(pixels->y1, 11);
    EXPECT_EQ(pixels->x2, 100);
    EXPECT_EQ(pixels->y2, 51);
    EXPECT_EQ(FullPixels({0, 0, 100, 50}, 2)->x2, 50);
}

TEST(Geometry, RegionsWithoutAnImageAreNone) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(FullPixels({0, 0, 0, 10}, 1));
    EXPECT_FALSE(FullPixels({10, 0, 5, 10}, 1));
    EXPECT_FALSE(FullPixels({INT_MIN, INT_MIN, INT_MAX, INT_MAX}, 1));
    EXPECT_FALSE(FullPixels({-inf, -inf, inf, inf}, 1));
    EXPECT_FALSE(FullPixels({std::nan(""), 0, 1, 1}, 1));
    EXPECT_FALSE(FullPixels({0, 0, 30001, 10}, 1));
}

TEST(Geometry, PointsAndRectanglesTurnTheirY) {
    const OfxRectI layer{-7, 11, 57, 59};
    const OfxPointD corner = PointInLayer({-7, 59}, PlaceOfImage(layer, {}, 1));
    EXPECT_EQ(corner.x, 0);
    EXPECT_EQ(corner.y, 0);
    const OfxPointD point = PointInLayer({3, 40}, PlaceOfImage(layer, {}, 1));
    EXPECT_EQ(point.x, 10);
    EXPECT_EQ(point.y, 19);
    EXPECT_EQ(InLayer(layer, layer), (Rectangle{0, 0, 64, 48}));
    const OfxRectI grown = FromLayer({-1, -1, 82, 65}, layer);
    EXPECT_EQ(grown.x1, -8);
    EXPECT_EQ(grown.y1, -6);
    EXPECT_EQ(grown.x2, 75);
    EXPECT_EQ(grown.y2, 60);
    EXPECT_EQ(InLayer(grown, layer), (Rectangle{-1, -1, 82, 65}));
}

TEST(Geometry, PlacesAreAtFullSizeWhateverTheScale) {
    const LayerPlace half = PlaceOfImage({-4, 10, 28, 34}, {0.5, 0.5}, 2);
    EXPECT_EQ(half.left, -16);
    EXPECT_EQ(half.top, 68);
    const OfxPointD point = PointInLayer({-8, 60}, half);
    EXPECT_EQ(point.x, 4);
    EXPECT_EQ(point.y, 8);
}

TEST(Geometry, AspectsAreFractions) {
    EXPECT_EQ(AspectOf(2).numerator, 2 * AspectOf(2).denominator);
    EXPECT_EQ(AspectOf(0).numerator, AspectOf(0).denominator);
    EXPECT_EQ(AspectOf(std::nan("")).numerator, 1);
}

}  // namespace
}  // namespace umbrant::openfx
