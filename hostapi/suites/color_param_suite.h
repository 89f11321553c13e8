// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Colour parameters in floating point.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/params.h"

inline constexpr char kPFColorParamSuiteName[] = "PF ColorParamSuite";
inline constexpr int32_t kPFColorParamSuiteVersion1 = 1;

struct PF_ColorParamSuite1 {
    /// The colour of a checked-out colour parameter, 0 to 1 per channel and beyond where the project is not clamped.
    /// The definition and the result are the caller's. [any]
    PF_Err (*PF_GetFloatingPointColorFromColorDef)(PF_ProgPtr effect_ref, const PF_ParamDef* color_defP,
                                                   PF_PixelFloat* fp_colorP);
};
