// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Walks an 8-bit world pixel by pixel, rows spread over threads. Worlds, reference value and rectangle stay the
// caller's; the first argument is the command record, whole, and not the effect reference. The progress pair names the
// part of the command's progress that the walk represents; equal numbers show none.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/pixels.h"

struct PF_InData;

inline constexpr char kPFIterate8SuiteName[] = "PF Iterate8 Suite";
inline constexpr int32_t kPFIterate8SuiteVersion1 = 1;

struct PF_Iterate8Suite1 {
    /// Calls `pix_fn` once for every pixel of `area`, with the source and destination pixel at (x, y); null area: the
    /// whole destination. Rows run on several threads at once, in no order. A non-zero result of `pix_fn` ends the walk
    /// and is returned. [any]
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon,
                      PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                      PF_EffectWorld* dst);
    /// The same with the source shifted by `origin` against the destination; only where both worlds have pixels. [any]
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out),
                             PF_EffectWorld* dst);
    /// Looks every channel up in a table of 256 bytes of its own; a null table leaves its channel. [any]
    PF_Err (*iterate_lut)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                          const PF_Rect* area, A_u_char* a_lut0, A_u_char* r_lut0, A_u_char* g_lut0, A_u_char* b_lut0,
                          PF_EffectWorld* dst);
    /// As iterate_origin, but also where the source has no pixel: there `in` is transparent black. [any]
    PF_Err (*iterate_origin_non_clip_src)(
        PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src, const PF_Rect* area,
        const PF_Point* origin, void* refcon,
        PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out), PF_EffectWorld* dst);
    /// Calls `fn_func` once for every i below `iterationsL`, on several threads; PF_Iterations_ONCE_PER_PROCESSOR asks
    /// for one call per core. A non-zero result ends the loop and is returned. [any]
    PF_Err (*iterate_generic)(A_long iterationsL, void* refconPV,
                              PF_Err (*fn_func)(void* refconPV, A_long thread_indexL, A_long i, A_long iterationsL));
};
