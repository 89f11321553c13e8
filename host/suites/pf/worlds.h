// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Temporary worlds that effects make. Every thread.

#include "hostapi/pixels.h"

namespace umbrant::host {

/// A world of the format, at least 1 x 1 and at most 30000 x 30000, its record copied into `*world`. The pixels are
/// zero when `clear` is non-zero, otherwise anything but. PF_Err_BAD_CALLBACK_PARAM for a wrong size or format,
/// PF_Err_OUT_OF_MEMORY when it cannot be had.
PF_Err NewEffectWorld(A_long width, A_long height, bool clear, PF_PixelFormat format, PF_EffectWorld* world);

/// Frees the pixels and zeroes the record. A world that NewEffectWorld did not make, or that was disposed of, is
/// reported and refused.
PF_Err DisposeEffectWorld(PF_EffectWorld* world);

}  // namespace umbrant::host
