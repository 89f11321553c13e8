// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Points, rectangles and matrices. Right and bottom are exclusive; matrices take row vectors.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

/// A point in pixels, under either pair of names.
struct PF_Point {
    union {
        A_long x;
        A_long h;
    };
    union {
        A_long y;
        A_long v;
    };
};

/// A rectangle in pixels; empty where right is not beyond left or bottom not beyond top.
struct PF_LRect {
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
};

typedef PF_LRect PF_Rect;
typedef PF_Rect PF_UnionableRect;

/// A ratio.
struct PF_RationalScale {
    A_long num;
    A_u_long den;
};

/// A point in 16.16 fixed pixels.
struct PF_FixedPoint {
    PF_Fixed x;
    PF_Fixed y;
};

/// A rectangle in 16.16 fixed pixels.
struct PF_FixedRect {
    PF_Fixed left;
    PF_Fixed top;
    PF_Fixed right;
    PF_Fixed bottom;
};

/// 16.16 fixed; the translation is the third row.
struct PF_Matrix {
    PF_Fixed mat[3][3];
};

/// The translation is the third row.
struct PF_FloatMatrix {
    PF_FpLong mat[3][3];
};
