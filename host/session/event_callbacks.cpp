// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What an event's record offers for its length: the way between layer, composition and window, which for a still
// picture of a panel are one and the same, and the application's info panel, which shows nothing here.

#include "host/session/session_state.h"
#include "host/suites/slots.h"

namespace umbrant::host {

namespace {

PF_Err SameAtATime(void*, PF_ContextH, A_long, A_long, PF_FixedPoint* point) {
    return point ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err Same(void*, PF_ContextH, PF_FixedPoint* point) {
    return point ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err LayerToComp(void*, PF_ContextH, A_long, A_long, PF_FloatMatrix* matrix) {
    if (!matrix) return PF_Err_BAD_CALLBACK_PARAM;
    *matrix = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    return PF_Err_NONE;
}

PF_Err CompToLayer(void*, PF_ContextH, A_long, A_long, A_long* exists, PF_FloatMatrix* matrix) {
    if (!exists || !matrix) return PF_Err_BAD_CALLBACK_PARAM;
    *exists = 1;
    *matrix = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    return PF_Err_NONE;
}

PF_Err ShowColor(void*, PF_Pixel) {
    return PF_Err_NONE;
}

PF_Err ShowText(void*, const A_char*, const A_char*) {
    return PF_Err_NONE;
}

constexpr char kTable[] = "event";
template <FixedText Call, auto Function>
using Slot = Served<kTable, Call, Function>;

}  // namespace

const PF_EventCallbacks kEventCallbacks = {
    .refcon = nullptr,
    .layer_to_comp = Slot<"layer_to_comp", SameAtATime>(),
    .comp_to_layer = Slot<"comp_to_layer", SameAtATime>(),
    .get_comp2layer_xform = Slot<"get_comp2layer_xform", CompToLayer>(),
    .get_layer2comp_xform = Slot<"get_layer2comp_xform", LayerToComp>(),
    .source_to_frame = Slot<"source_to_frame", Same>(),
    .frame_to_source = Slot<"frame_to_source", Same>(),
    .info_draw_color = Slot<"info_draw_color", ShowColor>(),
    .info_draw_text = Slot<"info_draw_text", ShowText>(),
};

}  // namespace umbrant::host
