// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Layers of a composition.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPLayerSuiteName[] = "AEGP Layer Suite";
inline constexpr int32_t kAEGPLayerSuiteVersion7 = 13;

struct AEGP_LayerSuite7 {
    A_Err (*AEGP_GetCompNumLayers)(AEGP_CompH compH, A_long* num_layersPL);
    A_Err (*AEGP_GetCompLayerByIndex)(AEGP_CompH compH, A_long layer_indexL, AEGP_LayerH* layerPH);
    A_Err (*AEGP_GetActiveLayer)(AEGP_LayerH* layerPH);
    A_Err (*AEGP_GetLayerIndex)(AEGP_LayerH layerH, A_long* layer_indexPL);
    A_Err (*AEGP_GetLayerSourceItem)(AEGP_LayerH layerH, AEGP_ItemH* source_itemPH);
    A_Err (*AEGP_GetLayerSourceItemID)(AEGP_LayerH layerH, A_long* source_item_idPL);
    A_Err (*AEGP_GetLayerParentComp)(AEGP_LayerH layerH, AEGP_CompH* compPH);
    A_Err (*AEGP_GetLayerName)(AEGP_PluginID pluginID, AEGP_LayerH layerH, AEGP_MemHandle* utf_layer_namePH0,
                               AEGP_MemHandle* utf_source_namePH0);
    A_Err (*AEGP_GetLayerQuality)(AEGP_LayerH layerH, AEGP_LayerQuality* qualityP);
    A_Err (*AEGP_SetLayerQuality)(AEGP_LayerH layerH, AEGP_LayerQuality quality);
    A_Err (*AEGP_GetLayerFlags)(AEGP_LayerH layerH, AEGP_LayerFlags* layer_flagsP);
    A_Err (*AEGP_SetLayerFlag)(AEGP_LayerH layerH, AEGP_LayerFlags single_flag, A_Boolean valueB);
    A_Err (*AEGP_IsLayerVideoReallyOn)(AEGP_LayerH layerH, A_Boolean* onPB);
    A_Err (*AEGP_IsLayerAudioReallyOn)(AEGP_LayerH layerH, A_Boolean* onPB);
    A_Err (*AEGP_GetLayerCurrentTime)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, A_Time* curr_timePT);
    A_Err (*AEGP_GetLayerInPoint)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, A_Time* in_pointPT);
    A_Err (*AEGP_GetLayerDuration)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, A_Time* durationPT);
    A_Err (*AEGP_SetLayerInPointAndDuration)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, const A_Time* in_pointPT,
                                             const A_Time* durationPT);
    A_Err (*AEGP_GetLayerOffset)(AEGP_LayerH layerH, A_Time* offsetPT);
    A_Err (*AEGP_SetLayerOffset)(AEGP_LayerH layerH, const A_Time* offsetPT);
    A_Err (*AEGP_GetLayerStretch)(AEGP_LayerH layerH, A_Ratio* stretchPRt);
    A_Err (*AEGP_SetLayerStretch)(AEGP_LayerH layerH, const A_Ratio* stretchPRt);
    A_Err (*AEGP_GetLayerTransferMode)(AEGP_LayerH layerH, AEGP_LayerTransferMode* transfer_modeP);
    A_Err (*AEGP_SetLayerTransferMode)(AEGP_LayerH layerH, const AEGP_LayerTransferMode* transfer_modeP);
    A_Err (*AEGP_IsAddLayerValid)(AEGP_ItemH item_to_addH, AEGP_CompH into_compH, A_Boolean* validPB);
    A_Err (*AEGP_AddLayer)(AEGP_ItemH item_to_addH, AEGP_CompH into_compH, AEGP_LayerH* added_layerPH0);
    A_Err (*AEGP_ReorderLayer)(AEGP_LayerH layerH, A_long layer_indexL);
    A_Err (*AEGP_GetLayerMaskedBounds)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, const A_Time* timePT,
                                       A_FloatRect* boundsPR);
    A_Err (*AEGP_GetLayerObjectType)(AEGP_LayerH layerH, AEGP_ObjectType* object_type);
    A_Err (*AEGP_IsLayer3D)(AEGP_LayerH layerH, A_Boolean* is_3DPB);
    A_Err (*AEGP_IsLayer2D)(AEGP_LayerH layerH, A_Boolean* is_2DPB);
    A_Err (*AEGP_IsVideoActive)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, const A_Time* timePT,
                                A_Boolean* is_activePB);
    A_Err (*AEGP_IsLayerUsedAsTrackMatte)(AEGP_LayerH layerH, A_Boolean fill_must_be_activeB,
                                          A_Boolean* is_track_mattePB);
    A_Err (*AEGP_DoesLayerHaveTrackMatte)(AEGP_LayerH layerH, A_Boolean* has_track_mattePB);
    A_Err (*AEGP_ConvertCompToLayerTime)(AEGP_LayerH layerH, const A_Time* comp_timePT, A_Time* layer_timePT);
    A_Err (*AEGP_ConvertLayerToCompTime)(AEGP_LayerH layerH, const A_Time* layer_timePT, A_Time* comp_timePT);
    A_Err (*AEGP_GetLayerDancingRandValue)(AEGP_LayerH layerH, const A_Time* comp_timePT, A_long* rand_valuePL);
    A_Err (*AEGP_GetLayerID)(AEGP_LayerH layerH, AEGP_LayerIDVal* id_valP);
    A_Err (*AEGP_GetLayerToWorldXform)(AEGP_LayerH aegp_layerH, const A_Time* comp_timeP, A_Matrix4* transform);
    A_Err (*AEGP_GetLayerToWorldXformFromView)(AEGP_LayerH aegp_layerH, const A_Time* view_timeP,
                                               const A_Time* comp_timeP, A_Matrix4* transform);
    A_Err (*AEGP_SetLayerName)(AEGP_LayerH aegp_layerH, const A_UTF16Char* new_nameZ);
    A_Err (*AEGP_GetLayerParent)(AEGP_LayerH layerH, AEGP_LayerH* parent_layerPH);
    A_Err (*AEGP_SetLayerParent)(AEGP_LayerH layerH, AEGP_LayerH parent_layerH0);
    A_Err (*AEGP_DeleteLayer)(AEGP_LayerH layerH);
    A_Err (*AEGP_DuplicateLayer)(AEGP_LayerH orig_layerH, AEGP_LayerH* duplicate_layerPH);
    A_Err (*AEGP_GetLayerFromLayerID)(AEGP_CompH parent_compH, AEGP_LayerIDVal id, AEGP_LayerH* layerPH);
    A_Err (*AEGP_GetLayerLabel)(AEGP_LayerH layerH, AEGP_LabelID* labelP);
    A_Err (*AEGP_SetLayerLabel)(AEGP_LayerH layerH, AEGP_LabelID label);
};
