// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "AEGP Effect Suite" 2: the one effect on the one layer.

#include "hostapi/suites/aegp_effect_suite.h"

#include "host/suites/aegp/tokens.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err GetLayerNumEffects(AEGP_LayerH layer, A_long* number) {
    if (!FindToken(layer, TokenKind::kLayer, "AEGP_GetLayerNumEffects") || !number) return A_Err_PARAMETER;
    *number = 1;
    return A_Err_NONE;
}

PF_Err GetEffectFlags(AEGP_EffectRefH effect, AEGP_EffectFlags* flags) {
    if (!FindToken(effect, TokenKind::kEffect, "AEGP_GetEffectFlags") || !flags) return A_Err_PARAMETER;
    *flags = AEGP_EffectFlags_ACTIVE;
    return A_Err_NONE;
}

PF_Err DisposeEffect(AEGP_EffectRefH effect) {
    return DisposeToken(effect, TokenKind::kEffect, "AEGP_DisposeEffect") ? A_Err_NONE : A_Err_PARAMETER;
}

template <FixedText Call, auto Function>
using Slot = Served<kAEGPEffectSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kAEGPEffectSuiteName, Call>;

}  // namespace

const AEGP_EffectSuite2 kEffectSuite = {
    .AEGP_GetLayerNumEffects = Slot<"AEGP_GetLayerNumEffects", GetLayerNumEffects>(),
    .AEGP_GetLayerEffectByIndex = NoSlot<"AEGP_GetLayerEffectByIndex">(),
    .AEGP_GetInstalledKeyFromLayerEffect = NoSlot<"AEGP_GetInstalledKeyFromLayerEffect">(),
    .AEGP_GetEffectParamUnionByIndex = NoSlot<"AEGP_GetEffectParamUnionByIndex">(),
    .AEGP_GetEffectFlags = Slot<"AEGP_GetEffectFlags", GetEffectFlags>(),
    .AEGP_SetEffectFlags = NoSlot<"AEGP_SetEffectFlags">(),
    .AEGP_ReorderEffect = NoSlot<"AEGP_ReorderEffect">(),
    .AEGP_EffectCallGeneric = NoSlot<"AEGP_EffectCallGeneric">(),
    .AEGP_DisposeEffect = Slot<"AEGP_DisposeEffect", DisposeEffect>(),
    .AEGP_ApplyEffect = NoSlot<"AEGP_ApplyEffect">(),
    .AEGP_DeleteLayerEffect = NoSlot<"AEGP_DeleteLayerEffect">(),
    .AEGP_GetNumInstalledEffects = NoSlot<"AEGP_GetNumInstalledEffects">(),
    .AEGP_GetNextInstalledEffect = NoSlot<"AEGP_GetNextInstalledEffect">(),
    .AEGP_GetEffectName = NoSlot<"AEGP_GetEffectName">(),
    .AEGP_GetEffectMatchName = NoSlot<"AEGP_GetEffectMatchName">(),
    .AEGP_GetEffectCategory = NoSlot<"AEGP_GetEffectCategory">(),
    .AEGP_DuplicateEffect = NoSlot<"AEGP_DuplicateEffect">(),
};

}  // namespace umbrant::host
