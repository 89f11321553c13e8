// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The stream tree and its visibility flags: how an effect hides its own panel rows.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read. A reference that a slot
// named "New" hands out belongs to the caller, who disposes of it; any other handle stays the host's.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPDynamicStreamSuiteName[] = "AEGP Dynamic Stream Suite";
inline constexpr int32_t kAEGPDynamicStreamSuiteVersion2 = 2;

struct AEGP_DynamicStreamSuite2 {
    /// The root of a layer's stream tree. The caller disposes of it with AEGP_DisposeStream. [main]
    A_Err (*AEGP_GetNewStreamRefForLayer)(AEGP_PluginID aegp_plugin_id, AEGP_LayerH layerH, AEGP_StreamRefH* streamPH);
    /// How many levels a stream lies below the root of its tree. [main]
    A_Err (*AEGP_GetStreamDepth)(AEGP_StreamRefH streamH, A_long* depthPL);
    /// Whether a stream is a leaf with a value, a group with named members, or a group whose members are counted.
    /// [main]
    A_Err (*AEGP_GetStreamGroupingType)(AEGP_StreamRefH streamH, AEGP_StreamGroupingType* group_typeP);
    /// The number of direct members of a group. [main]
    A_Err (*AEGP_GetNumStreamsInGroup)(AEGP_StreamRefH streamH, A_long* num_streamsPL);
    /// All AEGP_DynStreamFlag bits of a stream at once. [main]
    A_Err (*AEGP_GetDynamicStreamFlags)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags* stream_flagsP);
    /// Sets (`setB` not 0) or clears one flag; `one_flag` is a single bit. With `undoableB` the change takes a place in
    /// the host's undo history. AEGP_DynStreamFlag_HIDDEN removes a row from the panel. [main]
    A_Err (*AEGP_SetDynamicStreamFlag)(AEGP_StreamRefH streamH, AEGP_DynStreamFlags one_flag, A_Boolean undoableB,
                                       A_Boolean setB);
    /// A group's member by its 0-based position. The caller disposes of it with AEGP_DisposeStream. [main]
    A_Err (*AEGP_GetNewStreamRefByIndex)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH parent_groupH, A_long indexL,
                                         AEGP_StreamRefH* streamPH);
    /// A named group's member by match name. The caller disposes of it with AEGP_DisposeStream. [main]
    A_Err (*AEGP_GetNewStreamRefByMatchname)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH parent_groupH,
                                             const A_char* match_nameZ, AEGP_StreamRefH* streamPH);
    /// Takes a stream out of its group; the reference itself must still be disposed of. [main]
    A_Err (*AEGP_DeleteStream)(AEGP_StreamRefH streamH);
    /// Moves a stream to another 0-based position among the members of its group. [main]
    A_Err (*AEGP_ReorderStream)(AEGP_StreamRefH streamH, A_long new_indexL);
    /// Copies a stream within its group; `new_indexPL0`, which may be null, receives the copy's position. [main]
    A_Err (*AEGP_DuplicateStream)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH, A_long* new_indexPL0);
    /// Renames a stream; the string is the caller's and NUL-terminated. [main]
    A_Err (*AEGP_SetStreamName)(AEGP_StreamRefH streamH, const A_char* nameZ);
    /// Whether a group would accept a new member of this match name. [main]
    A_Err (*AEGP_CanAddStream)(AEGP_StreamRefH group_streamH, const A_char* match_nameZ, A_Boolean* can_addPB);
    /// Adds a member of this match name to a group. `streamPH0` may be null; what it receives is the caller's to
    /// dispose of with AEGP_DisposeStream. [main]
    A_Err (*AEGP_AddStream)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH indexed_group_streamH,
                            const A_char* match_nameZ, AEGP_StreamRefH* streamPH0);
    /// Copies the match name into the caller's buffer of AEGP_MAX_STREAM_MATCH_NAME_SIZE bytes. [main]
    A_Err (*AEGP_GetMatchName)(AEGP_StreamRefH streamH, A_char* nameZ);
    /// The group that holds a stream. The caller disposes of it with AEGP_DisposeStream. [main]
    A_Err (*AEGP_GetNewParentStreamRef)(AEGP_PluginID aegp_plugin_id, AEGP_StreamRefH streamH,
                                        AEGP_StreamRefH* parent_streamPH);
    /// Whether a stream differs from the state in which it was created. [main]
    A_Err (*AEGP_GetStreamIsModified)(AEGP_StreamRefH streamH, A_Boolean* modifiedPB);
};
