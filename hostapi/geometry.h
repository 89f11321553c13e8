// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Points, rectangles and matrices. Right and bottom are exclusive; matrices take row vectors.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

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
struct PF_LRect {
    A_long left;
    A_long top;
    A_long right;
    A_long bottom;
};

typedef PF_LRect PF_Rect;
typedef PF_Rect PF_UnionableRect;

struct PF_RationalScale {
    A_long num;
    A_u_long den;
};

struct PF_FixedPoint {
    PF_Fixed x;
    PF_Fixed y;
};

struct PF_FixedRect {
    PF_Fixed left;
    PF_Fixed top;
    PF_Fixed right;
    PF_Fixed bottom;
};

struct PF_Matrix {
    PF_Fixed mat[3][3];
};

struct PF_FloatMatrix {
    PF_FpLong mat[3][3];
};
