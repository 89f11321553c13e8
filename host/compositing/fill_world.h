// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One colour into a rectangle of a world, whatever its depth.

#include "hostapi/pixels.h"

namespace umbrant::host {

/// Fills `rect` (null: the whole world), clipped to the world, with `color` (straight, 0..1 per channel) as the world's
/// depth has it. PF_Err_BAD_CALLBACK_PARAM for a null world or one that this host did not make.
PF_Err FillWorld(const PF_PixelFloat& color, const PF_Rect* rect, PF_EffectWorld* world);

}  // namespace umbrant::host
