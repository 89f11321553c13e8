// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Options of the effect's panel.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

inline constexpr char kPFEffectUISuiteName[] = "PF Effect UI Suite";
inline constexpr int32_t kPFEffectUISuiteVersion1 = 1;

struct PF_EffectUISuite1 {
    PF_Err (*PF_SetOptionsButtonName)(PF_ProgPtr effect_ref, const A_char* nameZ);
};
