// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF Param Utils Suite" 3: changes to how a parameter's row looks.

#include "hostapi/suites/param_utils_suite.h"

#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

/// Only the looks are taken over; a value handed along is not.
PF_Err UpdateParamUI(PF_ProgPtr effectRef, PF_ParamIndex index, const PF_ParamDef* def) {
    EffectRef* effect = EffectRef::Of(effectRef, "PF_UpdateParamUI");
    if (!effect || !def) return PF_Err_BAD_CALLBACK_PARAM;
    if (effect->services->panel.Update(index, *def)) return PF_Err_NONE;
    Report("PF_UpdateParamUI was called for row " + std::to_string(index) + ", which does not exist with that type");
    return PF_Err_BAD_CALLBACK_PARAM;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFParamUtilsSuiteName, Call, Function>;
template <FixedText Call>
using NoSlot = Missing<kPFParamUtilsSuiteName, Call>;

}  // namespace

const PF_ParamUtilsSuite3 kParamUtilsSuite = {
    .PF_UpdateParamUI = Slot<"PF_UpdateParamUI", UpdateParamUI>(),
    .PF_GetCurrentState = NoSlot<"PF_GetCurrentState">(),
    .PF_AreStatesIdentical = NoSlot<"PF_AreStatesIdentical">(),
    .PF_IsIdenticalCheckout = NoSlot<"PF_IsIdenticalCheckout">(),
    .PF_FindKeyframeTime = NoSlot<"PF_FindKeyframeTime">(),
    .PF_GetKeyframeCount = NoSlot<"PF_GetKeyframeCount">(),
    .PF_CheckoutKeyframe = NoSlot<"PF_CheckoutKeyframe">(),
    .PF_CheckinKeyframe = NoSlot<"PF_CheckinKeyframe">(),
    .PF_KeyIndexToTime = NoSlot<"PF_KeyIndexToTime">(),
};

}  // namespace umbrant::host
