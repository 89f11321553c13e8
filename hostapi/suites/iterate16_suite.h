// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Walks a 16-bit world pixel by pixel, rows spread over threads.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/pixels.h"

struct PF_InData;

inline constexpr char kPFIterate16SuiteName[] = "PF iterate16 Suite";
inline constexpr int32_t kPFIterate16SuiteVersion1 = 1;

struct PF_iterate16Suite1 {
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon,
                      PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out),
                      PF_EffectWorld* dst);
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out),
                             PF_EffectWorld* dst);
    PF_Err (*iterate_origin_non_clip_src)(
        PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src, const PF_Rect* area,
        const PF_Point* origin, void* refcon,
        PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out), PF_EffectWorld* dst);
};

typedef PF_iterate16Suite1 PF_Iterate16Suite1;
