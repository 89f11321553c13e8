// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The scalar names, opaque tags and small records that every other header of the host interface uses.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include <cstddef>
#include <cstdint>

typedef int32_t A_long;
typedef uint32_t A_u_long;
typedef char A_char;
typedef double A_FpLong;
typedef float A_FpShort;
typedef A_long A_Err;
typedef void* A_Handle;
/// 16.16 fixed point: 65536 is 1.
typedef A_long A_Fixed;
typedef A_u_long A_UFixed;
typedef int16_t A_short;
typedef uint16_t A_u_short;
typedef uint8_t A_u_char;
typedef uint8_t A_Boolean;
typedef intptr_t A_intptr_t;
typedef uint64_t A_u_longlong;
typedef A_u_longlong A_HandleSize;
typedef A_u_short A_UTF16Char;
typedef A_char A_LegacyEnumType;

typedef int SInt32;
typedef SInt32 Fixed;
typedef char* Ptr;
typedef Ptr* Handle;
typedef unsigned char Boolean;
typedef uint8_t SPBoolean;
typedef int32_t SPErr;

/// A time or a duration: `value` ÷ `scale` seconds.
struct A_Time {
    A_long value;
    A_u_long scale;
};

/// A ratio.
struct A_Ratio {
    A_long num;
    A_u_long den;
};

/// A point in pixels.
struct A_FloatPoint {
    A_FpLong x;
    A_FpLong y;
};

/// A rectangle in pixels, right and bottom exclusive.
struct A_FloatRect {
    A_FpLong left;
    A_FpLong top;
    A_FpLong right;
    A_FpLong bottom;
};

/// Takes row vectors: the translation is the third row.
struct A_Matrix3 {
    A_FpLong mat[3][3];
};

/// Takes row vectors: the translation is the fourth row.
struct A_Matrix4 {
    A_FpLong mat[4][4];
};

/// A rectangle in pixels, right and bottom exclusive.
struct A_LRect {
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
};

typedef A_LRect A_Rect;

typedef A_long PF_Err;
struct PF_ProgressInfo;
typedef PF_ProgressInfo* PF_ProgPtr;
typedef A_FpShort PF_FpShort;
typedef A_FpLong PF_FpLong;
typedef A_u_long PF_UFixed;
typedef Fixed PF_Fixed;
typedef Boolean PF_Boolean;
typedef Handle PF_Handle;

typedef A_long PF_Stage;
typedef A_long PF_Quality;
typedef A_long PF_ModeFlags;
typedef A_long PF_Field;
typedef A_u_long PF_PixLong;
typedef void* PF_SndSamplePtr;
struct _PF_LayerAudio;
typedef _PF_LayerAudio* PF_LayerAudio;
