// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Temporary worlds and their pixel format.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/pixels.h"

inline constexpr char kPFWorldSuiteName[] = "PF World Suite";
inline constexpr int32_t kPFWorldSuiteVersion2 = 2;

struct PF_WorldSuite2 {
    /// Allocates a world of a size in pixels and a format, zeroed where `clear_pixB` is not 0, into the caller's
    /// record. The caller frees it with PF_DisposeWorld; rows may be padded. [any]
    PF_Err (*PF_NewWorld)(PF_ProgPtr effect_ref, A_long widthL, A_long heightL, PF_Boolean clear_pixB,
                          PF_PixelFormat pixel_format, PF_EffectWorld* worldP);
    /// Frees the pixels of a world of PF_NewWorld; the record is the caller's. [any]
    PF_Err (*PF_DisposeWorld)(PF_ProgPtr effect_ref, PF_EffectWorld* worldP);
    /// The format of any world that the host handed out. [any]
    PF_Err (*PF_GetPixelFormat)(const PF_EffectWorld* worldP, PF_PixelFormat* pixel_formatP);
};
