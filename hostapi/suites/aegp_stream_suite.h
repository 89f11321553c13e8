// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Streams: the values of an effect's parameters and of a layer's own properties over time.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read. A reference that a slot
// named "New" hands out belongs to the caller, who disposes of it; any other handle stays the host's. Streams go back
// through AEGP_DisposeStream, values through AEGP_DisposeStreamValue.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPStreamSuiteName[] = "AEGP Stream Suite";
inline constexpr int32_t kAEGPStreamSuiteVersion2 = 7;

/// A marker's texts, each NUL-terminated.
struct AEGP_MarkerVal {
    A_char nameAC[64];
    A_char urlAC[1024];
    A_char targetAC[128];
    A_char chapterAC[128];
};

typedef AEGP_MarkerVal** AEGP_MarkerValH;

/// A value; the stream's AEGP_StreamType says which member holds it. Handles inside belong to the AEGP_StreamValue
/// around it.
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

/// A value together with the stream it was taken from.
struct AEGP_StreamValue {
    AEGP_StreamRefH streamH;
    AEGP_StreamVal val;
};

struct AEGP_StreamSuite2 {
    /// Whether a layer of this kind has the property at all. [main]
    A_Err (*AEGP_IsStreamLegal)(AEGP_LayerH layerH, AEGP_LayerStream which_stream, A_Boolean* is_legalP);
    /// Whether a stream may have keyframes. [main]
    A_Err (*AEGP_CanVaryOverTime)(AEGP_StreamRefH streamH, A_Boolean* can_varyPB);
    /// Which interpolations the stream's keyframes may use, as a bit mask. [main]
    A_Err (*AEGP_GetValidInterpolations)(AEGP_StreamRefH streamH, AEGP_KeyInterpolationMask* valid_interpolationsP);
    /// The stream of a layer's own property. The caller disposes of it. [main]
    A_Err (*AEGP_GetNewLayerStream)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH, AEGP_LayerStream which_stream,
                                    AEGP_StreamRefH* streamPH);
    /// How many parameters an effect has, the input layer counted. [main]
    A_Err (*AEGP_GetEffectNumParamStreams)(AEGP_EffectRefH effect_refH, A_long* num_paramsPL);
    /// The stream of a parameter; 0 is the input layer. The caller disposes of it. [main]
    A_Err (*AEGP_GetNewEffectStreamByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_EffectRefH effect_refH,
                                            PF_ParamIndex param_index, AEGP_StreamRefH* streamPH);
    /// The stream of a mask's property. The caller disposes of it. [main]
    A_Err (*AEGP_GetNewMaskStream)(AEGP_PluginID aegp_plugin_id, AEGP_MaskRefH mask_refH, AEGP_MaskStream which_stream,
                                   AEGP_StreamRefH* mask_streamPH);
    /// Gives a stream reference back; the stream itself is untouched. [main]
    A_Err (*AEGP_DisposeStream)(AEGP_StreamRefH streamH);
    /// Copies the name, in English or in the user's language, into the caller's buffer of AEGP_MAX_STREAM_NAME_SIZE
    /// bytes. [main]
    A_Err (*AEGP_GetStreamName)(AEGP_StreamRefH streamH, A_Boolean force_englishB, A_char* nameZ);
    /// Copies the unit, in English or in the user's language, into the caller's buffer of AEGP_MAX_STREAM_UNITS_SIZE
    /// bytes. [main]
    A_Err (*AEGP_GetStreamUnitsText)(AEGP_StreamRefH streamH, A_Boolean force_englishB, A_char* unitsZ);
    /// Whether the value is bounded or spatial, and its bounds where the flags say that they exist; both bound pointers
    /// may be null. [main]
    A_Err (*AEGP_GetStreamProperties)(AEGP_StreamRefH streamH, AEGP_StreamFlags* flagsP, A_FpLong* minP0,
                                      A_FpLong* maxP0);
    /// Whether a stream changes over time, by keyframes or an expression. [main]
    A_Err (*AEGP_IsStreamTimevarying)(AEGP_StreamRefH streamH, A_Boolean* is_timevaryingPB);
    /// Which member of AEGP_StreamVal holds this stream's values. [main]
    A_Err (*AEGP_GetStreamType)(AEGP_StreamRefH streamH, AEGP_StreamType* stream_typeP);
    /// The value at a time, before or after the expression. The caller disposes of it with AEGP_DisposeStreamValue.
    /// [main]
    A_Err (*AEGP_GetNewStreamValue)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, AEGP_LTimeMode time_mode,
                                    const A_Time* timePT, A_Boolean pre_expressionB, AEGP_StreamValue* valueP);
    /// Frees what a value holds; the record is the caller's. [main]
    A_Err (*AEGP_DisposeStreamValue)(AEGP_StreamValue* valueP);
    /// Sets the value of a stream that has no keyframes. The record stays the caller's. [main]
    A_Err (*AEGP_SetStreamValue)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, AEGP_StreamValue* valueP);
    /// The value of a layer's own property without a stream reference; only for types that hold no handle.
    /// `stream_typeP0` may be null. [main]
    A_Err (*AEGP_GetLayerStreamValue)(AEGP_LayerH layerH, AEGP_LayerStream which_stream, AEGP_LTimeMode time_mode,
                                      const A_Time* timePT, A_Boolean pre_expressionB, AEGP_StreamVal* stream_valP,
                                      AEGP_StreamType* stream_typeP0);
    /// Whether a stream's expression is switched on. [main]
    A_Err (*AEGP_GetExpressionState)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, A_Boolean* enabledPB);
    /// Switches a stream's expression on or off. [main]
    A_Err (*AEGP_SetExpressionState)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, A_Boolean enabledB);
    /// The expression's text in a new memory handle that the caller must free. [main]
    A_Err (*AEGP_GetExpression)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, AEGP_MemHandle* expressionHZ);
    /// Replaces the expression's text; the string is the caller's and NUL-terminated. [main]
    A_Err (*AEGP_SetExpression)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, const A_char* expressionP);
    /// A second reference to the same stream. The caller disposes of both. [main]
    A_Err (*AEGP_DuplicateStreamRef)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                                     AEGP_StreamRefH* dup_streamPH);
};
