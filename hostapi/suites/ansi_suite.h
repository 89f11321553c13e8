// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The C library's mathematics and formatting, as the host supplies them.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

inline constexpr char kPFANSISuiteName[] = "PF ANSI Suite";
inline constexpr int32_t kPFANSISuiteVersion1 = 1;

struct PF_ANSICallbacksSuite1 {
    A_FpLong (*atan)(A_FpLong);
    A_FpLong (*atan2)(A_FpLong y, A_FpLong x);
    A_FpLong (*ceil)(A_FpLong);
    A_FpLong (*cos)(A_FpLong);
    A_FpLong (*exp)(A_FpLong);
    A_FpLong (*fabs)(A_FpLong);
    A_FpLong (*floor)(A_FpLong);
    A_FpLong (*fmod)(A_FpLong x, A_FpLong y);
    A_FpLong (*hypot)(A_FpLong x, A_FpLong y);
    A_FpLong (*log)(A_FpLong);
    A_FpLong (*log10)(A_FpLong);
    A_FpLong (*pow)(A_FpLong x, A_FpLong y);
    A_FpLong (*sin)(A_FpLong);
    A_FpLong (*sqrt)(A_FpLong);
    A_FpLong (*tan)(A_FpLong);
    int (*sprintf)(A_char*, const A_char*, ...);
    A_char* (*strcpy)(A_char*, const A_char*);
    A_FpLong (*asin)(A_FpLong);
    A_FpLong (*acos)(A_FpLong);
};
