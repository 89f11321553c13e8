// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Parameter streams and their values.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPStreamSuiteName[] = "AEGP Stream Suite";
inline constexpr int32_t kAEGPStreamSuiteVersion2 = 7;

struct AEGP_MarkerVal {
    A_char nameAC[64];
    A_char urlAC[1024];
    A_char targetAC[128];
    A_char chapterAC[128];
};

typedef AEGP_MarkerVal** AEGP_MarkerValH;

union AEGP_StreamVal {
    AEGP_FourDVal four_d;
    AEGP_ThreeDVal three_d;
    AEGP_TwoDVal two_d;
    AEGP_OneDVal one_d;
    AEGP_ColorVal color;
    AEGP_ArbBlockVal arbH;
    AEGP_MarkerValH markerH;
    AEGP_LayerIDVal layer_id;
    AEGP_MaskIDVal mask_id;
    AEGP_MaskOutlineValH mask;
    AEGP_TextDocumentH text_documentH;
};

struct AEGP_StreamValue {
    AEGP_StreamRefH streamH;
    AEGP_StreamVal val;
};

struct AEGP_StreamSuite2 {
    A_Err (*AEGP_IsStreamLegal)(AEGP_LayerH layerH, AEGP_LayerStream which_stream, A_Boolean* is_legalP);
    A_Err (*AEGP_CanVaryOverTime)(AEGP_StreamRefH streamH, A_Boolean* can_varyPB);
    A_Err (*AEGP_GetValidInterpolations)(AEGP_StreamRefH streamH, AEGP_KeyInterpolationMask* valid_interpolationsP);
    A_Err (*AEGP_GetNewLayerStream)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH, AEGP_LayerStream which_stream,
                                    AEGP_StreamRefH* streamPH);
    A_Err (*AEGP_GetEffectNumParamStreams)(AEGP_EffectRefH effect_refH, A_long* num_paramsPL);
    A_Err (*AEGP_GetNewEffectStreamByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                            PF_ParamIndex param_index, AEGP_StreamRefH* streamPH);
    A_Err (*AEGP_GetNewMaskStream)(AEGP_PluginID aegp_plugin_id, AEGP_MaskRefH mask_refH, AEGP_MaskStream which_stream,
                                   AEGP_StreamRefH* mask_streamPH);
    A_Err (*AEGP_DisposeStream)(AEGP_StreamRefH streamH);
    A_Err (*AEGP_GetStreamName)(AEGP_StreamRefH streamH, A_Boolean force_englishB, A_char* nameZ);
    A_Err (*AEGP_GetStreamUnitsText)(AEGP_StreamRefH streamH, A_Boolean force_englishB, A_char* unitsZ);
    A_Err (*AEGP_GetStreamProperties)(AEGP_StreamRefH streamH, AEGP_StreamFlags* flagsP, A_FpLong* minP0,
                                      A_FpLong* maxP0);
    A_Err (*AEGP_IsStreamTimevarying)(AEGP_StreamRefH streamH, A_Boolean* is_timevaryingPB);
    A_Err (*AEGP_GetStreamType)(AEGP_StreamRefH streamH, AEGP_StreamType* stream_typeP);
    A_Err (*AEGP_GetNewStreamValue)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, AEGP_LTimeMode time_mode,
                                    const A_Time* timePT, A_Boolean pre_expressionB, AEGP_StreamValue* valueP);
    A_Err (*AEGP_DisposeStreamValue)(AEGP_StreamValue* valueP);
    A_Err (*AEGP_SetStreamValue)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, AEGP_StreamValue* valueP);
    A_Err (*AEGP_GetLayerStreamValue)(AEGP_LayerH layerH, AEGP_LayerStream which_stream, AEGP_LTimeMode time_mode,
                                      const A_Time* timePT, A_Boolean pre_expressionB, AEGP_StreamVal* stream_valP,
                                      AEGP_StreamType* stream_typeP0);
    A_Err (*AEGP_GetExpressionState)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, A_Boolean* enabledPB);
    A_Err (*AEGP_SetExpressionState)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, A_Boolean enabledB);
    A_Err (*AEGP_GetExpression)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, AEGP_MemHandle* expressionHZ);
    A_Err (*AEGP_SetExpression)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, const A_char* expressionP);
    A_Err (*AEGP_DuplicateStreamRef)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                                     AEGP_StreamRefH* dup_streamPH);
};
