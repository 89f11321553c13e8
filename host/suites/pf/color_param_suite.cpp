// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF ColorParamSuite" 1: a colour parameter as floating-point colour; see host/parameters/float_color.h.

#include "hostapi/suites/color_param_suite.h"

#include "host/parameters/float_color.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

PF_Err GetFloatingPointColorFromColorDef(PF_ProgPtr effectRef, const PF_ParamDef* def, PF_PixelFloat* color) {
    if (!EffectRef::Of(effectRef, "PF_GetFloatingPointColorFromColorDef")) return PF_Err_BAD_CALLBACK_PARAM;
    if (!def || !color || def->param_type != PF_Param_COLOR) return PF_Err_BAD_CALLBACK_PARAM;
    const FloatColor value = FloatColorOf(*def);
    *color = {static_cast<PF_FpShort>(def->u.cd.value.alpha) / PF_MAX_CHAN8, value.red, value.green, value.blue};
    return PF_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFColorParamSuiteName, Call, Function>;

}  // namespace

const PF_ColorParamSuite1 kColorParamSuite = {
    .PF_GetFloatingPointColorFromColorDef =
        Slot<"PF_GetFloatingPointColorFromColorDef", GetFloatingPointColorFromColorDef>(),
};

}  // namespace umbrant::host
