// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How far a shadow reaches: the rectangle arithmetic of pre-render, free of host calls. All rectangles and lengths are
// (downsampled) pixels in the layer's coordinates; sums saturate instead of overflowing.

#include "hostapi/geometry.h"
#include "render/render_settings.h"

namespace umbrant::effect {

/// The parameters and the layer that decide the rectangles.
struct PreRenderInputs {
    int32_t shadowType = 0;
    double angleDeg = 0;  ///< degrees
    double originX = 0;   ///< pixels, as the host hands them over (downsampled)
    double originY = 0;
    double distance = 0;         ///< full-size pixels; percent for a radial shadow
    double softness = 0;         ///< full-size pixels
    double offsetShadow = 0;     ///< full-size pixels
    double bufferExpansion = 0;  ///< full-size pixels
    double scale = 1;            ///< downsampled over full size
    int32_t layerWidth = 0;      ///< full-size pixels
    int32_t layerHeight = 0;
    bool collapsed = false;  ///< the layer is collapsed or continuously rasterised
};

/// What pre-render reports to the host, and keeps for the render.
struct PreRenderRects {
    PF_LRect result;  ///< to be united into the output's result rectangle
    PF_LRect max;     ///< to be united into the output's max result rectangle
};

/// Half of "Buffer Expansion", rounded up, in downsampled pixels.
int32_t BufferExpansionPixels(const PreRenderInputs& in);

/// `rect` with each side moved outwards by so many pixels.
PF_LRect Grown(const PF_LRect& rect, int64_t left, int64_t top, int64_t right, int64_t bottom);

/// `rect` cut to the downsampled layer, then grown by the buffer expansion on every side. Only each side is limited, so
/// a rectangle that misses the layer comes out empty or crossed.
PF_LRect ClampToLayer(const PF_LRect& rect, const PreRenderInputs& in);

/// Normal shadow. `input` is what the host granted of the layer, `layerMax` the cut and grown max rectangle.
PreRenderRects NormalRects(const PreRenderInputs& in, const PF_LRect& input, const PF_LRect& layerMax);

/// Where the input is within the output: writes the record's offsets from the granted input and the output's max
/// rectangle. Normal shadows only.
void RecordNormalOffsets(const PF_LRect& input, const PF_LRect& outputMax, PreRenderData* record);

/// Inner shadow; also writes the growth of each side into `record`.
PreRenderRects InnerRects(const PreRenderInputs& in, const PF_LRect& input, const PF_LRect& layerMax,
                          PreRenderData* record);

/// Radial shadow; both rectangles are the same. `grown` is the layer that is scaled: the cut max rectangle and a
/// quarter of the softness.
PreRenderRects RadialRects(const PreRenderInputs& in, const PF_LRect& layerMax, PF_LRect* grown);

/// Where a radial output starts relative to the grown layer: writes the first two fields of the record.
void RecordRadialPlacement(const PF_LRect& outputResult, const PF_LRect& grown, PreRenderData* record);

/// `rect` kept inside the composition, at least one pixel wide and high. A collapsed layer is as large as its
/// composition and has no pixels beyond it.
PF_LRect ClampToComposition(const PF_LRect& rect, const PreRenderInputs& in);

}  // namespace umbrant::effect
