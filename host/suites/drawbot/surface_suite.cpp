// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "DRAWBOT Surface Suite" 1: draws on a canvas.

#include "hostapi/suites/drawbot_surface_suite.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/suites/drawbot/canvas.h"
#include "host/suites/drawbot/objects.h"
#include "host/suites/drawbot/text.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

template <typename... Numbers>
bool Finite(Numbers... numbers) {
    return (std::isfinite(numbers) && ...);
}

void SetColor(Drawing& drawing, const DRAWBOT_ColorRGBA& color) {
    drawing.SetColor(color.red, color.green, color.blue, color.alpha);
}

/// The drawing with the canvas's way of drawing edges.
Drawing& Prepared(DrawbotCanvas* canvas) {
    constexpr DrawnEdges kEdges[] = {DrawnEdges::kJagged, DrawnEdges::kGood, DrawnEdges::kBest};
    canvas->On().SetEdges(kEdges[canvas->policies.antiAlias]);
    return canvas->On();
}

SPErr PushStateStack(DRAWBOT_SurfaceRef surface) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "PushStateStack");
    if (!canvas) return PF_Err_BAD_CALLBACK_PARAM;
    canvas->Push();
    return kSPNoError;
}

SPErr PopStateStack(DRAWBOT_SurfaceRef surface) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "PopStateStack");
    if (!canvas) return PF_Err_BAD_CALLBACK_PARAM;
    if (canvas->Pop()) return kSPNoError;
    Report("a drawing state was popped that had not been pushed");
    return PF_Err_BAD_CALLBACK_PARAM;
}

SPErr PaintRect(DRAWBOT_SurfaceRef surface, const DRAWBOT_ColorRGBA* color, const DRAWBOT_RectF32* rect) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "PaintRect");
    if (!canvas || !color || !rect || !Finite(color->red, color->green, color->blue, color->alpha) ||
        !Finite(rect->left, rect->top, rect->width, rect->height)) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    Drawing& drawing = Prepared(canvas);
    SetColor(drawing, *color);
    drawing.NewPath();
    drawing.AddRect(rect->left, rect->top, rect->width, rect->height);
    drawing.Fill();
    return kSPNoError;
}

SPErr FillPath(DRAWBOT_SurfaceRef surface, DRAWBOT_BrushRef brushRef, DRAWBOT_PathRef pathRef, DRAWBOT_FillType fill) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "FillPath");
    const auto* brush = FindDrawObjectOf<DrawBrush>(brushRef, "FillPath");
    const auto* path = FindDrawObjectOf<DrawPath>(pathRef, "FillPath");
    const bool known = fill == kDRAWBOT_FillType_EvenOdd || fill == kDRAWBOT_FillType_Winding;
    if (!canvas || !brush || !path || !known) return PF_Err_BAD_CALLBACK_PARAM;
    Drawing& drawing = Prepared(canvas);
    SetColor(drawing, brush->color);
    drawing.TakePath(*path->figures);
    drawing.Fill(fill == kDRAWBOT_FillType_EvenOdd ? FillRule::kEvenOdd : FillRule::kWinding);
    return kSPNoError;
}

SPErr StrokePath(DRAWBOT_SurfaceRef surface, DRAWBOT_PenRef penRef, DRAWBOT_PathRef pathRef) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "StrokePath");
    const auto* pen = FindDrawObjectOf<DrawPen>(penRef, "StrokePath");
    const auto* path = FindDrawObjectOf<DrawPath>(pathRef, "StrokePath");
    if (!canvas || !pen || !path) return PF_Err_BAD_CALLBACK_PARAM;
    Drawing& drawing = Prepared(canvas);
    SetColor(drawing, pen->color);
    drawing.SetLineWidth(pen->width);
    drawing.TakePath(*path->figures);
    drawing.Stroke();
    return kSPNoError;
}

SPErr Clip(DRAWBOT_SurfaceRef surface, DRAWBOT_SupplierRef supplier, const DRAWBOT_Rect32* rect) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "Clip");
    if (!canvas || DrawbotCanvas::Of(supplier, "Clip") != canvas || !rect) return PF_Err_BAD_CALLBACK_PARAM;
    Prepared(canvas).ClipTo(rect->left, rect->top, rect->width, rect->height);
    return kSPNoError;
}

/// A whole number that a double names, or the nearest that there is.
int Whole(double value) {
    constexpr double kLow = std::numeric_limits<int>::min(), kHigh = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, kLow, kHigh));
}

