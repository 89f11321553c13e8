// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Walks a 16-bit world (channels 0 to PF_MAX_CHAN16) pixel by pixel, rows spread over threads. Worlds, reference value
// and rectangle stay the caller's; the first argument is the command record, whole, and not the effect reference. The
// progress pair names the part of the command's progress that the walk represents; equal numbers show none.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/pixels.h"

struct PF_InData;

inline constexpr char kPFIterate16SuiteName[] = "PF iterate16 Suite";
inline constexpr int32_t kPFIterate16SuiteVersion1 = 1;

struct PF_iterate16Suite1 {
    /// Calls `pix_fn` once for every pixel of `area`, with the source and destination pixel at (x, y); null area: the
    /// whole destination. Rows run on several threads at once, in no order. A non-zero result of `pix_fn` ends the walk
    /// and is returned. [any]
    PF_Err (*iterate)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                      const PF_Rect* area, void* refcon,
                      PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out),
                      PF_EffectWorld* dst);
    /// The same with the source shifted by `origin` against the destination; only where both worlds have pixels. [any]
    PF_Err (*iterate_origin)(PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src,
                             const PF_Rect* area, const PF_Point* origin, void* refcon,
                             PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out),
                             PF_EffectWorld* dst);
    /// As iterate_origin, but also where the source has no pixel: there `in` is transparent black. [any]
    PF_Err (*iterate_origin_non_clip_src)(
        PF_InData* in_data, A_long progress_base, A_long progress_final, PF_EffectWorld* src, const PF_Rect* area,
        const PF_Point* origin, void* refcon,
        PF_Err (*pix_fn)(void* refcon, A_long x, A_long y, PF_Pixel16* in, PF_Pixel16* out), PF_EffectWorld* dst);
};

typedef PF_iterate16Suite1 PF_Iterate16Suite1;
