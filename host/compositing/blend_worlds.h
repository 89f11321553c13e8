// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The host's small pixel services other than transfer_rect: a mix of two worlds, and alpha multiplied in or out.

#include "hostapi/pixels.h"

namespace umbrant::host {

/// destination = first x (1 - ratio) + second x ratio, channel by channel, over the part that all three worlds share.
/// `ratio` is 16.16 fixed, clamped to 0..1. PF_Err_BAD_CALLBACK_PARAM for null worlds, worlds that this host did not
/// make, or differing formats.
PF_Err BlendWorlds(const PF_EffectWorld* first, const PF_EffectWorld* second, PF_Fixed ratio,
                   PF_EffectWorld* destination);

/// Multiplies alpha into the colours of `source` over the background `color` (straight, 0..1) when `forward`, or takes
/// it out again; the result goes to `destination`, which may be the source. Pixels without alpha come out as 0 in the
/// way back. Errors as above.
PF_Err PremultiplyWorld(const PF_EffectWorld* source, const PF_PixelFloat& color, bool forward,
                        PF_EffectWorld* destination);

}  // namespace umbrant::host
