// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where a self-drawn parameter gets its drawing reference.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/custom_ui.h"

inline constexpr char kPFEffectCustomUISuiteName[] = "PF Effect Custom UI Suite";
inline constexpr int32_t kPFEffectCustomUISuiteVersion1 = 1;

struct PF_EffectCustomUISuite1 {
    /// The drawing reference of an event's context. It stays the host's and lives as long as the draw event. [main]
    PF_Err (*PF_GetDrawingReference)(PF_ContextH effect_contextH, DRAWBOT_DrawRef* referenceP0);
};
