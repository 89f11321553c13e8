// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Coordinates.

#include "openfx/images/geometry.h"

#include <algorithm>
#include <cmath>

namespace umbrant::openfx {

namespace {

/// The library's limits.
constexpr int kMostDownsample = 64;
constexpr int kMostInFraction = 1000000;
constexpr double kLongestSide = 30000;
/// Beyond this a coordinate is taken for infinite; the standard's own infinity is the limit of int.
constexpr double kFarthest = 1e9;
constexpr int kMostAspect = 100;
constexpr int kAspectParts = 10000;
constexpr double kSameRatio = 1e-8;

}  // namespace

OfxRectI Intersection(const OfxRectI& a, const OfxRectI& b) {
    return {std::max(a.x1, b.x1), std::max(a.y1, b.y1), std::min(a.x2, b.x2), std::min(a.y2, b.y2)};
}

Fraction FractionOf(double ratio) {
    if (!(ratio > 0) || ratio >= 1) return {};
    if (ratio <= 1.0 / kMostDownsample) return {1, kMostDownsample};
    // Continued fraction: each step is the best of its size.
    Fraction previous{0, 1}, current{1, 0};
    double rest = ratio;
    for (;;) {
        const double whole = std::floor(rest);
        const double numerator = whole * current.numerator + previous.numerator;
        const double denominator = whole * current.denominator + previous.denominator;
        if (denominator > kMostInFraction) return current;
        // The first step of a ratio below 1 is 0/1, which is no scale.
        previous = current;
        current = {static_cast<int>(numerator), static_cast<int>(denominator)};
        if (numerator > 0 && std::abs(numerator / denominator - ratio) <= kSameRatio) return current;
        if (rest == whole) return current;
        rest = 1 / (rest - whole);
    }
}

Fraction AspectOf(double aspect) {
    if (!(aspect >= 1.0 / kMostAspect && aspect <= kMostAspect)) return {};
    return {static_cast<int>(std::lround(aspect * kAspectParts)), kAspectParts};
}

void SetScale(const Scale& scale, FrameOptions& options) {
    const Fraction x = FractionOf(scale.x), y = FractionOf(scale.y);
    if (x.numerator == 1 && y.numerator == 1 && x.denominator == y.denominator) {
        options.downsample = x.denominator;
        return;
    }
    options.scaleX = x;
    options.scaleY = y;
}

std::optional<OfxRectI> FullPixels(const OfxRectD& canonical, double pixelAspect) {
    for (const double side : {canonical.x1, canonical.y1, canonical.x2, canonical.y2}) {
        // Written so that not-a-number is outside.
        if (!(side > -kFarthest && side < kFarthest)) return std::nullopt;
    }
    const double x1 = std::floor(canonical.x1 / pixelAspect), x2 = std::ceil(canonical.x2 / pixelAspect);
    const double y1 = std::floor(canonical.y1), y2 = std::ceil(canonical.y2);
    if (!(x2 > x1 && y2 > y1 && x2 - x1 <= kLongestSide && y2 - y1 <= kLongestSide)) return std::nullopt;
    if (!(std::abs(x1) < kFarthest && std::abs(x2) < kFarthest)) return std::nullopt;
    return OfxRectI{static_cast<int>(x1), static_cast<int>(y1), static_cast<int>(x2), static_cast<int>(y2)};
}

LayerPlace PlaceOfImage(const OfxRectI& bounds, const Scale& scale, double pixelAspect) {
    return {bounds.x1 * pixelAspect / scale.x, bounds.y2 / scale.y, pixelAspect};
}

OfxPointD PointInLayer(const OfxPointD& point, const LayerPlace& place) {
    return {(point.x - place.left) / place.pixelAspect, place.top - point.y};
}

Rectangle InLayer(const OfxRectI& rect, const OfxRectI& layer) {
    return {rect.x1 - layer.x1, layer.y2 - rect.y2, rect.x2 - layer.x1, layer.y2 - rect.y1};
}

OfxRectI FromLayer(const Rectangle& rect, const OfxRectI& layer) {
    return {layer.x1 + rect.left, layer.y2 - rect.bottom, layer.x1 + rect.right, layer.y2 - rect.top};
}

OfxRectD United(const OfxRectD& region, const OfxRectI& result, double pixelAspect) {
    return {std::min(region.x1, result.x1 * pixelAspect), std::min<double>(region.y1, result.y1),
            std::max(region.x2, result.x2 * pixelAspect), std::max<double>(region.y2, result.y2)};
}

}  // namespace umbrant::openfx
