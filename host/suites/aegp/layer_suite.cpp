// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "AEGP Layer Suite" 13: what an effect may ask about the one layer it is applied to.

#include "hostapi/suites/aegp_layer_suite.h"

#include "host/suites/aegp/tokens.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

Token* Layer(AEGP_LayerH layer, const char* call) {
    return FindToken(layer, TokenKind::kLayer, call);
}

PF_Err GetLayerFlags(AEGP_LayerH layer, AEGP_LayerFlags* flags) {
    const Token* token = Layer(layer, "AEGP_GetLayerFlags");
    if (!token || !flags) return A_Err_PARAMETER;
    *flags = token->services->layerFlags;
    return A_Err_NONE;
}

PF_Err GetLayerIndex(AEGP_LayerH layer, A_long* index) {
    if (!Layer(layer, "AEGP_GetLayerIndex") || !index) return A_Err_PARAMETER;
    *index = 0;
    return A_Err_NONE;
}

PF_Err GetLayerQuality(AEGP_LayerH layer, AEGP_LayerQuality* quality) {
    if (!Layer(layer, "AEGP_GetLayerQuality") || !quality) return A_Err_PARAMETER;
    *quality = AEGP_LayerQual_BEST;
    return A_Err_NONE;
}

PF_Err GetLayerObjectType(AEGP_LayerH layer, AEGP_ObjectType* type) {
    if (!Layer(layer, "AEGP_GetLayerObjectType") || !type) return A_Err_PARAMETER;
    *type = AEGP_ObjectType_AV;
    return A_Err_NONE;
}

PF_Err IsLayer3D(AEGP_LayerH layer, A_Boolean* is3D) {
    const Token* token = Layer(layer, "AEGP_IsLayer3D");
    if (!token || !is3D) return A_Err_PARAMETER;
    *is3D = (token->services->layerFlags & AEGP_LayerFlag_LAYER_IS_3D) != 0;
    return A_Err_NONE;
}

PF_Err IsLayer2D(AEGP_LayerH layer, A_Boolean* is2D) {
    A_Boolean is3D = 0;
    if (const PF_Err error = IsLayer3D(layer, &is3D)) return error;
    if (!is2D) return A_Err_PARAMETER;
    *is2D = !is3D;
    return A_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kAEGPLayerSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kAEGPLayerSuiteName, Call>;

}  // namespace

const AEGP_LayerSuite7 kLayerSuite = {
    .AEGP_GetCompNumLayers = NoSlot<"AEGP_GetCompNumLayers">(),
    .AEGP_GetCompLayerByIndex = NoSlot<"AEGP_GetCompLayerByIndex">(),
    .AEGP_GetActiveLayer = NoSlot<"AEGP_GetActiveLayer">(),
    .AEGP_GetLayerIndex = Slot<"AEGP_GetLayerIndex", GetLayerIndex>(),
    .AEGP_GetLayerSourceItem = NoSlot<"AEGP_GetLayerSourceItem">(),
    .AEGP_GetLayerSourceItemID = NoSlot<"AEGP_GetLayerSourceItemID">(),
    .AEGP_GetLayerParentComp = NoSlot<"AEGP_GetLayerParentComp">(),
    .AEGP_GetLayerName = NoSlot<"AEGP_GetLayerName">(),
    .AEGP_GetLayerQuality = Slot<"AEGP_GetLayerQuality", GetLayerQuality>(),
    .AEGP_SetLayerQuality = NoSlot<"AEGP_SetLayerQuality">(),
    .AEGP_GetLayerFlags = Slot<"AEGP_GetLayerFlags", GetLayerFlags>(),
    .AEGP_SetLayerFlag = NoSlot<"AEGP_SetLayerFlag">(),
    .AEGP_IsLayerVideoReallyOn = NoSlot<"AEGP_IsLayerVideoReallyOn">(),
    .AEGP_IsLayerAudioReallyOn = NoSlot<"AEGP_IsLayerAudioReallyOn">(),
    .AEGP_GetLayerCurrentTime = NoSlot<"AEGP_GetLayerCurrentTime">(),
    .AEGP_GetLayerInPoint = NoSlot<"AEGP_GetLayerInPoint">(),
    .AEGP_GetLayerDuration = NoSlot<"AEGP_GetLayerDuration">(),
    .AEGP_SetLayerInPointAndDuration = NoSlot<"AEGP_SetLayerInPointAndDuration">(),
    .AEGP_GetLayerOffset = NoSlot<"AEGP_GetLayerOffset">(),
    .AEGP_SetLayerOffset = NoSlot<"AEGP_SetLayerOffset">(),
    .AEGP_GetLayerStretch = NoSlot<"AEGP_GetLayerStretch">(),
    .AEGP_SetLayerStretch = NoSlot<"AEGP_SetLayerStretch">(),
    .AEGP_GetLayerTransferMode = NoSlot<"AEGP_GetLayerTransferMode">(),
    .AEGP_SetLayerTransferMode = NoSlot<"AEGP_SetLayerTransferMode">(),
    .AEGP_IsAddLayerValid = NoSlot<"AEGP_IsAddLayerValid">(),
    .AEGP_AddLayer = NoSlot<"AEGP_AddLayer">(),
    .AEGP_ReorderLayer = NoSlot<"AEGP_ReorderLayer">(),
    .AEGP_GetLayerMaskedBounds = NoSlot<"AEGP_GetLayerMaskedBounds">(),
    .AEGP_GetLayerObjectType = Slot<"AEGP_GetLayerObjectType", GetLayerObjectType>(),
    .AEGP_IsLayer3D = Slot<"AEGP_IsLayer3D", IsLayer3D>(),
    .AEGP_IsLayer2D = Slot<"AEGP_IsLayer2D", IsLayer2D>(),
    .AEGP_IsVideoActive = NoSlot<"AEGP_IsVideoActive">(),
    .AEGP_IsLayerUsedAsTrackMatte = NoSlot<"AEGP_IsLayerUsedAsTrackMatte">(),
    .AEGP_DoesLayerHaveTrackMatte = NoSlot<"AEGP_DoesLayerHaveTrackMatte">(),
    .AEGP_ConvertCompToLayerTime = NoSlot<"AEGP_ConvertCompToLayerTime">(),
    .AEGP_ConvertLayerToCompTime = NoSlot<"AEGP_ConvertLayerToCompTime">(),
    .AEGP_GetLayerDancingRandValue = NoSlot<"AEGP_GetLayerDancingRandValue">(),
    .AEGP_GetLayerID = NoSlot<"AEGP_GetLayerID">(),
    .AEGP_GetLayerToWorldXform = NoSlot<"AEGP_GetLayerToWorldXform">(),
    .AEGP_GetLayerToWorldXformFromView = NoSlot<"AEGP_GetLayerToWorldXformFromView">(),
    .AEGP_SetLayerName = NoSlot<"AEGP_SetLayerName">(),
    .AEGP_GetLayerParent = NoSlot<"AEGP_GetLayerParent">(),
    .AEGP_SetLayerParent = NoSlot<"AEGP_SetLayerParent">(),
    .AEGP_DeleteLayer = NoSlot<"AEGP_DeleteLayer">(),
    .AEGP_DuplicateLayer = NoSlot<"AEGP_DuplicateLayer">(),
    .AEGP_GetLayerFromLayerID = NoSlot<"AEGP_GetLayerFromLayerID">(),
    .AEGP_GetLayerLabel = NoSlot<"AEGP_GetLayerLabel">(),
    .AEGP_SetLayerLabel = NoSlot<"AEGP_SetLayerLabel">(),
};

}  // namespace umbrant::host
