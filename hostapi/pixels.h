// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pixels (alpha, red, green, blue; straight alpha), the world that holds them, and the per-pixel callbacks. A world's
// rows lie `rowbytes` apart, which may exceed the width.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/geometry.h"

/// 8 bits per channel, 0 to 255.
struct PF_Pixel {
    A_u_char alpha;
    A_u_char red;
    A_u_char green;
    A_u_char blue;
};

typedef PF_Pixel PF_Pixel8;
typedef PF_Pixel PF_UnionablePixel;

/// 16 bits per channel, 0 to PF_MAX_CHAN16 = 32768.
struct PF_Pixel16 {
    A_u_short alpha;
    A_u_short red;
    A_u_short green;
    A_u_short blue;
};

/// 32-bit float per channel, 0 to 1 and beyond.
struct PF_PixelFloat {
    PF_FpShort alpha;
    PF_FpShort red;
    PF_FpShort green;
    PF_FpShort blue;
};

typedef PF_PixelFloat PF_Pixel32;
struct _PF_PixelOpaque;
typedef _PF_PixelOpaque* PF_PixelOpaquePtr;
typedef PF_Pixel* PF_PixelPtr;

typedef A_long PF_WorldFlags;

inline constexpr PF_WorldFlags PF_WorldFlag_DEEP = 1;
inline constexpr PF_WorldFlags PF_WorldFlag_WRITEABLE = 2;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED0 = 16777216;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED1 = 33554432;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED2 = 67108864;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED3 = 134217728;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED4 = 268435456;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED5 = 536870912;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED6 = 1073741824;
inline constexpr PF_WorldFlags PF_WorldFlag_RESERVED = static_cast<PF_WorldFlags>(0x80000000u);

/// A world: a picture in memory, and also the value of a layer parameter.
struct PF_LayerDef {
    void* reserved0;
    void* reserved1;
    PF_WorldFlags world_flags;
    /// The top-left pixel; 8-bit by type, of the depth that the render has in truth.
    PF_PixelPtr data;
    /// Bytes from one row to the next.
    A_long rowbytes;
    /// Size in pixels.
    A_long width;
    A_long height;
    /// The smallest rectangle that holds everything not transparent, or a larger one.
    PF_UnionableRect extent_hint;
    void* platform_ref;
    A_long reserved_long1;
    void* reserved_long4;
    /// A pixel's width over its height.
    PF_RationalScale pix_aspect_ratio;
    void* reserved_long2;
    /// Where the top-left pixel is in the layer, in downsampled pixels.
    A_long origin_x;
    A_long origin_y;
    A_long reserved_long3;
    /// Declaring a layer parameter: PF_LayerDefault_MYSELF or PF_LayerDefault_NONE.
    A_long dephault;
};

typedef PF_LayerDef PF_EffectWorld;
typedef PF_LayerDef* PF_EffectWorldPtr;

typedef A_long PF_PixelFormat;

inline constexpr PF_PixelFormat PF_PixelFormat_ARGB32 = 1650946657;
inline constexpr PF_PixelFormat PF_PixelFormat_ARGB64 = 909206881;
inline constexpr PF_PixelFormat PF_PixelFormat_ARGB128 = 842229089;
inline constexpr PF_PixelFormat PF_PixelFormat_GPU_BGRA128 = 1094992704;
inline constexpr PF_PixelFormat PF_PixelFormat_RESERVED = 1631863616;
inline constexpr PF_PixelFormat PF_PixelFormat_BGRA32 = 1634887522;
inline constexpr PF_PixelFormat PF_PixelFormat_VUYA32 = 1635349878;
inline constexpr PF_PixelFormat PF_PixelFormat_NTSCDV25 = 846100068;
inline constexpr PF_PixelFormat PF_PixelFormat_PALDV25 = 846231140;
inline constexpr PF_PixelFormat PF_PixelFormat_INVALID = 1717854562;
inline constexpr PF_PixelFormat PF_PixelFormat_FORCE_LONG_INT = static_cast<PF_PixelFormat>(0xFFFFFFFFu);

typedef A_long PF_NewWorldFlags;

inline constexpr PF_NewWorldFlags PF_NewWorldFlag_NONE = 0;
inline constexpr PF_NewWorldFlags PF_NewWorldFlag_CLEAR_PIXELS = 1;
inline constexpr PF_NewWorldFlags PF_NewWorldFlag_DEEP_PIXELS = 2;
inline constexpr PF_NewWorldFlags PF_NewWorldFlag_RESERVED0 = 4;
inline constexpr PF_NewWorldFlags PF_NewWorldFlag_RESERVED1 = 8;

/// What an iterate call calls once per pixel, from several threads at once; x and y are the destination pixel's place.
/// Both pixels are valid for the one call. A non-zero result ends the walk and becomes its result. [any]
typedef PF_Err (*PF_IteratePixel8Func)(void* refconP, A_long xL, A_long yL, PF_Pixel* inP, PF_Pixel* outP);
/// The same for 16-bit worlds. [any]
typedef PF_Err (*PF_IteratePixel16Func)(void* refconP, A_long xL, A_long yL, PF_Pixel16* inP, PF_Pixel16* outP);
/// The same for 32-bit float worlds. [any]
typedef PF_Err (*PF_IteratePixelFloatFunc)(void* refconP, A_long xL, A_long yL, PF_PixelFloat* inP,
                                           PF_PixelFloat* outP);

inline constexpr A_long PF_Iterations_ONCE_PER_PROCESSOR = -1;
