// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Effects applied to layers, and the list of installed ones.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read. An effect reference
// handed out here or by the PF Interface suite is the caller's, who returns it with AEGP_DisposeEffect.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPEffectSuiteName[] = "AEGP Effect Suite";
inline constexpr int32_t kAEGPEffectSuiteVersion2 = 2;

struct AEGP_EffectSuite2 {
    /// How many effects are applied to a layer. [main]
    A_Err (*AEGP_GetLayerNumEffects)(AEGP_LayerH layerH, A_long* num_effectsPL);
    /// A layer's effect by its 0-based position. The caller disposes of the reference. [main]
    A_Err (*AEGP_GetLayerEffectByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH,
                                        AEGP_EffectIndex layer_effect_indexL, AEGP_EffectRefH* effectPH);
    /// Which installed effect an applied one is an instance of. The key is a number and needs no release. [main]
    A_Err (*AEGP_GetInstalledKeyFromLayerEffect)(AEGP_EffectRefH effect_refH,
                                                 AEGP_InstalledEffectKey* installed_effect_keyP);
    /// The type and, where `uP0` is not null, the value part of a parameter's definition; 0 is the input layer.
    /// Pointers inside the copy stay the host's. [main]
    A_Err (*AEGP_GetEffectParamUnionByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                             PF_ParamIndex param_index, PF_ParamType* param_typeP,
                                             PF_ParamDefUnion* uP0);
    /// All AEGP_EffectFlags bits of an applied effect. [main]
    A_Err (*AEGP_GetEffectFlags)(AEGP_EffectRefH effect_refH, AEGP_EffectFlags* effect_flagsP);
    /// Sets those flag bits that the mask names to the bits of the last argument and leaves the rest. [main]
    A_Err (*AEGP_SetEffectFlags)(AEGP_EffectRefH effect_refH, AEGP_EffectFlags effect_flags_set_mask,
                                 AEGP_EffectFlags effect_flags);
    /// Moves an effect to another 0-based position on its layer. [main]
    A_Err (*AEGP_ReorderEffect)(AEGP_EffectRefH effect_refH, A_long effect_indexL);
    /// Sends PF_Cmd_COMPLETELY_GENERAL to an applied effect, with `effect_extraPV` as its extra data, which stays the
    /// caller's. [main]
    A_Err (*AEGP_EffectCallGeneric)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH, const A_Time* timePT,
                                    void* effect_extraPV);
    /// Gives an effect reference back; the applied effect itself is untouched. [main]
    A_Err (*AEGP_DisposeEffect)(AEGP_EffectRefH effect_refH);
    /// Applies an installed effect to a layer. The caller disposes of the reference it gets. [main]
    A_Err (*AEGP_ApplyEffect)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH,
                              AEGP_InstalledEffectKey installed_effect_key, AEGP_EffectRefH* effect_refPH);
    /// Takes an effect off its layer; the reference itself must still be disposed of. [main]
    A_Err (*AEGP_DeleteLayerEffect)(AEGP_EffectRefH effect_refH);
    /// How many effects the host has found. [main]
    A_Err (*AEGP_GetNumInstalledEffects)(A_long* num_installed_effectsPL);
    /// Walks the installed effects: AEGP_InstalledEffectKey_NONE asks for the first, and is received after the last.
    /// [main]
    A_Err (*AEGP_GetNextInstalledEffect)(AEGP_InstalledEffectKey installed_effect_key,
                                         AEGP_InstalledEffectKey* next_effectPH);
    /// Copies the displayed name into the caller's buffer of AEGP_MAX_EFFECT_NAME_SIZE bytes. [main]
    A_Err (*AEGP_GetEffectName)(AEGP_InstalledEffectKey installed_effect_key, A_char* nameZ);
    /// Copies the match name into the caller's buffer of AEGP_MAX_EFFECT_MATCH_NAME_SIZE bytes. [main]
    A_Err (*AEGP_GetEffectMatchName)(AEGP_InstalledEffectKey installed_effect_key, A_char* match_nameZ);
    /// Copies the category into the caller's buffer of AEGP_MAX_EFFECT_CATEGORY_NAME_SIZE bytes. [main]
    A_Err (*AEGP_GetEffectCategory)(AEGP_InstalledEffectKey installed_effect_key, A_char* categoryZ);
    /// Copies an applied effect on its layer. The caller disposes of the copy's reference. [main]
    A_Err (*AEGP_DuplicateEffect)(AEGP_EffectRefH original_effect_refH, AEGP_EffectRefH* duplicate_effect_refPH);
};
