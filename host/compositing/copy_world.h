// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Pixels of one world into another, alpha and all.

#include "hostapi/pixels.h"

namespace umbrant::host {

/// Copies `sourceRect` of `source` (null: the whole) onto `destinationRect` of `destination` (null: the whole; with a
/// source rectangle given, too). Both worlds must have one format. Rectangles of one size are copied pixel by pixel and
/// clipped to both worlds; otherwise each destination pixel takes the nearest source pixel. The two may be one world
/// and overlap.
/// PF_Err_BAD_CALLBACK_PARAM for a null world, a world that this host did not make, or two formats;
/// PF_Err_OUT_OF_MEMORY when an overlapping copy finds no memory.
PF_Err CopyWorld(const PF_EffectWorld* source, PF_EffectWorld* destination, const PF_Rect* sourceRect,
                 const PF_Rect* destinationRect);

}  // namespace umbrant::host
