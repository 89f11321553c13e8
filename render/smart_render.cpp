// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/smart_render.h"

#include <cstring>

#include "entry/global_data.h"
#include "entry/suites/suite_handler.h"
#include "entry/suites/without_throwing.h"
#include "gl/return_message.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "platform/fork.h"
#include "platform/gl_api.h"
#include "render/composite.h"
#include "render/fill_settings.h"
#include "render/layer_checkout.h"
#include "render/param_checkout.h"
#include "render/passes.h"
#include "render/processor_passes.h"
#include "render/processor_path.h"
#include "render/radial_samples.h"
#include "render/renderer_request.h"
#include "render/samples.h"

namespace {

constexpr char kLostByFork[] =
    "UM2 Error: this process was forked from one that uses OpenGL, which does not work in it. Fork before the effect "
    "is set up, start a new program, or draw with the processor";
constexpr char kSetUpForProcessor[] =
    "UM2 Error: the effect was set up to draw with the processor, so OpenGL is not there. Ask for OpenGL before it is "
    "set up, or draw with the processor";

// Layers checked out for one render; checked in again on every road out, also when a suite is missing.
class CheckedOutLayers {
 public:
    CheckedOutLayers(PF_InData* in_data, const PF_SmartRenderCallbacks* callbacks)
        : in_data_(in_data), callbacks_(callbacks) {}
    ~CheckedOutLayers() {
        while (count_ > 0) WithoutThrowing([this] { CheckIn(); });
    }
    CheckedOutLayers(const CheckedOutLayers&) = delete;
    CheckedOutLayers& operator=(const CheckedOutLayers&) = delete;

    PF_Err CheckOut(A_long id, PF_LayerDef** world) {
        const PF_Err err = callbacks_->checkout_layer_pixels(in_data_->effect_ref, id, world);
        if (!err) ids_[count_++] = id;
        return err;
    }

    // Returns the first error; every layer is checked in all the same.
    PF_Err CheckIn() {
        PF_Err first = PF_Err_NONE;
        while (count_ > 0) {
            const PF_Err err = callbacks_->checkin_layer_pixels(in_data_->effect_ref, ids_[--count_]);
            if (!first) first = err;
        }
        return first;
    }

 private:
    PF_InData* in_data_;
    const PF_SmartRenderCallbacks* callbacks_;
    A_long ids_[2] = {};
    int count_ = 0;
};

// The panel shows which renderer draws; the first render knows. Called with the render mutex held.
void RecordRenderer(PF_InData* in_data, AEGP_SuiteHandler& suites, const char* renderer) {
    if (!in_data->global_data) return;
    const LockedGlobalData locked(suites.HandleSuite1(), in_data->global_data);
    GlobalData* global = locked.Get();
    if (!global || global->rendererRecorded) return;
    if (renderer) {
        std::strncpy(global->gl_renderer, renderer, sizeof(global->gl_renderer) - 1);
        global->gl_renderer[sizeof(global->gl_renderer) - 1] = '\0';
    }
    global->rendererRecorded = 1;
}

bool IsWithoutOpenGL(const PF_InData* in_data, AEGP_SuiteHandler& suites) {
    if (!in_data->global_data) return false;
    const LockedGlobalData locked(suites.HandleSuite1(), in_data->global_data);
    return locked.Get() && locked.Get()->withoutOpenGL;
}

// Drawn by the processor: no thread state, no OpenGL.
PF_Err RenderPassesOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                               const RadialGeometry& radial) {
    if (!HasProcessorPath()) return PF_Err_INTERNAL_STRUCT_DAMAGED;
    RecordRenderer(in_data, suites, ProcessorName().c_str());
    switch (settings->shadowType) {
        case SHADOW_NORMAL:
            return RenderNormalOnProcessor(in_data, out_data, suites, settings);
        case SHADOW_INNER:
            return RenderInnerOnProcessor(in_data, out_data, suites, settings);
        case SHADOW_RADIAL:
            return RenderRadialOnProcessor(in_data, out_data, suites, settings, radial);
        default:
            return PF_Err_NONE;
    }
}

