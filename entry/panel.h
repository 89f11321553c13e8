// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The effect's panel while it is open: changes of its controls, its looks, and the area it draws itself. [main]

#include "hostapi/commands.h"
#include "hostapi/custom_ui.h"

/// A control was changed or a button pressed. No control asks for a reaction yet. Returns 0; throws 516 for a missing
/// suite.
PF_Err UserChangedParam(PF_InData* in_data, PF_UserChangedParamExtra* extra);

/// The host asks for the looks of the controls. They stay as declared, whatever the parameters are. Returns 0; throws
/// 516 for a missing suite.
PF_Err UpdateParamsUI(PF_InData* in_data, PF_ParamDef* params[]);

/// An event of the self-drawn area. Only `PF_Event_DRAW` concerns the effect; other events return 0 and leave
/// everything as it was. Nothing is drawn yet, so a draw event is not marked handled either. Returns 0; throws 516 for
/// a missing suite.
PF_Err HandleEvent(PF_InData* in_data, PF_OutData* out_data, PF_EventExtra* event);
