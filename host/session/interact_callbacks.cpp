// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `in_data->inter`: the declaration of parameters, their values, progress, custom interface.

#include <fmt/format.h>

#include <cstring>

#include "host/session/frame_record.h"
#include "host/session/session_state.h"
#include "host/suites/slots.h"

namespace umbrant::host {

namespace {

constexpr char kInteractTable[] = "interact";
template <FixedText Call, auto Function>
using InteractSlot = Served<kInteractTable, Call, Function>;
template <FixedText Call>
using NoInteractSlot = Missing<kInteractTable, Call>;

/// The content of a definition that was checked in, where the host is strict about late use.
constexpr int kStaleByte = 0xDB;

/// The session behind a reference; null, with a report, when it is none of ours.
SessionState* SessionOf(PF_ProgPtr effectRef, const char* call) {
    EffectRef* ref = EffectRef::Of(effectRef, call);
    return ref ? ref->services->session : nullptr;
}

/// A layer parameter's definition is the layer: size and pixels, full frame.
void FillLayer(PF_LayerDef& layer, const World* world, PF_Point origin) {
    if (!world) return;
    const A_long dephault = layer.dephault;
    layer = world->Def();
    layer.origin_x = origin.x;
    layer.origin_y = origin.y;
    layer.dephault = dephault;
}

/// Outside of frames nothing moves: every time has the same values.
PF_Err CheckoutParam(PF_ProgPtr effectRef, PF_ParamIndex index, A_long time, A_long, A_u_long timeScale,
                     PF_ParamDef* param) {
    SessionState* state = SessionOf(effectRef, "checkout_param");
    if (!state || !param || timeScale == 0) return PF_Err_BAD_CALLBACK_PARAM;
    FrameRecord* frame = EffectRef::Of(effectRef, "checkout_param")->frame;
    const Moment moment{time, timeScale};
    std::unique_lock<std::mutex> lock;
    if (frame) lock = std::unique_lock(frame->mutex);
    const ParamSet& params = frame ? frame->ParamsAt(moment) : state->params;
    if (index < 0 || index >= params.Count()) {
        Report(fmt::format("checkout_param was called for row {}, which does not exist", index));
        return PF_Err_INVALID_INDEX;
    }
    *param = params.CheckOut(index, frame ? frame->layers.geometry : state->PanelGeometry());
    if (frame && param->param_type == PF_Param_LAYER) {
        const LayersSeen* layers = frame->LayersAt(moment);
        if (!layers) return PF_Err_INVALID_CALLBACK;
        if (index == 0) {
            FillLayer(param->u.ld, layers->pictures.layer, {});
        } else {
            FillLayer(param->u.ld, layers->pictures.texture, frame->request.textureOrigin);
        }
    }
    Count(Resource::kParam, 1);
    return PF_Err_NONE;
}

PF_Err CheckinParam(PF_ProgPtr effectRef, PF_ParamDef* param) {
    if (!SessionOf(effectRef, "checkin_param") || !param) return PF_Err_BAD_CALLBACK_PARAM;
    // A definition is the host's again from here on; a strict one makes sure that nobody relies on its bytes.
    if (EffectRef::Of(effectRef, "checkin_param")->services->strictLending)
        std::memset(param, kStaleByte, sizeof(*param));
    Count(Resource::kParam, -1);
    return PF_Err_NONE;
}

PF_Err AddParam(PF_ProgPtr effectRef, PF_ParamIndex index, PF_ParamDefPtr def) {
    SessionState* state = SessionOf(effectRef, "add_param");
    if (!state) return PF_Err_BAD_CALLBACK_PARAM;
    if (!state->declaring) {
        Report("add_param was called outside of parameter set-up");
        return PF_Err_INVALID_CALLBACK;
    }
    return state->params.Add(index, def);
}

PF_Err RegisterUI(PF_ProgPtr effectRef, PF_CustomUIInfo* info) {
    SessionState* state = SessionOf(effectRef, "register_ui");
    if (!state || !info) return PF_Err_BAD_CALLBACK_PARAM;
    if (!state->declaring) {
        Report("register_ui was called outside of parameter set-up");
        return PF_Err_INVALID_CALLBACK;
    }
    state->customUIs.push_back(*info);
    return PF_Err_NONE;
}

/// 0: go on. The fault hook is what interrupts.
PF_Err Abort(PF_ProgPtr effectRef) {
    return SessionOf(effectRef, "abort") ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err Progress(PF_ProgPtr effectRef, A_long, A_long) {
    return SessionOf(effectRef, "progress") ? PF_Err_NONE : PF_Err_BAD_CALLBACK_PARAM;
}

}  // namespace

const PF_InteractCallbacks kInteractCallbacks = {
    .checkout_param = InteractSlot<"checkout_param", CheckoutParam>(),
    .checkin_param = InteractSlot<"checkin_param", CheckinParam>(),
    .add_param = InteractSlot<"add_param", AddParam>(),
    .abort = InteractSlot<"abort", Abort>(),
    .progress = InteractSlot<"progress", Progress>(),
    .register_ui = InteractSlot<"register_ui", RegisterUI>(),
    .checkout_layer_audio = NoInteractSlot<"checkout_layer_audio">(),
    .checkin_layer_audio = NoInteractSlot<"checkin_layer_audio">(),
    .get_audio_data = NoInteractSlot<"get_audio_data">(),
    .reserved_str = {},
    .reserved = {},
};

}  // namespace umbrant::host
