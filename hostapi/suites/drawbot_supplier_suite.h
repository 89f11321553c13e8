// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Makes what a surface draws with. Every object that a slot named "New" hands out is the caller's, who gives it back
// with ReleaseObject.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error, and only after a zero may an out-parameter be read.

#include "hostapi/drawbot_types.h"

inline constexpr char kDRAWBOT_SupplierSuiteName[] = "DRAWBOT Supplier Suite";
inline constexpr int32_t kDRAWBOT_SupplierSuite_Version1 = 1;

struct DRAWBOT_SupplierSuite1 {
    /// A pen of one colour; the size is the line's width in pixels. The caller releases it. [main]
    SPErr (*NewPen)(DRAWBOT_SupplierRef in_supplier_ref, const DRAWBOT_ColorRGBA* in_colorP, float in_size,
                    DRAWBOT_PenRef* out_penP);
    /// A brush of one colour. The caller releases it. [main]
    SPErr (*NewBrush)(DRAWBOT_SupplierRef in_supplier_ref, const DRAWBOT_ColorRGBA* in_colorP,
                      DRAWBOT_BrushRef* out_brushP);
    /// Whether strings can be drawn at all. [main]
    SPErr (*SupportsText)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_supports_textPB);
    /// The size of the panel's own type, in points. [main]
    SPErr (*GetDefaultFontSize)(DRAWBOT_SupplierRef in_supplier_ref, float* out_font_sizeF);
    /// The panel's own typeface in a size. The caller releases it. [main]
    SPErr (*NewDefaultFont)(DRAWBOT_SupplierRef in_supplier_ref, float in_font_sizeF, DRAWBOT_FontRef* out_fontP);
    /// An image from pixels in memory, `in_row_bytes` from row to row, top row first. The caller keeps the buffer alive
    /// while the image is used, and releases the image. [main]
    SPErr (*NewImageFromBuffer)(DRAWBOT_SupplierRef in_supplier_ref, int in_width, int in_height, int in_row_bytes,
                                DRAWBOT_PixelLayout in_pl, const void* in_dataP, DRAWBOT_ImageRef* out_imageP);
    /// An empty path, to be built with the path suite. The caller releases it. [main]
    SPErr (*NewPath)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_PathRef* out_pathP);
    /// Whether images may come as blue, green, red, alpha. [main]
    SPErr (*SupportsPixelLayoutBGRA)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_supports_bgraPB);
    /// Whether blue, green, red, alpha is the faster order. [main]
    SPErr (*PrefersPixelLayoutBGRA)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_prefers_bgraPB);
    /// Whether images may come as alpha, red, green, blue. [main]
    SPErr (*SupportsPixelLayoutARGB)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_supports_argbPB);
    /// Whether alpha, red, green, blue is the faster order. [main]
    SPErr (*PrefersPixelLayoutARGB)(DRAWBOT_SupplierRef in_supplier_ref, DRAWBOT_Boolean* out_prefers_argbPB);
    /// Counts one more user of an object; answered by one more ReleaseObject. [main]
    SPErr (*RetainObject)(DRAWBOT_ObjectRef in_obj_ref);
    /// Counts one user less, and frees the object at the last. An image or another reference is passed by pointer cast.
    /// [main]
    SPErr (*ReleaseObject)(DRAWBOT_ObjectRef in_obj_ref);
};
