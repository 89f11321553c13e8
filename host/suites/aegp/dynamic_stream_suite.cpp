// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "AEGP Dynamic Stream Suite" 2: whether a parameter's row is hidden or disabled. Nothing can be undone here, so
// undoable and not undoable are the same.

#include "hostapi/suites/aegp_dynamic_stream_suite.h"

#include "host/suites/aegp/tokens.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err GetDynamicStreamFlags(AEGP_StreamRefH stream, AEGP_DynStreamFlags* flags) {
    const Token* token = FindToken(stream, TokenKind::kStream, "AEGP_GetDynamicStreamFlags");
    if (!token || !flags) return A_Err_PARAMETER;
    const PanelRow row = token->services->panel.Rows().at(static_cast<std::size_t>(token->index));
    *flags = (row.hidden ? AEGP_DynStreamFlag_HIDDEN : 0) | (row.disabled ? AEGP_DynStreamFlag_DISABLED : 0);
    return A_Err_NONE;
}

PF_Err SetDynamicStreamFlag(AEGP_StreamRefH stream, AEGP_DynStreamFlags flag, A_Boolean, A_Boolean set) {
    const Token* token = FindToken(stream, TokenKind::kStream, "AEGP_SetDynamicStreamFlag");
    if (!token) return A_Err_PARAMETER;
    PanelState& panel = token->services->panel;
    if (flag == AEGP_DynStreamFlag_HIDDEN) return panel.SetHidden(token->index, set) ? A_Err_NONE : A_Err_PARAMETER;
    if (flag == AEGP_DynStreamFlag_DISABLED) return panel.SetDisabled(token->index, set) ? A_Err_NONE : A_Err_PARAMETER;
    return A_Err_PARAMETER;
}

template <FixedText Call, auto Function>
using Slot = Served<kAEGPDynamicStreamSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kAEGPDynamicStreamSuiteName, Call>;

}  // namespace

const AEGP_DynamicStreamSuite2 kDynamicStreamSuite = {
    .AEGP_GetNewStreamRefForLayer = NoSlot<"AEGP_GetNewStreamRefForLayer">(),
    .AEGP_GetStreamDepth = NoSlot<"AEGP_GetStreamDepth">(),
    .AEGP_GetStreamGroupingType = NoSlot<"AEGP_GetStreamGroupingType">(),
    .AEGP_GetNumStreamsInGroup = NoSlot<"AEGP_GetNumStreamsInGroup">(),
    .AEGP_GetDynamicStreamFlags = Slot<"AEGP_GetDynamicStreamFlags", GetDynamicStreamFlags>(),
    .AEGP_SetDynamicStreamFlag = Slot<"AEGP_SetDynamicStreamFlag", SetDynamicStreamFlag>(),
    .AEGP_GetNewStreamRefByIndex = NoSlot<"AEGP_GetNewStreamRefByIndex">(),
    .AEGP_GetNewStreamRefByMatchname = NoSlot<"AEGP_GetNewStreamRefByMatchname">(),
    .AEGP_DeleteStream = NoSlot<"AEGP_DeleteStream">(),
    .AEGP_ReorderStream = NoSlot<"AEGP_ReorderStream">(),
    .AEGP_DuplicateStream = NoSlot<"AEGP_DuplicateStream">(),
    .AEGP_SetStreamName = NoSlot<"AEGP_SetStreamName">(),
    .AEGP_CanAddStream = NoSlot<"AEGP_CanAddStream">(),
    .AEGP_AddStream = NoSlot<"AEGP_AddStream">(),
    .AEGP_GetMatchName = NoSlot<"AEGP_GetMatchName">(),
    .AEGP_GetNewParentStreamRef = NoSlot<"AEGP_GetNewParentStreamRef">(),
    .AEGP_GetStreamIsModified = NoSlot<"AEGP_GetStreamIsModified">(),
};

}  // namespace umbrant::host
