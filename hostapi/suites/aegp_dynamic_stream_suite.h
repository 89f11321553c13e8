// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The stream tree and its visibility flags.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPDynamicStreamSuiteName[] = "AEGP Dynamic Stream Suite";
inline constexpr int32_t kAEGPDynamicStreamSuiteVersion2 = 2;

struct AEGP_DynamicStreamSuite2 {
    A_Err (*AEGP_GetNewStreamRefForLayer)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH, AEGP_StreamRefH* streamPH);
    A_Err (*AEGP_GetStreamDepth)(AEGP_StreamRefH streamH, A_long* depthPL);
    A_Err (*AEGP_GetStreamGroupingType)(AEGP_StreamRefH streamH, AEGP_StreamGroupingType* group_typeP);
    A_Err (*AEGP_GetNumStreamsInGroup)(AEGP_StreamRefH streamH, A_long* num_streamsPL);
    A_Err (*AEGP_GetDynamicStreamFlags)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags* stream_flagsP);
    A_Err (*AEGP_SetDynamicStreamFlag)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags one_flag, A_Boolean undoableB,
                                       A_Boolean setB);
    A_Err (*AEGP_GetNewStreamRefByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH parent_groupH, A_long indexL,
                                         AEGP_StreamRefH* streamPH);
    A_Err (*AEGP_GetNewStreamRefByMatchname)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH parent_groupH,
                                             const A_char* match_nameZ, AEGP_StreamRefH* streamPH);
    A_Err (*AEGP_DeleteStream)(AEGP_StreamRefH streamH);
    A_Err (*AEGP_ReorderStream)(AEGP_StreamRefH streamH, A_long new_indexL);
    A_Err (*AEGP_DuplicateStream)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, A_long* new_indexPL0);
    A_Err (*AEGP_SetStreamName)(AEGP_StreamRefH streamH, const A_char* nameZ);
    A_Err (*AEGP_CanAddStream)(AEGP_StreamRefH group_streamH, const A_char* match_nameZ, A_Boolean* can_addPB);
    A_Err (*AEGP_AddStream)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH indexed_group_streamH,
                            const A_char* match_nameZ, AEGP_StreamRefH* streamPH0);
    A_Err (*AEGP_GetMatchName)(AEGP_StreamRefH streamH, A_char* nameZ);
    A_Err (*AEGP_GetNewParentStreamRef)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                                        AEGP_StreamRefH* parent_streamPH);
    A_Err (*AEGP_GetStreamIsModified)(AEGP_StreamRefH streamH, A_Boolean* modifiedPB);
};