SPErr GetClipBounds(DRAWBOT_SurfaceRef surface, DRAWBOT_Rect32* rect) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "GetClipBounds");
    if (!canvas || !rect) return PF_Err_BAD_CALLBACK_PARAM;
    const DrawingBounds bounds = canvas->On().ClipBounds();
    const double left = std::floor(bounds.left);
    const double top = std::floor(bounds.top);
    *rect = {Whole(left), Whole(top), Whole(std::ceil(bounds.right) - left), Whole(std::ceil(bounds.bottom) - top)};
    return kSPNoError;
}

SPErr IsWithinClipBounds(DRAWBOT_SurfaceRef surface, const DRAWBOT_Rect32* rect, DRAWBOT_Boolean* within) {
    DRAWBOT_Rect32 bounds{};
    if (!rect || !within || GetClipBounds(surface, &bounds) != kSPNoError) return PF_Err_BAD_CALLBACK_PARAM;
    const auto ends = [](int from, int size) { return int64_t{from} + size; };
    *within = rect->left >= bounds.left && rect->top >= bounds.top &&
              ends(rect->left, rect->width) <= ends(bounds.left, bounds.width) &&
              ends(rect->top, rect->height) <= ends(bounds.top, bounds.height);
    return kSPNoError;
}

/// The matrix that does what `first` does and then what `second` does.
DrawingMatrix Joined(const DrawingMatrix& first, const DrawingMatrix& second) {
    return {.xx = second.xx * first.xx + second.xy * first.yx,
            .yx = second.yx * first.xx + second.yy * first.yx,
            .xy = second.xx * first.xy + second.xy * first.yy,
            .yy = second.yx * first.xy + second.yy * first.yy,
            .x0 = second.xx * first.x0 + second.xy * first.y0 + second.x0,
            .y0 = second.yx * first.x0 + second.yy * first.y0 + second.y0};
}

/// The third column says nothing here: it would belong to perspective, which a panel has none of.
SPErr Transform(DRAWBOT_SurfaceRef surface, const DRAWBOT_MatrixF32* matrix) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "Transform");
    if (!canvas || !matrix) return PF_Err_BAD_CALLBACK_PARAM;
    const auto& m = matrix->mat;
    const DrawingMatrix whole = Joined({m[0][0], m[0][1], m[1][0], m[1][1], m[2][0], m[2][1]}, canvas->On().Matrix());
    const double area = whole.xx * whole.yy - whole.xy * whole.yx;
    // A matrix that cannot be undone would end all drawing in this context.
    if (!Finite(area, whole.x0, whole.y0) || area == 0) return PF_Err_BAD_CALLBACK_PARAM;
    canvas->On().SetMatrix(whole);
    return kSPNoError;
}

SPErr DrawString(DRAWBOT_SurfaceRef surface, DRAWBOT_BrushRef brushRef, DRAWBOT_FontRef fontRef,
                 const DRAWBOT_UTF16Char* string, const DRAWBOT_PointF32* origin, DRAWBOT_TextAlignment alignment,
                 DRAWBOT_TextTruncation truncation, float width) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "DrawString");
    const auto* brush = FindDrawObjectOf<DrawBrush>(brushRef, "DrawString");
    const auto* font = FindDrawObjectOf<DrawFont>(fontRef, "DrawString");
    if (!canvas || !brush || !font || !string || !origin || !Finite(origin->x, origin->y)) {
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    Drawing& drawing = Prepared(canvas);
    drawing.SetFont(kPanelTypeface, font->size);
    const std::string text = FitText(drawing, Utf8FromUtf16(string), width, truncation);
    const double share = alignment == kDRAWBOT_TextAlignment_Center  ? 0.5
                         : alignment == kDRAWBOT_TextAlignment_Right ? 1.0
                                                                     : 0.0;
    SetColor(drawing, brush->color);
    drawing.DrawText(text, origin->x - share * drawing.TextWidth(text), origin->y);
    return kSPNoError;
}

/// How to resample under the current matrix. A picture that is made smaller is always averaged: leaving pixels out is
/// not what the fastest policy means.
Resampling ResamplingFor(const DrawbotCanvas& canvas) {
    if (canvas.policies.interpolation == kDRAWBOT_InterpolationPolicy_High) return Resampling::kBest;
    const DrawingMatrix matrix = canvas.On().Matrix();
    const bool smaller = std::hypot(matrix.xx, matrix.yx) < 1 || std::hypot(matrix.xy, matrix.yy) < 1;
    if (smaller || canvas.policies.interpolation == kDRAWBOT_InterpolationPolicy_Med) return Resampling::kGood;
    return Resampling::kNearest;
}

