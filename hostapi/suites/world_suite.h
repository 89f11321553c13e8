// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Temporary worlds and their pixel format.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/pixels.h"

inline constexpr char kPFWorldSuiteName[] = "PF World Suite";
inline constexpr int32_t kPFWorldSuiteVersion2 = 2;

struct PF_WorldSuite2 {
    PF_Err (*PF_NewWorld)(PF_ProgPtr effect_ref, A_long widthL, A_long heightL, PF_Boolean clear_pixB,
                          PF_PixelFormat pixel_format, PF_EffectWorld* worldP);
    PF_Err (*PF_DisposeWorld)(PF_ProgPtr effect_ref, PF_EffectWorld* worldP);
    PF_Err (*PF_GetPixelFormat)(const PF_EffectWorld* worldP, PF_PixelFormat* pixel_formatP);
};
