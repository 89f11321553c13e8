// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A tiny effect for tests of the host. It fills its output with "Color", lays the layer and the picture over it where
// they belong, and grows by "Border". Its "Flaw" popup makes it misbehave in one way at a time.

#include "tests/modules/painter.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <stdexcept>

#include "hostapi/registration.h"
#include "hostapi/suites/handle_suite.h"
#include "hostapi/suites/iterate8_suite.h"
#include "hostapi/suites/umbrant_host_suite.h"
#include "hostapi/suites/world_transform_suite.h"

#define PAINTER_EXPORT extern "C" [[gnu::visibility("default")]]

PAINTER_EXPORT PainterSeen painterSeen;
PainterSeen painterSeen;

namespace {

/// Writes into the record that all threads share; what is drawn never comes from there.
template <typename Function>
void Note(Function function) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    function(painterSeen);
}

PF_ParamDef NewDef(PF_ParamType type, const char* name) {
    PF_ParamDef def{};
    def.param_type = type;
    std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "%s", name);
    return def;
}

PF_Err ParamsSetup(PF_InData* in, PF_OutData* out) {
    // The texts live only during this call, as the host must expect.
    char flaws[sizeof(kPainterFlaws)];
    std::memcpy(flaws, kPainterFlaws, sizeof(flaws));
    char label[] = "Press";

    PF_ParamDef defs[PAINTER_COUNT];
    defs[PAINTER_GROUP_START] = NewDef(PF_Param_GROUP_START, "Paint");
    defs[PAINTER_COLOR] = NewDef(PF_Param_COLOR, "Color");
    defs[PAINTER_COLOR].u.cd.dephault = {255, 10, 20, 30};
    defs[PAINTER_BORDER] = NewDef(PF_Param_FLOAT_SLIDER, "Border");
    defs[PAINTER_BORDER].u.fs_d.valid_max = 40000;
    defs[PAINTER_BORDER].u.fs_d.slider_max = 10;
    defs[PAINTER_CENTRE] = NewDef(PF_Param_POINT, "Centre");
    defs[PAINTER_CENTRE].u.td.x_dephault = 50 << 16;
    defs[PAINTER_CENTRE].u.td.y_dephault = 25 << 16;
    defs[PAINTER_ANGLE] = NewDef(PF_Param_ANGLE, "Angle");
    defs[PAINTER_PICTURE] = NewDef(PF_Param_LAYER, "Picture");
    defs[PAINTER_GROUP_END] = NewDef(PF_Param_GROUP_END, "");
    defs[PAINTER_FLAW] = NewDef(PF_Param_POPUP, "Flaw");
    defs[PAINTER_FLAW].u.pd = {FLAW_NONE, kPainterFlawCount, FLAW_NONE, {flaws}};
    defs[PAINTER_BUTTON] = NewDef(PF_Param_BUTTON, "Button");
    defs[PAINTER_BUTTON].u.button_d.u.namesptr = label;
    for (int i = PAINTER_GROUP_START; i < PAINTER_COUNT; ++i) {
        if (const PF_Err error = in->inter.add_param(in->effect_ref, -1, &defs[i])) return error;
    }
    std::memset(flaws, 'x', sizeof(flaws) - 1);
    std::memset(label, 'x', sizeof(label) - 1);
    PF_CustomUIInfo info{};
    info.events = PF_CustomEFlag_EFFECT;
    in->inter.register_ui(in->effect_ref, &info);
    out->num_params = PAINTER_COUNT;
    return PF_Err_NONE;
}

PF_ParamDef ValueAt(PF_InData* in, PF_ParamIndex index, A_long time, A_u_long scale) {
    PF_ParamDef def{};
    in->inter.checkout_param(in->effect_ref, index, time, in->time_step, scale, &def);
    in->inter.checkin_param(in->effect_ref, &def);
    return def;
}

/// The time that the painter looks at: in one that looks elsewhere as many frames from its own as "Angle" has degrees,
/// to the quarter of a frame.
struct LookedAt {
    A_long time;
    A_u_long scale;
};

