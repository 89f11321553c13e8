// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A colour parameter as floating-point colour.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/params.h"

inline constexpr char kPFColorParamSuiteName[] = "PF ColorParamSuite";
inline constexpr int32_t kPFColorParamSuiteVersion1 = 1;

struct PF_ColorParamSuite1 {
    PF_Err (*PF_GetFloatingPointColorFromColorDef)(PF_ProgPtr effect_ref, const PF_ParamDef* color_defP,
                                                   PF_PixelFloat* fp_colorP);
};
