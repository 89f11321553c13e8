// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Walks an 8-bit world pixel by pixel, rows spread over threads.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/pixels.h"

struct PF_InData;

inline constexpr char kPFIterate8SuiteName[] = "PF Iterate8 Suite";
inline constexpr int32_t kPFIterate8SuiteVersion1 = 1;

struct PF_Iterate8Suite1 {
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon,
                      PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                      PF_EffectWorld* dst);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                             PF_EffectWorld* dst);
    PF_Err (*iterate_lut)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                          const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0, A_u_char* g_lut0, A_u_char* b_lut0,
                          PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src)(
        PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src, const PF_Rect* area,
        const PF_Point* origin, void* refcon,
        PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out), PF_EffectWorld* dst);
    PF_Err (*iterate_generic)(A_long iterationsL, void* refconPV,
                              PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i, A_long iterationsL));
};
