// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where a self-drawn parameter gets its drawing reference.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/custom_ui.h"

inline constexpr char kPFEffectCustomUISuiteName[] = "PF Effect Custom UI Suite";
inline constexpr int32_t kPFEffectCustomUISuiteVersion1 = 1;

struct PF_EffectCustomUISuite1 {
    PF_Err (*PF_GetDrawingReference)(PF_ContextH effect_contextH, DRAWBOT_DrawRef* referenceP0);
};