LookedAt TimeOf(PF_InData* in) {
#ifdef PAINTER_LOOKS_ELSEWHERE
    const PF_ParamDef angle = ValueAt(in, PAINTER_ANGLE, in->current_time, in->time_scale);
    return {4 * in->current_time + (angle.u.ad.value >> 14) * in->time_step, 4 * in->time_scale};
#else
    return {in->current_time, in->time_scale};
#endif
}

PF_ParamDef Value(PF_InData* in, PF_ParamIndex index) {
    const LookedAt at = TimeOf(in);
    return ValueAt(in, index, at.time, at.scale);
}

PainterFlaw FlawOf(PF_InData* in) {
    return static_cast<PainterFlaw>(Value(in, PAINTER_FLAW).u.pd.value);
}

PF_LRect Grown(PF_LRect rect, A_long by) {
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

void Delete(void* data) {
    Note([](PainterSeen& seen) { ++seen.deleted; });
    delete static_cast<int*>(data);
}

PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra) {
    const PainterFlaw flaw = FlawOf(in);
    Note([&](PainterSeen& seen) {
        seen.preRenderIn = *in;
        seen.preRender = *extra->input;
        seen.resultBefore = extra->output->result_rect;
        seen.maxBefore = extra->output->max_result_rect;
        ++seen.allocated;
    });
    extra->output->pre_render_data = new int(42);
    extra->output->delete_pre_render_data_func = Delete;
    if (flaw == FLAW_PRE_RENDER_ERROR) return PF_Err_OUT_OF_MEMORY;

    const auto checkout = [&](PF_ParamIndex index, A_long id, PF_CheckoutResult& result) {
        const LookedAt at = TimeOf(in);
        return extra->cb->checkout_layer(in->effect_ref, index, id, &extra->input->output_request, at.time,
                                         in->time_step, at.scale, &result);
    };
    PF_CheckoutResult input{};
    PF_CheckoutResult picture{};
    if (const PF_Err error = checkout(PAINTER_LAYER, kPainterInputId, input)) return error;
    const A_long pictureId = flaw == FLAW_SAME_ID ? kPainterInputId : kPainterPictureId;
    if (const PF_Err error = checkout(PAINTER_PICTURE, pictureId, picture)) return error;
    Note([&](PainterSeen& seen) {
        seen.input = input;
        seen.picture = picture;
    });

    const double border = Value(in, PAINTER_BORDER).u.fs_d.value * in->downsample_x.num / in->downsample_x.den;
    const auto by = static_cast<A_long>(std::ceil(border));
    extra->output->max_result_rect = Grown(input.max_result_rect, by);
    extra->output->result_rect = Grown(input.result_rect, by);
    if (flaw == FLAW_TOO_LARGE) extra->output->result_rect = {0, 0, 30001, 10};
    if (flaw != FLAW_NO_EXTRA_FLAG) extra->output->flags |= PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS;
    return PF_Err_NONE;
}

template <typename Suite, typename Function>
PF_Err WithSuite(PF_InData* in, const char* name, int32_t version, Function function) {
    const void* suite = nullptr;
    if (const PF_Err error = in->pica_basicP->AcquireSuite(name, version, &suite)) return error;
    const PF_Err error = function(static_cast<const Suite*>(suite));
    in->pica_basicP->ReleaseSuite(name, version);
    return error;
}

PF_Err Lay(PF_InData* in, PF_EffectWorld* world, PF_EffectWorld* output) {
    if (!world) return PF_Err_NONE;
    const A_long x = world->origin_x - output->origin_x;
    const A_long y = world->origin_y - output->origin_y;
    PF_Rect place{x, y, x + world->width, y + world->height};
    return in->utils->copy(in->effect_ref, world, output, nullptr, &place);
}

PF_Err ThrowPixel(void*, A_long, A_long, PF_Pixel*, PF_Pixel*) {
    throw std::runtime_error("in a pixel");
}

