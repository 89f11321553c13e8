// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The panel's commands. Each builds its suite cache, so a host without a basic suite learns of it here as everywhere.

#include "entry/panel.h"

#include "entry/suites/suite_handler.h"

namespace {

PF_Err DrawPanel(PF_InData* in_data, PF_OutData*, PF_EventExtra*) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    return PF_Err_NONE;
}

}  // namespace

PF_Err UserChangedParam(PF_InData* in_data, PF_UserChangedParamExtra*) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    return PF_Err_NONE;
}

PF_Err UpdateParamsUI(PF_InData* in_data, PF_ParamDef*[]) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    return PF_Err_NONE;
}

PF_Err HandleEvent(PF_InData* in_data, PF_OutData* out_data, PF_EventExtra* event) {
    if (event->e_type != PF_Event_DRAW) return PF_Err_NONE;
    return DrawPanel(in_data, out_data, event);
}
