// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/pre_render/pre_render_rects.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pixel/matrix.h"
#include "pixel/rect.h"
#include "pixel/saturate.h"
#include "render/settings/angle.h"

namespace umbrant::effect {

namespace {

int32_t Saturate(int64_t value) {
    return static_cast<int32_t>(
        std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
}

// Moves left and top so that at least one pixel remains; right and bottom stay.
void KeepOnePixel(PF_LRect* rect) {
    rect->left = std::min(rect->left, Saturate(int64_t{rect->right} - 1));
    rect->top = std::min(rect->top, Saturate(int64_t{rect->bottom} - 1));
}

int32_t LayerWidth(const PreRenderInputs& in) {
    return ToInt32(in.layerWidth * in.scale);
}

// Intended: the horizontal downsample factor serves heights too.
int32_t LayerHeight(const PreRenderInputs& in) {
    return ToInt32(in.layerHeight * in.scale);
}

// Where a corner of the grown layer lands when the layer is scaled about the origin: the translation of
// T(corner) T(-o) S(scale) T(o) T(grown corner), with o the origin relative to the grown layer.
void ScaledCorner(double cornerX, double cornerY, double originX, double originY, double scale, const PF_LRect& grown,
                  double* x, double* y) {
    PF_FloatMatrix m;
    SetIdentityMatrix(&m);
    TranslateMatrix(&m, cornerX, cornerY);
    TranslateMatrix(&m, -originX, -originY);
    if (scale != 1.0) ScaleMatrix(&m, scale, scale);
    TranslateMatrix(&m, originX, originY);
    TranslateMatrix(&m, grown.left, grown.top);
    *x = m.mat[2][0];
    *y = m.mat[2][1];
}

}  // namespace

int32_t BufferExpansionPixels(const PreRenderInputs& in) {
    return ToInt32(std::ceil(in.bufferExpansion * in.scale * 0.5));
}

PF_LRect Grown(const PF_LRect& rect, int64_t left, int64_t top, int64_t right, int64_t bottom) {
    return {Saturate(rect.left - left), Saturate(rect.top - top), Saturate(rect.right + right),
            Saturate(rect.bottom + bottom)};
}

PF_LRect ClampToLayer(const PF_LRect& rect, const PreRenderInputs& in) {
    const PF_LRect cut = {std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, LayerWidth(in)),
                          std::min(rect.bottom, LayerHeight(in))};
    const int64_t expansion = BufferExpansionPixels(in);
    return Grown(cut, expansion, expansion, expansion, expansion);
}

PreRenderRects NormalRects(const PreRenderInputs& in, const PF_LRect& input, const PF_LRect& layerMax) {
    const int64_t half = ToInt32(in.softness * 0.5 * in.scale);
    const double distance = (in.offsetShadow + in.distance) * in.scale;
    const double angle = RadiansOf(in.angleDeg);
    const int64_t dx = ToInt32(std::ceil(std::sin(angle) * distance));
    const int64_t dy = ToInt32(std::ceil(std::cos(angle) * distance));

    // Intended: the buffer expansion is already in `layerMax` and enters a second time here.
    const int64_t grow = int64_t{BufferExpansionPixels(in)} + ToInt32(in.softness * 0.25 * in.scale);
    const PF_LRect grown = Grown(layerMax, grow, grow, grow, grow);

    // Intended: the vertical shift is subtracted; a positive cosine moves the shadow up.
    PF_LRect reach = {Saturate(grown.left + dx - half), Saturate(grown.top - dy - half),
                      Saturate(grown.right + dx + half), Saturate(grown.bottom - dy + half)};
    if (!IsEmptyRect(&grown)) UnionLRect(&grown, &reach);
    KeepOnePixel(&reach);

    PreRenderRects rects{input, reach};
    if (!IsEmptyRect(&input) && !IsEmptyRect(&reach)) UnionLRect(&reach, &rects.result);
    if (!IsEmptyRect(&grown)) UnionLRect(&grown, &rects.max);
    return rects;
}

void RecordNormalOffsets(const PF_LRect& input, const PF_LRect& outputMax, PreRenderData* record) {
    const int64_t left = int64_t{input.left} - outputMax.left;
    const int64_t top = int64_t{input.top} - outputMax.top;
    record->originDeltaX = Saturate(left);
    record->originDeltaY = Saturate(top);
    record->layerOffset2X = static_cast<double>(int64_t{input.right} - outputMax.right + left);
    record->layerOffset2Y = static_cast<double>(int64_t{input.bottom} - outputMax.bottom + top);
    record->centreOffsetX = record->layerOffset2X * 0.5;
    record->centreOffsetY = record->layerOffset2Y * 0.5;
}

PreRenderRects InnerRects(const PreRenderInputs& in, const PF_LRect& input, const PF_LRect& layerMax,
                          PreRenderData* record) {
    double degrees = std::fmod(in.angleDeg, 360.0);
    if (degrees < 0) degrees += 360.0;
    const double angle = RadiansOf(degrees);
    const double distance = (in.offsetShadow + in.distance) * in.scale;
    const int32_t half = ToInt32(in.softness * 0.5 * in.scale);
    const int32_t across = ToInt32(std::ceil(std::sin(angle) * distance));
    const int32_t along = ToInt32(std::ceil(std::cos(angle) * distance));

    // Intended: open ranges; at exactly 0, 90, 180 and 270 degrees the axis concerned does not grow.
    const bool left = degrees > 0 && degrees < 180;
    const bool right = degrees > 180 && degrees < 360;
    const bool bottom = degrees > 270 || degrees < 90;
    const bool top = degrees > 90 && degrees < 270;
    record->innerGrowLeft = std::max(left ? across : 0, half);
    record->innerGrowRight = std::max(right ? Saturate(-int64_t{across}) : 0, half);
    record->innerGrowBottom = std::max(bottom ? along : 0, half);
    record->innerGrowTop = std::max(top ? Saturate(-int64_t{along}) : 0, half);

    const PF_LRect grown =
        Grown(input, record->innerGrowLeft, record->innerGrowTop, record->innerGrowRight, record->innerGrowBottom);
    PreRenderRects rects{input, layerMax};
    UnionLRect(&grown, &rects.result);
    UnionLRect(&grown, &rects.max);
    return rects;
}

PreRenderRects RadialRects(const PreRenderInputs& in, const PF_LRect& layerMax, PF_LRect* grown) {
    const double scale = in.distance * 0.01 + 1.0;
    const int64_t pad2 = 2 * int64_t{ToInt32(std::ceil(ToInt32(in.softness * in.scale) / scale))};
    const int64_t grow = ToInt32(in.softness * 0.25 * in.scale);
    *grown = Grown(layerMax, grow, grow, grow, grow);
    const double originX = in.originX - grown->left;
    const double originY = in.originY - grown->top;

    double x1 = 0;
    double y1 = 0;
    double x2 = 0;
    double y2 = 0;
    const double width = static_cast<double>(grown->right) - grown->left;
    const double height = static_cast<double>(grown->bottom) - grown->top;
    ScaledCorner(0, 0, originX, originY, scale, *grown, &x1, &y1);
    ScaledCorner(width, height, originX, originY, scale, *grown, &x2, &y2);

    PF_LRect reach = {Saturate(ToInt32(x1) - pad2), Saturate(ToInt32(y1) - pad2), Saturate(ToInt32(x2) + pad2),
                      Saturate(ToInt32(y2) + pad2)};
    KeepOnePixel(&reach);
    if (in.collapsed) reach = ClampToComposition(reach, in);
    if (!IsEmptyRect(grown)) UnionLRect(grown, &reach);
    return {reach, reach};
}

void RecordRadialPlacement(const PF_LRect& outputResult, const PF_LRect& grown, PreRenderData* record) {
    record->centreOffsetX = static_cast<double>(outputResult.left) - grown.left;
    record->centreOffsetY = static_cast<double>(outputResult.top) - grown.top;
}

PF_LRect ClampToComposition(const PF_LRect& rect, const PreRenderInputs& in) {
    const int32_t width = std::max(LayerWidth(in), 1);
    const int32_t height = std::max(LayerHeight(in), 1);
    PF_LRect inside;
    inside.left = std::clamp(rect.left, 0, width - 1);
    inside.top = std::clamp(rect.top, 0, height - 1);
    inside.right = std::clamp(rect.right, inside.left + 1, width);
    inside.bottom = std::clamp(rect.bottom, inside.top + 1, height);
    return inside;
}

}  // namespace umbrant::effect
