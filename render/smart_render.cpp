// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/smart_render.h"

#include <cstring>
#include <optional>
#include <string>

#include "entry/global_data.h"
#include "entry/suites/suite_handler.h"
#include "entry/suites/without_throwing.h"
#include "hostapi/errors.h"
#include "render/composite.h"
#include "render/pre_render/layer_checkout.h"
#include "render/processor/renderer_request.h"
#include "render/settings/fill_settings.h"
#include "render/settings/param_checkout.h"
#include "render/settings/radial_samples.h"
#include "render/settings/samples.h"
#include "render/shadow_backend.h"

using namespace umbrant::effect;

namespace {

// Layers checked out for one render; checked in again on every way out, also when a suite is missing.
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
void RecordRenderer(PF_InData* in_data, AEGP_SuiteHandler& suites, const std::optional<std::string>& renderer) {
    if (!in_data->global_data) return;
    const LockedGlobalData locked(suites.HandleSuite1(), in_data->global_data);
    GlobalData* global = locked.Get();
    if (!global || global->rendererRecorded) return;
    if (renderer) {
        std::strncpy(global->gl_renderer, renderer->c_str(), sizeof(global->gl_renderer) - 1);
        global->gl_renderer[sizeof(global->gl_renderer) - 1] = '\0';
    }
    global->rendererRecorded = 1;
}

PF_Err RenderPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                    const RadialGeometry& radial) {
    RendererRequest request;
    if (PF_Err err = ReadRendererRequest(in_data, &request)) return err;
    settings->isOwnHost = request.isOwnHost;
    const ShadowBackend* backend = BackendOf(request.choice);
    if (!backend) return PF_Err_INTERNAL_STRUCT_DAMAGED;
    if (PF_Err err = backend->prepare(in_data, out_data, suites)) return err;
    RecordRenderer(in_data, suites, backend->name());
    const ShadowFunction draw = backend->DrawerOf(settings->shadowType);
    return draw ? draw(in_data, out_data, suites, settings, radial) : PF_Err_NONE;
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
