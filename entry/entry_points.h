// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The two functions that the module exports, under their unmangled names; entry/exports.map lists the same two.

#include "hostapi/commands.h"
#include "hostapi/registration.h"

extern "C" {

/// Announces the effect: calls the host's callback once and returns what it returns; a thrown integer as it was thrown,
/// any other exception as `PF_Err_INTERNAL_STRUCT_DAMAGED`. No exception leaves it. The basic suite, host name and host
/// version are not used. [main]
__attribute__((visibility("default"))) PF_Err PluginDataEntryFunction(PF_PluginDataPtr inPtr,
                                                                      PF_PluginDataCB inPluginDataCallBackPtr,
                                                                      SPBasicSuite* inSPBasicSuitePtr,
                                                                      const char* inHostName,
                                                                      const char* inHostVersion);

/// Answers every command of the host. Returns the handler's error; a thrown integer as it was thrown, any other
/// exception as `PF_Err_INTERNAL_STRUCT_DAMAGED`. No exception leaves it. Pre-render and render come on any thread,
/// everything else on the main thread.
__attribute__((visibility("default"))) PF_Err EffectMain(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data,
                                                         PF_ParamDef* params[], PF_LayerDef* output, void* extra);
}