PF_Err FailPixel(void*, A_long, A_long y, PF_Pixel*, PF_Pixel*) {
    return y == 1 ? 1234 : PF_Err_NONE;
}

/// The flaws that show once the picture is drawn.
PF_Err ShowFlaw(PainterFlaw flaw, PF_InData* in, PF_OutData* out, PF_SmartRenderExtra* extra, PF_EffectWorld* output) {
    PF_EffectWorld* world = nullptr;
    switch (flaw) {
        case FLAW_THROW:
            throw std::runtime_error("the painter is out of paint");
        case FLAW_THROW_NUMBER:
            throw 77;
        case FLAW_ERROR_WITH_MESSAGE:
            out->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
            in->utils->ansi.sprintf(out->return_msg, "%s %d", "No paint", 4);
            return A_Err_MISSING_SUITE;
        case FLAW_LONG_MESSAGE:
            std::memset(out->return_msg, 'm', sizeof(out->return_msg));
            return PF_Err_NONE;
        case FLAW_LEAK:
            return WithSuite<PF_HandleSuite1>(in, kPFHandleSuiteName, kPFHandleSuiteVersion1,
                                              [](const PF_HandleSuite1* suite) {
                                                  suite->host_lock_handle(suite->host_new_handle(16));
                                                  return PF_Err_NONE;
                                              });
        case FLAW_UNKNOWN_CHECKOUT:
            return extra->cb->checkout_layer_pixels(in->effect_ref, 99, &world);
        case FLAW_CHECKOUT_TWICE:
            return extra->cb->checkout_layer_pixels(in->effect_ref, kPainterInputId, &world);
        case FLAW_UNKNOWN_SUITE:
            return WithSuite<void>(in, "PF Suite Of Dreams", 3, [](const void*) { return PF_Err_NONE; });
        case FLAW_MISSING_SLOT:
            return WithSuite<PF_WorldTransformSuite1>(in, kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1,
                                                      [&](const PF_WorldTransformSuite1* suite) {
                                                          return suite->convolve(in->effect_ref, output, nullptr, 0, 3,
                                                                                 nullptr, nullptr, nullptr, nullptr,
                                                                                 output);
                                                      });
        case FLAW_BAD_REFERENCE:
            return in->utils->fill(nullptr, nullptr, nullptr, output);
        case FLAW_THROW_IN_PIXELS:
            return in->utils->iterate(in, 0, output->height, nullptr, nullptr, nullptr, ThrowPixel, output);
        case FLAW_ERROR_IN_PIXELS:
            return in->utils->iterate(in, 0, output->height, nullptr, nullptr, nullptr, FailPixel, output);
        default:
            return PF_Err_NONE;
    }
}

PF_Err Render(PF_InData* in, PF_OutData* out, PF_SmartRenderExtra* extra) {
    const PainterFlaw flaw = FlawOf(in);
    const PF_ParamDef centre = Value(in, PAINTER_CENTRE);
    const PF_ParamDef layer = Value(in, PAINTER_LAYER);
    Note([&](PainterSeen& seen) {
        seen.renderIn = *in;
        seen.outBefore = *out;
        seen.render = *extra->input;
        seen.centre = centre;
        seen.layer = layer;
    });
    if (flaw == FLAW_NO_OUTPUT) return PF_Err_NONE;

    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* picture = nullptr;
    PF_EffectWorld* output = nullptr;
    const PF_ProgPtr ref = in->effect_ref;
    if (const PF_Err error = extra->cb->checkout_layer_pixels(ref, kPainterInputId, &input)) return error;
    PF_Err error = extra->cb->checkout_layer_pixels(ref, kPainterPictureId, &picture);
    if (!error) error = extra->cb->checkout_output(ref, &output);
    Note([&](PainterSeen& seen) {
        seen.inputWorld = input ? *input : PF_EffectWorld{};
        seen.pictureWorld = picture ? *picture : PF_EffectWorld{};
        if (error) return;
        seen.outputWorld = *output;
        seen.firstOutputByte = output->data->alpha;
    });
    if (!error) {
        const PF_Pixel color = Value(in, PAINTER_COLOR).u.cd.value;
        error = in->utils->fill(ref, &color, nullptr, output);
    }
    if (!error) error = Lay(in, picture, output);
    if (!error) error = Lay(in, input, output);
    if (!error) error = ShowFlaw(flaw, in, out, extra, output);
    if (flaw != FLAW_NO_CHECKIN) {
        extra->cb->checkin_layer_pixels(ref, kPainterInputId);
        extra->cb->checkin_layer_pixels(ref, kPainterPictureId);
    }
    if (flaw == FLAW_LATE_CHECKOUT) extra->cb->checkin_layer_pixels(ref, kPainterInputId);
    return error;
}

