// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The C library's arithmetic and formatting as the host offers them. Nothing here fails or allocates; a domain error
// gives what the C library gives.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

inline constexpr char kPFANSISuiteName[] = "PF ANSI Suite";
inline constexpr int32_t kPFANSISuiteVersion1 = 1;

struct PF_ANSICallbacksSuite1 {
    /// Arc tangent, in radians. [any]
    A_FpLong (*atan)(A_FpLong);
    /// Angle of the point (x, y) from the x axis, in radians. [any]
    A_FpLong (*atan2)(A_FpLong y, A_FpLong x);
    /// The next whole number upwards. [any]
    A_FpLong (*ceil)(A_FpLong);
    /// Cosine of an angle in radians. [any]
    A_FpLong (*cos)(A_FpLong);
    /// e to the power of the argument. [any]
    A_FpLong (*exp)(A_FpLong);
    /// Absolute value. [any]
    A_FpLong (*fabs)(A_FpLong);
    /// The next whole number downwards. [any]
    A_FpLong (*floor)(A_FpLong);
    /// Remainder of x ÷ y, with the sign of x. [any]
    A_FpLong (*fmod)(A_FpLong x, A_FpLong y);
    /// Length of the vector (x, y). [any]
    A_FpLong (*hypot)(A_FpLong x, A_FpLong y);
    /// Natural logarithm. [any]
    A_FpLong (*log)(A_FpLong);
    /// Logarithm to base 10. [any]
    A_FpLong (*log10)(A_FpLong);
    /// x to the power of y. [any]
    A_FpLong (*pow)(A_FpLong x, A_FpLong y);
    /// Sine of an angle in radians. [any]
    A_FpLong (*sin)(A_FpLong);
    /// Square root. [any]
    A_FpLong (*sqrt)(A_FpLong);
    /// Tangent of an angle in radians. [any]
    A_FpLong (*tan)(A_FpLong);
    /// Formats into the caller's buffer, which must be large enough: no length is passed. Returns the number of
    /// characters without the NUL. Variadic, so it is called through this very type. [any]
    int (*sprintf)(A_char*, const A_char*, ...);
    /// Copies a string with its NUL into the caller's buffer, which must be large enough, and returns that buffer.
    /// [any]
    A_char* (*strcpy)(A_char*, const A_char*);
    /// Arc sine, in radians. [any]
    A_FpLong (*asin)(A_FpLong);
    /// Arc cosine, in radians. [any]
    A_FpLong (*acos)(A_FpLong);
};
