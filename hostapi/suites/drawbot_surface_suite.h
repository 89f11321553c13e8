// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Draws on a panel surface. Coordinates are panel pixels, y downwards. A host that knows only version 1 may lack the
// last slot, so it must not be called through this version.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error, and only after a zero may an out-parameter be read.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_SurfaceSuiteName[] = "DRAWBOT Surface Suite";
inline constexpr int32_t kDRAWBOT_SurfaceSuite_Version1 = 1;

struct DRAWBOT_SurfaceSuite1 {
    /// Remembers transform, clip and policies; answered by one PopStateStack. [main]
    SPErr (*PushStateStack)(DRAWBOT_SurfaceRef in_surface_ref);
    /// Restores what the last PushStateStack remembered. [main]
    SPErr (*PopStateStack)(DRAWBOT_SurfaceRef in_surface_ref);
    /// Fills a rectangle with a colour. [main]
    SPErr (*PaintRect)(DRAWBOT_SurfaceRef in_surface_ref, const DRAWBOT_ColorRGBA* in_colorP,
                       const DRAWBOT_RectF32* in_rectPR);
    /// Fills a path with a brush, by the even-odd or the winding rule. [main]
    SPErr (*FillPath)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_BrushRef in_brush_ref, DRAWBOT_PathRef in_path_ref,
                      DRAWBOT_FillType in_fill_type);
    /// Draws a path's outline with a pen. [main]
    SPErr (*StrokePath)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_PenRef in_pen_ref, DRAWBOT_PathRef in_path_ref);
    /// Narrows all later drawing to a rectangle, until the state is popped. [main]
    SPErr (*Clip)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_SupplierRef in_supplier_ref,
                  const DRAWBOT_Rect32* in_rectPR);
    /// The rectangle outside which nothing is drawn. [main]
    SPErr (*GetClipBounds)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_Rect32* out_rectPR);
    /// Whether a rectangle is inside that one. [main]
    SPErr (*IsWithinClipBounds)(DRAWBOT_SurfaceRef in_surface_ref, const DRAWBOT_Rect32* in_rectPR,
                                DRAWBOT_Boolean* out_withinPB);
    /// Multiplies a matrix onto the current transform, until the state is popped. [main]
    SPErr (*Transform)(DRAWBOT_SurfaceRef in_surface_ref, const DRAWBOT_MatrixF32* in_matrixP);
    /// Draws NUL-terminated UTF-16 text at a point, aligned about it and cut at `in_truncation_width` pixels as the
    /// style says. [main]
    SPErr (*DrawString)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_BrushRef in_brush_ref, DRAWBOT_FontRef in_font_ref,
                        const DRAWBOT_UTF16Char* in_stringP, const DRAWBOT_PointF32* in_originP,
                        DRAWBOT_TextAlignment in_alignment_style, DRAWBOT_TextTruncation in_truncation_style,
                        float in_truncation_width);
    /// Draws an image with its top-left at a point; alpha 0 to 1 fades the whole. [main]
    SPErr (*DrawImage)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_ImageRef in_image_ref,
                       const DRAWBOT_PointF32* in_originP, float in_alpha);
    /// How images are resampled when scaled. [main]
    SPErr (*SetInterpolationPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_InterpolationPolicy in_interp);
    /// How images are resampled at present. [main]
    SPErr (*GetInterpolationPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_InterpolationPolicy* out_interpP);
    /// How smoothly edges are drawn. [main]
    SPErr (*SetAntiAliasPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_AntiAliasPolicy in_policy);
    /// How smoothly edges are drawn at present. [main]
    SPErr (*GetAntiAliasPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_AntiAliasPolicy* out_policyP);
    /// Sends what was drawn so far to the screen. [main]
    SPErr (*Flush)(DRAWBOT_SurfaceRef in_surface_ref);
    /// Screen pixels per panel pixel. Absent in hosts that know only version 1 of this suite. [main]
    SPErr (*GetTransformToScreenScale)(DRAWBOT_SurfaceRef in_surface_ref, float* out_scale);
};
