// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// References and small records of the host's panel drawing.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

typedef uint16_t ADOBESDK_UTF16Char;
typedef uint8_t ADOBESDK_Boolean;
typedef ADOBESDK_UTF16Char DRAWBOT_UTF16Char;
typedef ADOBESDK_Boolean DRAWBOT_Boolean;

struct _DRAWBOT_DrawRef;
struct _DRAWBOT_SupplierRef;
struct _DRAWBOT_SurfaceRef;
struct _DRAWBOT_PenRef;
struct _DRAWBOT_PathRef;
struct _DRAWBOT_BrushRef;
struct _DRAWBOT_ImageRef;
struct _DRAWBOT_FontRef;
struct _DRAWBOT_ObjectRef;

typedef _DRAWBOT_DrawRef* DRAWBOT_DrawRef;
typedef _DRAWBOT_SupplierRef* DRAWBOT_SupplierRef;
typedef _DRAWBOT_SurfaceRef* DRAWBOT_SurfaceRef;
typedef _DRAWBOT_PenRef* DRAWBOT_PenRef;
typedef _DRAWBOT_PathRef* DRAWBOT_PathRef;
typedef _DRAWBOT_BrushRef* DRAWBOT_BrushRef;
typedef _DRAWBOT_ImageRef* DRAWBOT_ImageRef;
typedef _DRAWBOT_FontRef* DRAWBOT_FontRef;
typedef _DRAWBOT_ObjectRef* DRAWBOT_ObjectRef;

typedef int DRAWBOT_FillType;
typedef int DRAWBOT_PixelLayout;
typedef int DRAWBOT_TextAlignment;
typedef int DRAWBOT_TextTruncation;
typedef int DRAWBOT_InterpolationPolicy;
typedef int DRAWBOT_AntiAliasPolicy;

inline constexpr DRAWBOT_FillType kDRAWBOT_FillType_EvenOdd = 0;
inline constexpr DRAWBOT_FillType kDRAWBOT_FillType_Winding = 1;
inline constexpr DRAWBOT_FillType kDRAWBOT_FillType_Default = 1;

inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_24RGB = 0;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_24BGR = 1;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_32RGB = 2;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_32BGR = 3;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_32ARGB_Straight = 4;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_32ARGB_Premul = 5;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_32BGRA_Straight = 6;
inline constexpr DRAWBOT_PixelLayout kDRAWBOT_PixelLayout_32BGRA_Premul = 7;

inline constexpr DRAWBOT_TextAlignment kDRAWBOT_TextAlignment_Left = 0;
inline constexpr DRAWBOT_TextAlignment kDRAWBOT_TextAlignment_Center = 1;
inline constexpr DRAWBOT_TextAlignment kDRAWBOT_TextAlignment_Right = 2;
inline constexpr DRAWBOT_TextAlignment kDRAWBOT_TextAlignment_Default = 0;

inline constexpr DRAWBOT_TextTruncation kDRAWBOT_TextTruncation_None = 0;
inline constexpr DRAWBOT_TextTruncation kDRAWBOT_TextTruncation_End = 1;
inline constexpr DRAWBOT_TextTruncation kDRAWBOT_TextTruncation_EndEllipsis = 2;
inline constexpr DRAWBOT_TextTruncation kDRAWBOT_TextTruncation_PathEllipsis = 3;

inline constexpr DRAWBOT_InterpolationPolicy kDRAWBOT_InterpolationPolicy_None = 0;
inline constexpr DRAWBOT_InterpolationPolicy kDRAWBOT_InterpolationPolicy_Med = 1;
inline constexpr DRAWBOT_InterpolationPolicy kDRAWBOT_InterpolationPolicy_High = 2;
inline constexpr DRAWBOT_InterpolationPolicy kDRAWBOT_InterpolationPolicy_Default = 0;

inline constexpr DRAWBOT_AntiAliasPolicy kDRAWBOT_AntiAliasPolicy_None = 0;
inline constexpr DRAWBOT_AntiAliasPolicy kDRAWBOT_AntiAliasPolicy_Med = 1;
inline constexpr DRAWBOT_AntiAliasPolicy kDRAWBOT_AntiAliasPolicy_High = 2;
inline constexpr DRAWBOT_AntiAliasPolicy kDRAWBOT_AntiAliasPolicy_Default = 0;

/// Straight alpha, 0 to 1 per channel.
struct DRAWBOT_ColorRGBA {
    float red;
    float green;
    float blue;
    float alpha;
};

/// In panel pixels.
struct DRAWBOT_PointF32 {
    float x;
    float y;
};

/// In panel pixels: a corner and a size.
struct DRAWBOT_RectF32 {
    float left;
    float top;
    float width;
    float height;
};

/// In panel pixels: a corner and a size.
struct DRAWBOT_Rect32 {
    int left;
    int top;
    int width;
    int height;
};

/// Takes row vectors: the translation is the third row.
struct DRAWBOT_MatrixF32 {
    float mat[3][3];
};
