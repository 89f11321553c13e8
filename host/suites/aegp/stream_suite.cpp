// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "AEGP Stream Suite" 7: references to the streams of the effect's parameters. Values go through parameter check-outs,
// so their calls are not here.

#include "hostapi/suites/aegp_stream_suite.h"

#include "host/suites/aegp/tokens.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err GetEffectNumParamStreams(AEGP_EffectRefH effect, A_long* number) {
    const Token* token = FindToken(effect, TokenKind::kEffect, "AEGP_GetEffectNumParamStreams");
    if (!token || !number) return A_Err_PARAMETER;
    *number = token->services->panel.Count();
    return A_Err_NONE;
}

PF_Err GetNewEffectStreamByIndex(AEGP_PluginID, AEGP_EffectRefH effect, PF_ParamIndex index, AEGP_StreamRefH* stream) {
    if (stream) *stream = nullptr;
    const Token* token = FindToken(effect, TokenKind::kEffect, "AEGP_GetNewEffectStreamByIndex");
    if (!token || !stream || index < 0 || index >= token->services->panel.Count()) return A_Err_PARAMETER;
    *stream = reinterpret_cast<AEGP_StreamRefH>(NewToken(TokenKind::kStream, token->services, index));
    return A_Err_NONE;
}

PF_Err DisposeStream(AEGP_StreamRefH stream) {
    return DisposeToken(stream, TokenKind::kStream, "AEGP_DisposeStream") ? A_Err_NONE : A_Err_PARAMETER;
}

template <FixedText Call, auto Function>
using Slot = Served<kAEGPStreamSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kAEGPStreamSuiteName, Call>;

}  // namespace

const AEGP_StreamSuite2 kStreamSuite = {
    .AEGP_IsStreamLegal = NoSlot<"AEGP_IsStreamLegal">(),
    .AEGP_CanVaryOverTime = NoSlot<"AEGP_CanVaryOverTime">(),
    .AEGP_GetValidInterpolations = NoSlot<"AEGP_GetValidInterpolations">(),
    .AEGP_GetNewLayerStream = NoSlot<"AEGP_GetNewLayerStream">(),
    .AEGP_GetEffectNumParamStreams = Slot<"AEGP_GetEffectNumParamStreams", GetEffectNumParamStreams>(),
    .AEGP_GetNewEffectStreamByIndex = Slot<"AEGP_GetNewEffectStreamByIndex", GetNewEffectStreamByIndex>(),
    .AEGP_GetNewMaskStream = NoSlot<"AEGP_GetNewMaskStream">(),
    .AEGP_DisposeStream = Slot<"AEGP_DisposeStream", DisposeStream>(),
    .AEGP_GetStreamName = NoSlot<"AEGP_GetStreamName">(),
    .AEGP_GetStreamUnitsText = NoSlot<"AEGP_GetStreamUnitsText">(),
    .AEGP_GetStreamProperties = NoSlot<"AEGP_GetStreamProperties">(),
    .AEGP_IsStreamTimevarying = NoSlot<"AEGP_IsStreamTimevarying">(),
    .AEGP_GetStreamType = NoSlot<"AEGP_GetStreamType">(),
    .AEGP_GetNewStreamValue = NoSlot<"AEGP_GetNewStreamValue">(),
    .AEGP_DisposeStreamValue = NoSlot<"AEGP_DisposeStreamValue">(),
    .AEGP_SetStreamValue = NoSlot<"AEGP_SetStreamValue">(),
    .AEGP_GetLayerStreamValue = NoSlot<"AEGP_GetLayerStreamValue">(),
    .AEGP_GetExpressionState = NoSlot<"AEGP_GetExpressionState">(),
    .AEGP_SetExpressionState = NoSlot<"AEGP_SetExpressionState">(),
    .AEGP_GetExpression = NoSlot<"AEGP_GetExpression">(),
    .AEGP_SetExpression = NoSlot<"AEGP_SetExpression">(),
    .AEGP_DuplicateStreamRef = NoSlot<"AEGP_DuplicateStreamRef">(),
};

}  // namespace umbrant::host
