// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Draws on a panel surface. A host that knows only version 1 may lack the last slot.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_SurfaceSuiteName[] = "DRAWBOT Surface Suite";
inline constexpr int32_t kDRAWBOT_SurfaceSuite_Version1 = 1;

struct DRAWBOT_SurfaceSuite1 {
    SPErr (*PushStateStack)(DRAWBOT_SurfaceRef in_surface_ref);
    SPErr (*PopStateStack)(DRAWBOT_SurfaceRef in_surface_ref);
    SPErr (*PaintRect)(DRAWBOT_SurfaceRef in_surface_ref, const DRAWBOT_ColorRGBA* in_colorP,
                       const DRAWBOT_RectF32* in_rectPR);
    SPErr (*FillPath)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_BrushRef in_brush_ref, DRAWBOT_PathRef in_path_ref,
                      DRAWBOT_FillType in_fill_type);
    SPErr (*StrokePath)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_PenRef in_pen_ref, DRAWBOT_PathRef in_path_ref);
    SPErr (*Clip)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_SupplierRef in_supplier_ref,
                  const DRAWBOT_Rect32* in_rectPR);
    SPErr (*GetClipBounds)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_Rect32* out_rectPR);
    SPErr (*IsWithinClipBounds)(DRAWBOT_SurfaceRef in_surface_ref, const DRAWBOT_Rect32* in_rectPR,
                                DRAWBOT_Boolean* out_withinPB);
    SPErr (*Transform)(DRAWBOT_SurfaceRef in_surface_ref, const DRAWBOT_MatrixF32* in_matrixP);
    SPErr (*DrawString)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_BrushRef in_brush_ref, DRAWBOT_FontRef in_font_ref,
                        const DRAWBOT_UTF16Char* in_stringP, const DRAWBOT_PointF32* in_originP,
                        DRAWBOT_TextAlignment in_alignment_style, DRAWBOT_TextTruncation in_truncation_style,
                        float in_truncation_width);
    SPErr (*DrawImage)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_ImageRef in_image_ref,
                       const DRAWBOT_PointF32* in_originP, float in_alpha);
    SPErr (*SetInterpolationPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_InterpolationPolicy in_interp);
    SPErr (*GetInterpolationPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_InterpolationPolicy* out_interpP);
    SPErr (*SetAntiAliasPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_AntiAliasPolicy in_policy);
    SPErr (*GetAntiAliasPolicy)(DRAWBOT_SurfaceRef in_surface_ref, DRAWBOT_AntiAliasPolicy* out_policyP);
    SPErr (*Flush)(DRAWBOT_SurfaceRef in_surface_ref);
    SPErr (*GetTransformToScreenScale)(DRAWBOT_SurfaceRef in_surface_ref, float* out_scale);
};