SPErr DrawImageAt(DRAWBOT_SurfaceRef surface, DRAWBOT_ImageRef imageRef, const DRAWBOT_PointF32* origin, float alpha) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "DrawImage");
    const auto* image = FindDrawObjectOf<DrawImage>(imageRef, "DrawImage");
    if (!canvas || !image || !origin || !Finite(origin->x, origin->y, alpha)) return PF_Err_BAD_CALLBACK_PARAM;
    Prepared(canvas).DrawImage(*image->pixels, origin->x, origin->y, std::clamp(alpha, 0.0f, 1.0f),
                               ResamplingFor(*canvas));
    return kSPNoError;
}

SPErr SetInterpolationPolicy(DRAWBOT_SurfaceRef surface, DRAWBOT_InterpolationPolicy policy) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "SetInterpolationPolicy");
    if (!canvas || policy < 0 || policy > kDRAWBOT_InterpolationPolicy_High) return PF_Err_BAD_CALLBACK_PARAM;
    canvas->policies.interpolation = policy;
    return kSPNoError;
}

SPErr GetInterpolationPolicy(DRAWBOT_SurfaceRef surface, DRAWBOT_InterpolationPolicy* policy) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "GetInterpolationPolicy");
    if (!canvas || !policy) return PF_Err_BAD_CALLBACK_PARAM;
    *policy = canvas->policies.interpolation;
    return kSPNoError;
}

SPErr SetAntiAliasPolicy(DRAWBOT_SurfaceRef surface, DRAWBOT_AntiAliasPolicy policy) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "SetAntiAliasPolicy");
    if (!canvas || policy < 0 || policy > kDRAWBOT_AntiAliasPolicy_High) return PF_Err_BAD_CALLBACK_PARAM;
    canvas->policies.antiAlias = policy;
    return kSPNoError;
}

SPErr GetAntiAliasPolicy(DRAWBOT_SurfaceRef surface, DRAWBOT_AntiAliasPolicy* policy) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "GetAntiAliasPolicy");
    if (!canvas || !policy) return PF_Err_BAD_CALLBACK_PARAM;
    *policy = canvas->policies.antiAlias;
    return kSPNoError;
}

SPErr Flush(DRAWBOT_SurfaceRef surface) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "Flush");
    if (!canvas) return PF_Err_BAD_CALLBACK_PARAM;
    canvas->On().Flush();
    return kSPNoError;
}

SPErr GetTransformToScreenScale(DRAWBOT_SurfaceRef surface, float* scale) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(surface, "GetTransformToScreenScale");
    if (!canvas || !scale) return PF_Err_BAD_CALLBACK_PARAM;
    *scale = canvas->ScreenScale();
    return kSPNoError;
}

template <FixedText Call, auto Function>
using Slot = Served<kDRAWBOT_SurfaceSuiteName, Call, Function>;

}  // namespace

const DRAWBOT_SurfaceSuite1 kDrawbotSurfaceSuite = {
    .PushStateStack = Slot<"PushStateStack", PushStateStack>(),
    .PopStateStack = Slot<"PopStateStack", PopStateStack>(),
    .PaintRect = Slot<"PaintRect", PaintRect>(),
    .FillPath = Slot<"FillPath", FillPath>(),
    .StrokePath = Slot<"StrokePath", StrokePath>(),
    .Clip = Slot<"Clip", Clip>(),
    .GetClipBounds = Slot<"GetClipBounds", GetClipBounds>(),
    .IsWithinClipBounds = Slot<"IsWithinClipBounds", IsWithinClipBounds>(),
    .Transform = Slot<"Transform", Transform>(),
    .DrawString = Slot<"DrawString", DrawString>(),
    .DrawImage = Slot<"DrawImage", DrawImageAt>(),
    .SetInterpolationPolicy = Slot<"SetInterpolationPolicy", SetInterpolationPolicy>(),
    .GetInterpolationPolicy = Slot<"GetInterpolationPolicy", GetInterpolationPolicy>(),
    .SetAntiAliasPolicy = Slot<"SetAntiAliasPolicy", SetAntiAliasPolicy>(),
    .GetAntiAliasPolicy = Slot<"GetAntiAliasPolicy", GetAntiAliasPolicy>(),
    .Flush = Slot<"Flush", Flush>(),
    .GetTransformToScreenScale = Slot<"GetTransformToScreenScale", GetTransformToScreenScale>(),
};

}  // namespace umbrant::host