PF_Err RenderPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                    const RadialGeometry& radial) {
    RendererChoice choice = RendererChoice::kRefused;
    if (PF_Err err = ReadRendererRequest(in_data, &choice)) return err;
    if (choice == RendererChoice::kRefused) return PF_Err_INTERNAL_STRUCT_DAMAGED;
    if (choice == RendererChoice::kProcessor) {
        return RenderPassesOnProcessor(in_data, out_data, suites, settings, radial);
    }
    if (OpenGLLostByFork()) {
        WriteReturnMessage(kLostByFork, out_data);
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
    InitThreadLocalRenderData(in_data, out_data);
    if (!local_render_data || !local_render_data->context) {
        if (IsWithoutOpenGL(in_data, suites)) WriteReturnMessage(kSetUpForProcessor, out_data);
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
    RecordRenderer(in_data, suites, reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    switch (settings->shadowType) {
        case SHADOW_NORMAL:
            return RenderNormalPasses(in_data, out_data, suites, settings);
        case SHADOW_INNER:
            return RenderInnerShadow(in_data, out_data, suites, settings);
        case SHADOW_RADIAL:
            return RenderRadialPasses(in_data, out_data, suites, settings, radial);
        default:
            return PF_Err_NONE;
    }
}

PF_Err RenderFrame(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra, AEGP_SuiteHandler& suites,
                   const CheckedOutParams& params, CheckedOutLayers* layers) {
    myParams settings{};
    settings.in_data = in_data;
    settings.suites = &suites;
    if (PF_Err err = layers->CheckOut(kInputCheckoutId, &settings.inputWorld)) return err;
    if (PF_Err err = layers->CheckOut(kTextureCheckoutId, &settings.textureWorld)) return err;
    if (PF_Err err = extra->cb->checkout_output(in_data->effect_ref, &settings.outputWorld)) return err;
    if (!settings.outputWorld) return PF_Err_NONE;

    if (PF_Err err = in_data->utils->fill(in_data->effect_ref, nullptr, nullptr, settings.outputWorld)) return err;
    settings.bitDepth = extra->input->bitdepth;
    if (!extra->input->pre_render_data || !settings.inputWorld) return PF_Err_NONE;

    settings.preRender = *static_cast<const PreRenderData*>(extra->input->pre_render_data);
    if (PF_Err err = suites.ColorParamSuite1()->PF_GetFloatingPointColorFromColorDef(
            in_data->effect_ref, &params[PARAM_COLOR], &settings.shadowColourFloat)) {
        return err;
    }
    FillSettings(params, in_data->downsample_x, &settings);
    RadialGeometry radial;
    if (settings.shadowType == SHADOW_RADIAL) {
        radial = BuildRadialGeometry(params, settings);
        settings.samples = BuildRadialSamples(settings, radial);
    } else {
        settings.samples = BuildSamples(settings);
        settings.framebuffers = BuildFramebufferRecords(settings);
    }

    if (PF_Err err = RenderPasses(in_data, out_data, suites, &settings, radial)) return err;
    if (settings.shadowType == SHADOW_INNER) return PF_Err_NONE;
    return CompTextureAndInput(in_data, &settings, suites);
}

}  // namespace

PF_Err SmartRender(PF_InData* in_data, PF_OutData* out_data, PF_SmartRenderExtra* extra) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    CheckedOutParams params;
    if (PF_Err err = CheckoutParams(in_data, &params)) return err;

    CheckedOutLayers layers(in_data, extra->cb);
    const PF_Err rendered = RenderFrame(in_data, out_data, extra, suites, params, &layers);
    if (rendered) return rendered;  // which wins over the check-ins'
    return layers.CheckIn();
}
