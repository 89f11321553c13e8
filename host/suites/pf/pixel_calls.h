// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Copies, mixes and composites in the shapes that both the World Transform suite and the utility callbacks have.

#include "hostapi/transfer.h"

namespace umbrant::host {

PF_Err CompositeRectCall(PF_ProgPtr effectRef, PF_Rect* sourceRect, A_long opacity, PF_EffectWorld* source,
                         A_long destinationX, A_long destinationY, PF_Field field, PF_XferMode mode,
                         PF_EffectWorld* destination);
PF_Err BlendCall(PF_ProgPtr effectRef, const PF_EffectWorld* first, const PF_EffectWorld* second, PF_Fixed ratio,
                 PF_EffectWorld* destination);
PF_Err CopyCall(PF_ProgPtr effectRef, PF_EffectWorld* source, PF_EffectWorld* destination, PF_Rect* sourceRect,
                PF_Rect* destinationRect);
PF_Err TransferRectCall(PF_ProgPtr effectRef, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                        const PF_Rect* sourceRect, const PF_EffectWorld* source, const PF_CompositeMode* mode,
                        const PF_MaskWorld* mask, A_long destinationX, A_long destinationY,
                        PF_EffectWorld* destination);

}  // namespace umbrant::host
