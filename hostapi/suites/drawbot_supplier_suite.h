// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Makes and releases drawing objects.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_SupplierSuiteName[] = "DRAWBOT Supplier Suite";
inline constexpr int32_t kDRAWBOT_SupplierSuite_Version1 = 1;

struct DRAWBOT_SupplierSuite1 {
    SPErr (*NewPen)(DRAWBOT_SupplierRef in_supplier_ref, const DRAWBOT_ColorRGBA* in_colorP, float in_size,
                    DRAWBOT_PenRef* out_penP);
    SPErr (*NewBrush)(DRAWBOT_SupplierRef in_supplier_ref, const DRAWBOT_ColorRGBA* in_colorP,
                      DRAWBOT_BrushRef* out_brushP);
    SPErr (*SupportsText)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_supports_textPB);
    SPErr (*GetDefaultFontSize)(DRAWBOT_SupplierRef in_supplier_ref, float* out_font_sizeF);
    SPErr (*NewDefaultFont)(DRAWBOT_SupplierRef in_supplier_ref, float in_font_sizeF, DRAWBOT_FontRef* out_fontP);
    SPErr (*NewImageFromBuffer)(DRAWBOT_SupplierRef in_supplier_ref, int in_width, int in_height, int in_row_bytes,
                                DRAWBOT_PixelLayout in_pl, const void* in_dataP, DRAWBOT_ImageRef* out_imageP);
    SPErr (*NewPath)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_PathRef* out_pathP);
    SPErr (*SupportsPixelLayoutBGRA)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_supports_bgraPB);
    SPErr (*PrefersPixelLayoutBGRA)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_prefers_bgraPB);
    SPErr (*SupportsPixelLayoutARGB)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_supports_argbPB);
    SPErr (*PrefersPixelLayoutARGB)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_prefers_argbPB);
    SPErr (*RetainObject)(DRAWBOT_ObjectRef in_obj_ref);
    SPErr (*ReleaseObject)(DRAWBOT_ObjectRef in_obj_ref);
};
