// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Layers of a composition: place, time, switches, blending, geometry.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read. Layer, composition and
// item handles stay the host's and are never disposed of. The time mode says whether a time counts from the layer's or
// the composition's start.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPLayerSuiteName[] = "AEGP Layer Suite";
inline constexpr int32_t kAEGPLayerSuiteVersion7 = 13;

struct AEGP_LayerSuite7 {
    /// How many layers a composition has. [main]
    A_Err (*AEGP_GetCompNumLayers)(AEGP_CompH compH, A_long* num_layersPL);
    /// A composition's layer by its 0-based position from the top. [main]
    A_Err (*AEGP_GetCompLayerByIndex)(AEGP_CompH compH, A_long layer_indexL, AEGP_LayerH* layerPH);
    /// The layer that the user is working on, or null when there is none. [main]
    A_Err (*AEGP_GetActiveLayer)(AEGP_LayerH* layerPH);
    /// A layer's 0-based position in its composition. [main]
    A_Err (*AEGP_GetLayerIndex)(AEGP_LayerH layerH, A_long* layer_indexPL);
    /// The project item that a layer shows. [main]
    A_Err (*AEGP_GetLayerSourceItem)(AEGP_LayerH layerH, AEGP_ItemH* source_itemPH);
    /// The number that names that item within the project. [main]
    A_Err (*AEGP_GetLayerSourceItemID)(AEGP_LayerH layerH, A_long* source_item_idPL);
    /// The composition that holds a layer. [main]
    A_Err (*AEGP_GetLayerParentComp)(AEGP_LayerH layerH, AEGP_CompH* compPH);
    /// The layer's and its source's names, each in a new memory handle that the caller must free; either pointer may be
    /// null. The text is UTF-16, NUL-terminated. [main]
    A_Err (*AEGP_GetLayerName)(AEGP_PluginID pluginID, AEGP_LayerH layerH, AEGP_MemHandle* utf_layer_namePH0,
                               AEGP_MemHandle* utf_source_namePH0);
    /// Wireframe, draft or best. [main]
    A_Err (*AEGP_GetLayerQuality)(AEGP_LayerH layerH, AEGP_LayerQuality* qualityP);
    /// Chooses wireframe, draft or best. [main]
    A_Err (*AEGP_SetLayerQuality)(AEGP_LayerH layerH, AEGP_LayerQuality quality);
    /// All AEGP_LayerFlag switches of a layer at once, AEGP_LayerFlag_COLLAPSE among them. [main]
    A_Err (*AEGP_GetLayerFlags)(AEGP_LayerH layerH, AEGP_LayerFlags* layer_flagsP);
    /// Sets or clears one switch; `single_flag` is a single bit. [main]
    A_Err (*AEGP_SetLayerFlag)(AEGP_LayerH layerH, AEGP_LayerFlags single_flag, A_Boolean valueB);
    /// Whether a layer is seen, the solo switches of its neighbours considered. [main]
    A_Err (*AEGP_IsLayerVideoReallyOn)(AEGP_LayerH layerH, A_Boolean* onPB);
    /// Whether a layer is heard, the solo switches of its neighbours considered. [main]
    A_Err (*AEGP_IsLayerAudioReallyOn)(AEGP_LayerH layerH, A_Boolean* onPB);
    /// The current time as this layer counts it, or as its composition does. [main]
    A_Err (*AEGP_GetLayerCurrentTime)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, A_Time* curr_timePT);
    /// When a layer begins. [main]
    A_Err (*AEGP_GetLayerInPoint)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, A_Time* in_pointPT);
    /// How long a layer lasts. [main]
    A_Err (*AEGP_GetLayerDuration)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, A_Time* durationPT);
    /// Trims a layer: where it begins and how long it lasts, in one step. [main]
    A_Err (*AEGP_SetLayerInPointAndDuration)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, const A_Time* in_pointPT,
                                             const A_Time* durationPT);
    /// Where the layer's own time 0 is in the composition. [main]
    A_Err (*AEGP_GetLayerOffset)(AEGP_LayerH layerH, A_Time* offsetPT);
    /// Moves the layer's own time 0 within the composition. [main]
    A_Err (*AEGP_SetLayerOffset)(AEGP_LayerH layerH, const A_Time* offsetPT);
    /// The time stretch as a ratio; 1/1 is the natural speed. [main]
    A_Err (*AEGP_GetLayerStretch)(AEGP_LayerH layerH, A_Ratio* stretchPRt);
    /// Sets the time stretch as a ratio; 1/1 is the natural speed. [main]
    A_Err (*AEGP_SetLayerStretch)(AEGP_LayerH layerH, const A_Ratio* stretchPRt);
    /// How a layer is blended with those below, and which matte cuts it. [main]
    A_Err (*AEGP_GetLayerTransferMode)(AEGP_LayerH layerH, AEGP_LayerTransferMode* transfer_modeP);
    /// Chooses how a layer is blended with those below, and which matte cuts it. [main]
    A_Err (*AEGP_SetLayerTransferMode)(AEGP_LayerH layerH, const AEGP_LayerTransferMode* transfer_modeP);
    /// Whether an item could become a layer of a composition. [main]
    A_Err (*AEGP_IsAddLayerValid)(AEGP_ItemH item_to_addH, AEGP_CompH into_compH, A_Boolean* validPB);
    /// Makes an item a layer of a composition; `added_layerPH0`, which may be null, receives it. [main]
    A_Err (*AEGP_AddLayer)(AEGP_ItemH item_to_addH, AEGP_CompH into_compH, AEGP_LayerH* added_layerPH0);
    /// Moves a layer to another 0-based position in its composition. [main]
    A_Err (*AEGP_ReorderLayer)(AEGP_LayerH layerH, A_long layer_indexL);
    /// The rectangle that a layer's masks leave of it at a time, in layer pixels. [main]
    A_Err (*AEGP_GetLayerMaskedBounds)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, const A_Time* timePT,
                                       A_FloatRect* boundsPR);
    /// Picture or sound, light, camera, text or shape. [main]
    A_Err (*AEGP_GetLayerObjectType)(AEGP_LayerH layerH, AEGP_ObjectType* object_type);
    /// Whether a layer is three-dimensional. [main]
    A_Err (*AEGP_IsLayer3D)(AEGP_LayerH layerH, A_Boolean* is_3DPB);
    /// Whether a layer is in the plane. [main]
    A_Err (*AEGP_IsLayer2D)(AEGP_LayerH layerH, A_Boolean* is_2DPB);
    /// Whether a layer shows a picture at a time. [main]
    A_Err (*AEGP_IsVideoActive)(AEGP_LayerH layerH, AEGP_LTimeMode time_mode, const A_Time* timePT,
                                A_Boolean* is_activePB);
    /// Whether a neighbour is cut by this layer; `fill_must_be_activeB` counts only neighbours that are on. [main]
    A_Err (*AEGP_IsLayerUsedAsTrackMatte)(AEGP_LayerH layerH, A_Boolean fill_must_be_activeB,
                                          A_Boolean* is_track_mattePB);
    /// Whether this layer is cut by a matte. [main]
    A_Err (*AEGP_DoesLayerHaveTrackMatte)(AEGP_LayerH layerH, A_Boolean* has_track_mattePB);
    /// A time of the composition as this layer counts it. [main]
    A_Err (*AEGP_ConvertCompToLayerTime)(AEGP_LayerH layerH, const A_Time* comp_timePT, A_Time* layer_timePT);
    /// A time of this layer as its composition counts it. [main]
    A_Err (*AEGP_ConvertLayerToCompTime)(AEGP_LayerH layerH, const A_Time* layer_timePT, A_Time* comp_timePT);
    /// The random number that belongs to a layer at a time. [main]
    A_Err (*AEGP_GetLayerDancingRandValue)(AEGP_LayerH layerH, const A_Time* comp_timePT, A_long* rand_valuePL);
    /// The number that names a layer within its project. [main]
    A_Err (*AEGP_GetLayerID)(AEGP_LayerH layerH, AEGP_LayerIDVal* id_valP);
    /// The matrix from layer to world coordinates at a time. [main]
    A_Err (*AEGP_GetLayerToWorldXform)(AEGP_LayerH aegp_layerH, const A_Time* comp_timeP, A_Matrix4* transform);
    /// The same matrix with the view taken at a time of its own. [main]
    A_Err (*AEGP_GetLayerToWorldXformFromView)(AEGP_LayerH aegp_layerH, const A_Time* view_timeP,
                                               const A_Time* comp_timeP, A_Matrix4* transform);
    /// Renames a layer; the UTF-16 text is the caller's and NUL-terminated. [main]
    A_Err (*AEGP_SetLayerName)(AEGP_LayerH aegp_layerH, const A_UTF16Char* new_nameZ);
    /// The layer whose transform a layer follows, or null. [main]
    A_Err (*AEGP_GetLayerParent)(AEGP_LayerH layerH, AEGP_LayerH* parent_layerPH);
    /// Makes a layer follow another's transform, or no one's where `parent_layerH0` is null. [main]
    A_Err (*AEGP_SetLayerParent)(AEGP_LayerH layerH, AEGP_LayerH parent_layerH0);
    /// Takes a layer out of its composition; its handle is dead afterwards. [main]
    A_Err (*AEGP_DeleteLayer)(AEGP_LayerH layerH);
    /// Copies a layer within its composition. [main]
    A_Err (*AEGP_DuplicateLayer)(AEGP_LayerH orig_layerH, AEGP_LayerH* duplicate_layerPH);
    /// The layer of a composition that bears a number. [main]
    A_Err (*AEGP_GetLayerFromLayerID)(AEGP_CompH parent_compH, AEGP_LayerIDVal id, AEGP_LayerH* layerPH);
    /// The colour label of a layer, as a small number. [main]
    A_Err (*AEGP_GetLayerLabel)(AEGP_LayerH layerH, AEGP_LabelID* labelP);
    /// Chooses the colour label of a layer. [main]
    A_Err (*AEGP_SetLayerLabel)(AEGP_LayerH layerH, AEGP_LabelID label);
};
