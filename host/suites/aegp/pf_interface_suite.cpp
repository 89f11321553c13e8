// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "AEGP PF Interface Suite" 1: from an effect reference to its layer and its handle. There is one layer, whose time is
// the composition's.

#include "hostapi/suites/aegp_pf_interface_suite.h"

#include "host/suites/aegp/tokens.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err GetEffectLayer(PF_ProgPtr effectRef, AEGP_LayerH* layer) {
    EffectRef* effect = EffectRef::Of(effectRef, "AEGP_GetEffectLayer");
    if (!effect || !layer) return A_Err_PARAMETER;
    *layer = reinterpret_cast<AEGP_LayerH>(LayerToken(effect->services));
    return A_Err_NONE;
}

/// The plug-in id is not asked: an effect without one passes 0.
PF_Err GetNewEffectForEffect(AEGP_PluginID, PF_ProgPtr effectRef, AEGP_EffectRefH* reference) {
    EffectRef* effect = EffectRef::Of(effectRef, "AEGP_GetNewEffectForEffect");
    if (!effect || !reference) return A_Err_PARAMETER;
    *reference = reinterpret_cast<AEGP_EffectRefH>(NewToken(TokenKind::kEffect, effect->services, 0));
    return A_Err_NONE;
}

PF_Err ConvertEffectToCompTime(PF_ProgPtr effectRef, A_long time, A_u_long timeScale, A_Time* compTime) {
    if (!EffectRef::Of(effectRef, "AEGP_ConvertEffectToCompTime") || !compTime) return A_Err_PARAMETER;
    *compTime = {time, timeScale};
    return A_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kAEGPPFInterfaceSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kAEGPPFInterfaceSuiteName, Call>;

}  // namespace

const AEGP_PFInterfaceSuite1 kPFInterfaceSuite = {
    .AEGP_GetEffectLayer = Slot<"AEGP_GetEffectLayer", GetEffectLayer>(),
    .AEGP_GetNewEffectForEffect = Slot<"AEGP_GetNewEffectForEffect", GetNewEffectForEffect>(),
    .AEGP_ConvertEffectToCompTime = Slot<"AEGP_ConvertEffectToCompTime", ConvertEffectToCompTime>(),
    .AEGP_GetEffectCamera = NoSlot<"AEGP_GetEffectCamera">(),
    .AEGP_GetEffectCameraMatrix = NoSlot<"AEGP_GetEffectCameraMatrix">(),
};

}  // namespace umbrant::host
