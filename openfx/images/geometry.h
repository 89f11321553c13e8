// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From the standard's coordinates to the library's and back, without a host. Canonical coordinates are doubles at full
// size with square pixels; pixel coordinates are whole numbers at the render scale. Both have y upwards. The library
// has y downwards from the top left corner of its layer.

#include <optional>

#include <umbrant/effect.h>

#include "openfx/abi/core.h"

namespace umbrant::openfx {

/// The resolution of images along both sides; 1 is full size.
struct Scale {
    double x = 1;
    double y = 1;
};

inline bool IsEmpty(const OfxRectI& rect) {
    return rect.x1 >= rect.x2 || rect.y1 >= rect.y2;
}
OfxRectI Intersection(const OfxRectI& a, const OfxRectI& b);

/// The nearest fraction from 1/64 to 1, of small numbers where one is within a hundred-millionth: 0.6666666667 gives
/// 2/3. What is no positive number gives 1.
Fraction FractionOf(double ratio);

/// Sets `downsample` where both sides are the same 1/n, else `scaleX` and `scaleY`.
void SetScale(const Scale& scale, FrameOptions& options);

/// A pixel's width over its height as the library takes it; 1 for what no pixel has.
Fraction AspectOf(double aspect);

/// The pixels at full size that a canonical rectangle touches. None for an empty or infinite rectangle, for
/// not-a-number, and for sides that no image has (more than 30000).
std::optional<OfxRectI> FullPixels(const OfxRectD& canonical, double pixelAspect);

/// Where a layer is: the top left corner of its image in canonical coordinates.
struct LayerPlace {
    double left = 0;
    double top = 0;
    double pixelAspect = 1;
};
LayerPlace PlaceOfImage(const OfxRectI& bounds, const Scale& scale, double pixelAspect);

/// A canonical point in pixels of the full-size layer.
OfxPointD PointInLayer(const OfxPointD& point, const LayerPlace& place);

/// A rectangle in pixels, seen from the layer with these bounds, and back.
Rectangle InLayer(const OfxRectI& rect, const OfxRectI& layer);
OfxRectI FromLayer(const Rectangle& rect, const OfxRectI& layer);

/// The canonical rectangle that both cover: `region`, and a result in pixels at full size.
OfxRectD United(const OfxRectD& region, const OfxRectI& result, double pixelAspect);

}  // namespace umbrant::openfx
