// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF Effect UI Suite" 1: options of the panel.

#include "hostapi/suites/effect_ui_suite.h"

#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err SetOptionsButtonName(PF_ProgPtr effectRef, const A_char* name) {
    EffectRef* effect = EffectRef::Of(effectRef, "PF_SetOptionsButtonName");
    if (!effect || !name) return PF_Err_BAD_CALLBACK_PARAM;
    effect->services->panel.SetOptionsButton(name);
    return PF_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFEffectUISuiteName, Call, Function>;

}  // namespace

const PF_EffectUISuite1 kEffectUISuite = {
    .PF_SetOptionsButtonName = Slot<"PF_SetOptionsButtonName", SetOptionsButtonName>(),
};

}  // namespace umbrant::host
