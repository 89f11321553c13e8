// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Walks a 32-bit float world pixel by pixel, rows spread over threads.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/pixels.h"

struct PF_InData;

inline constexpr char kPFIterateFloatSuiteName[] = "PF iterateFloat Suite";
inline constexpr int32_t kPFIterateFloatSuiteVersion1 = 1;

struct PF_iterateFloatSuite1 {
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon, PF_IteratePixelFloatFunc pix_fn, PF_EffectWorld* dst);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon, PF_IteratePixelFloatFunc pix_fn,
                             PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src)(PF_InData* in_data, A_long progress_base, A_long progress_final,
                                          PF_EffectWorld* src, const PF_Rect* area, const PF_Point* origin,
                                          void* refcon, PF_IteratePixelFloatFunc pix_fn, PF_EffectWorld* dst);
};

typedef PF_iterateFloatSuite1 PF_IterateFloatSuite1;
