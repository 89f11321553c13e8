// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The effect's panel while it is open: rows that follow the shadow type, and buttons that open web pages. What the
// effect draws itself is in panel_drawing.h. [main]

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"

/// Closes (`collapse` not 0) or opens the twirl of row `index`, whose type is `param_type`. Returns the host's error.
PF_Err collapseParam(PF_InData* in_data, AEGP_SuiteHandler* suites, PF_ParamDef* params[], int param_type, int index,
                     unsigned char collapse);

/// Greys out (`disable` not 0) or enables row `index`, whose type is `param_type`, and closes its twirl either way.
/// Returns the host's error.
PF_Err disableParam(PF_InData* in_data, AEGP_SuiteHandler* suites, PF_ParamDef* params[], int param_type, int index,
                    unsigned char disable);

/// Takes row `index` of the effect out of the panel (`hide` not 0) or puts it back, without a place in the undo
/// history. Returns the first of the host's errors; throws 516 for a missing suite, with no stream left behind.
PF_Err hideStream(AEGP_SuiteHandler* suites, int index, AEGP_EffectRefH* effect, unsigned char hide);

namespace umbrant::effect {

/// Makes the rows follow "Shadow Type". Stops at the host's first error and returns it; rows changed until then stay
/// changed. Throws 516 for a missing suite; the one that gives the instance's reference back is asked for last.
PF_Err UpdateParamsUI(PF_InData* in_data, PF_ParamDef* params[]);

/// A control was changed or a button pressed: the three buttons of "About & Support" open their pages, everything else
/// is ignored. Returns 0; throws 516 for a missing suite.
PF_Err UserChangedParam(PF_InData* in_data, PF_UserChangedParamExtra* extra);

}  // namespace umbrant::effect
