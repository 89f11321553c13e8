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

PF_Err SamePoint(void*, PF_ContextH, PF_FixedPoint* point) {
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

constexpr char kEventTable[] = "event";
template <FixedText Call, auto Function>
using EventSlot = Served<kEventTable, Call, Function>;

}  // namespace

const PF_EventCallbacks kEventCallbacks = {
    .refcon = nullptr,
    .layer_to_comp = EventSlot<"layer_to_comp", SameAtATime>(),
    .comp_to_layer = EventSlot<"comp_to_layer", SameAtATime>(),
    .get_comp2layer_xform = EventSlot<"get_comp2layer_xform", CompToLayer>(),
    .get_layer2comp_xform = EventSlot<"get_layer2comp_xform", LayerToComp>(),
    .source_to_frame = EventSlot<"source_to_frame", SamePoint>(),
    .frame_to_source = EventSlot<"frame_to_source", SamePoint>(),
    .info_draw_color = EventSlot<"info_draw_color", ShowColor>(),
    .info_draw_text = EventSlot<"info_draw_text", ShowText>(),
};

}  // namespace umbrant::host
