// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "PF Effect Custom UI Suite" 1: where a self-drawn row gets its drawing reference. There is one while a draw event
// lasts, for that event's context.

#include "hostapi/suites/effect_custom_ui_suite.h"

#include "host/suites/drawbot/canvas.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err GetDrawingReference(PF_ContextH context, DRAWBOT_DrawRef* reference) {
    if (!reference) return PF_Err_BAD_CALLBACK_PARAM;
    DrawbotCanvas* canvas = DrawbotCanvas::Of(context, "PF_GetDrawingReference");
    *reference = canvas ? canvas->Draw() : nullptr;
    return canvas ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

template <FixedText Call, auto Function>
using Slot = Served<kPFEffectCustomUISuiteName, Call, Function>;

}  // namespace

const PF_EffectCustomUISuite1 kEffectCustomUISuite = {
    .PF_GetDrawingReference = Slot<"PF_GetDrawingReference", GetDrawingReference>(),
};

}  // namespace umbrant::host
