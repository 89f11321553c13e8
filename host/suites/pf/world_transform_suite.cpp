// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF World Transform Suite" 1: the host's compositing.

#include "hostapi/suites/world_transform_suite.h"

#include <algorithm>

#include "host/compositing/blend_worlds.h"
#include "host/compositing/copy_world.h"
#include "host/compositing/transfer/transfer_rect.h"
#include "host/suites/pf/pixel_calls.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"
#include "host/suites/timed_call.h"

namespace umbrant::host {

PF_Err CompositeRectCall(PF_ProgPtr effectRef, PF_Rect* sourceRect, A_long opacity, PF_EffectWorld* source,
                         A_long destinationX, A_long destinationY, PF_Field field, PF_XferMode mode,
                         PF_EffectWorld* destination) {
    if (!EffectRef::Of(effectRef, "composite_rect")) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kTransfer);
    PF_CompositeMode composite{};
    composite.xfer = mode;
    composite.opacity = static_cast<A_u_char>(std::clamp<A_long>(opacity, 0, 255));
    return TransferRect(PF_Quality_HI, PF_MF_Alpha_STRAIGHT, field, sourceRect, source, &composite, nullptr,
                        destinationX, destinationY, destination);
}

PF_Err BlendCall(PF_ProgPtr effectRef, const PF_EffectWorld* first, const PF_EffectWorld* second, PF_Fixed ratio,
                 PF_EffectWorld* destination) {
    if (!EffectRef::Of(effectRef, "blend")) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kTransfer);
    return BlendWorlds(first, second, ratio, destination);
}

PF_Err CopyCall(PF_ProgPtr effectRef, PF_EffectWorld* source, PF_EffectWorld* destination, PF_Rect* sourceRect,
                PF_Rect* destinationRect) {
    if (!EffectRef::Of(effectRef, "copy")) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kFetch);
    return CopyWorld(source, destination, sourceRect, destinationRect);
}

PF_Err TransferRectCall(PF_ProgPtr effectRef, PF_Quality quality, PF_ModeFlags flags, PF_Field field,
                        const PF_Rect* sourceRect, const PF_EffectWorld* source, const PF_CompositeMode* mode,
                        const PF_MaskWorld* mask, A_long destinationX, A_long destinationY,
                        PF_EffectWorld* destination) {
    if (!EffectRef::Of(effectRef, "transfer_rect")) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kTransfer);
    return TransferRect(quality, flags, field, sourceRect, source, mode, mask, destinationX, destinationY, destination);
}

template <FixedText Call, auto Function>
using Slot = Served<kPFWorldTransformSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kPFWorldTransformSuiteName, Call>;

const PF_WorldTransformSuite1 kWorldTransformSuite = {
    .composite_rect = Slot<"composite_rect", CompositeRectCall>(),
    .blend = Slot<"blend", BlendCall>(),
    .convolve = NoSlot<"convolve">(),
    .copy = Slot<"copy", CopyCall>(),
    .copy_hq = Slot<"copy_hq", CopyCall>(),
    .transfer_rect = Slot<"transfer_rect", TransferRectCall>(),
    .transform_world = NoSlot<"transform_world">(),
};

}  // namespace umbrant::host