PF_Err UserChanged(PF_InData* in, PF_ParamDef* params[], const PF_UserChangedParamExtra* extra) {
    if (extra->param_index != PAINTER_BUTTON) return PF_Err_NONE;
    // A press takes the border to 3, puts the point at 7,9, and writes an angle without saying so.
    params[PAINTER_BORDER]->u.fs_d.value = 3;
    params[PAINTER_BORDER]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
    params[PAINTER_CENTRE]->u.td.x_value = 7 << 16;
    params[PAINTER_CENTRE]->u.td.y_value = 9 << 16;
    params[PAINTER_CENTRE]->uu.change_flags = PF_ChangeFlag_CHANGED_VALUE;
    params[PAINTER_ANGLE]->u.ad.value = 90 << 16;
    return in->inter.progress(in->effect_ref, 1, 1);
}

}  // namespace

PAINTER_EXPORT PF_Err PaintMain(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[], PF_LayerDef*,
                                void* extra) {
    if (command >= 0 && command < PF_Cmd_NUM_CMDS) {
        Note([&](PainterSeen& seen) { ++seen.commands[command]; });
    }
    switch (command) {
        case PF_Cmd_ABOUT:
            std::snprintf(out->return_msg, sizeof(out->return_msg), "%s", "Painter\nfor tests\n");
            return PF_Err_NONE;
        case PF_Cmd_GLOBAL_SETUP:
            out->my_version = 0x99801;
            out->out_flags = PF_OutFlag_SEND_UPDATE_PARAMS_UI;
            out->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS;
#ifdef PAINTER_IS_THREADED
            out->out_flags2 |= PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
#endif
#ifdef PAINTER_SHARES_LAYERS
            if (const PF_Err error =
                    WithSuite<UMBRANT_HostSuite1>(in, kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1,
                                                  [](const UMBRANT_HostSuite1*) -> PF_Err { return PF_Err_NONE; })) {
                return error;
            }
#endif
            out->global_data = in->utils->host_new_handle(32);
            return PF_Err_NONE;
        case PF_Cmd_QUERY_DYNAMIC_FLAGS:
            out->out_flags |= PF_OutFlag_NON_PARAM_VARY;
            return PF_Err_NONE;
        case PF_Cmd_GLOBAL_SETDOWN:
            in->utils->host_dispose_handle(in->global_data);
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP:
            return ParamsSetup(in, out);
        case PF_Cmd_USER_CHANGED_PARAM:
            return UserChanged(in, params, static_cast<const PF_UserChangedParamExtra*>(extra));
        case PF_Cmd_SMART_PRE_RENDER:
            return PreRender(in, static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return Render(in, out, static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}

PAINTER_EXPORT PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer, PF_PluginDataCB callback, SPBasicSuite*,
                                              const char*, const char*) {
    const auto text = [](const char* characters) { return reinterpret_cast<const A_u_char*>(characters); };
    return callback(pointer, text("Painter"), text("TEST painter"), text("Tests"), text("PaintMain"),
                    kPluginKind_Effect, 13, 28, 8);
}
