// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Options of the effect's panel.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/basic_types.h"

inline constexpr char kPFEffectUISuiteName[] = "PF Effect UI Suite";
inline constexpr int32_t kPFEffectUISuiteVersion1 = 1;

struct PF_EffectUISuite1 {
    /// Names the button that opens the effect's options; the string is the caller's and NUL-terminated. [main]
    PF_Err (*PF_SetOptionsButtonName)(PF_ProgPtr effect_ref, const A_char* nameZ);
};
