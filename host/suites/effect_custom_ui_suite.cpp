// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF Effect Custom UI Suite" 1: where a self-drawn row gets its drawing reference. This host has no panel to draw on,
// so there is no context that one could be given for.

#include "hostapi/suites/effect_custom_ui_suite.h"

#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace {

PF_Err GetDrawingReference(PF_ContextH, DRAWBOT_DrawRef* reference) {
    if (!reference) return PF_Err_BAD_CALLBACK_PARAM;
    *reference = nullptr;
    return PF_Err_BAD_CALLBACK_PARAM;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFEffectCustomUISuiteName, Call, Function>;

}  // namespace

const PF_EffectCustomUISuite1 kEffectCustomUISuite = {
    .PF_GetDrawingReference = Slot<"PF_GetDrawingReference", GetDrawingReference>(),
};
