// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/pre_render/pre_render.h"

#include <new>

#include "entry/suites/suite_handler.h"
#include "hostapi/errors.h"
#include "hostapi/version.h"
#include "pixel/rect.h"
#include "render/pre_render/layer_checkout.h"
#include "render/pre_render/pre_render_rects.h"
#include "render/render_settings.h"
#include "render/settings/param_checkout.h"

using namespace umbrant::effect;

namespace umbrant::effect {

namespace {

// Layer flags can be asked for from host interface 13.9 on.
bool HostTellsLayerFlags(const PF_InData& in_data) {
    return in_data.version.major > PF_AE135_PLUG_IN_VERSION ||
           (in_data.version.major == PF_AE135_PLUG_IN_VERSION && in_data.version.minor >= PF_AE135_PLUG_IN_SUBVERS);
}

PF_Err ReadCollapsed(PF_InData* in_data, AEGP_SuiteHandler& suites, bool* collapsed) {
    *collapsed = false;
    if (!HostTellsLayerFlags(*in_data)) return PF_Err_NONE;
    const AEGP_PFInterfaceSuite1* interface = suites.PFInterfaceSuite1();
    const AEGP_LayerSuite7* layers = suites.LayerSuite7();
    AEGP_LayerH layer = nullptr;
    PF_Err err = interface->AEGP_GetEffectLayer(in_data->effect_ref, &layer);
    if (err || !layer) return err;
    AEGP_LayerFlags flags = 0;
    err = layers->AEGP_GetLayerFlags(layer, &flags);
    *collapsed = !err && (flags & AEGP_LayerFlag_COLLAPSE) != 0;
    return err;
}

PreRenderInputs InputsOf(const PF_InData& in_data, const CheckedOutParams& params, bool collapsed) {
    PreRenderInputs in;
    in.shadowType = params[PARAM_SHADOW_TYPE].u.pd.value;
    in.angleDeg = params[PARAM_ANGLE].u.ad.value / 65536.0;
    in.originX = params[PARAM_ORIGIN].u.td.x_value / 65536.0;
    in.originY = params[PARAM_ORIGIN].u.td.y_value / 65536.0;
    in.distance = params[PARAM_DISTANCE].u.fs_d.value;
    in.softness = params[PARAM_SOFTNESS].u.fs_d.value;
    in.offsetShadow = params[PARAM_OFFSET_SHADOW].u.fs_d.value;
    in.bufferExpansion = params[PARAM_BUFFER_EXPANSION].u.fs_d.value;
    in.scale = static_cast<double>(in_data.downsample_x.num) / in_data.downsample_x.den;
    in.layerWidth = in_data.width;
    in.layerHeight = in_data.height;
    in.collapsed = collapsed;
    return in;
}

// A radial texture covers everything the shadow may reach; the others only what is rendered now.
PF_LRect TextureRect(const PreRenderInputs& in, const PF_PreRenderOutput& output) {
    if (in.shadowType != SHADOW_RADIAL) return output.result_rect;
    return in.collapsed ? ClampToComposition(output.max_result_rect, in) : output.max_result_rect;
}

}  // namespace

PF_Err PreRender(PF_InData* in_data, PF_OutData*, PF_PreRenderExtra* extra) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    PF_PreRenderOutput* output = extra->output;

    bool collapsed = false;
    if (PF_Err err = ReadCollapsed(in_data, suites, &collapsed)) return err;
    CheckedOutParams params;
    if (PF_Err err = CheckoutParams(in_data, &params)) return err;
    const PreRenderInputs in = InputsOf(*in_data, params, collapsed);

    PF_RenderRequest request = extra->input->output_request;
    request.rect = ClampToLayer(request.rect, in);
    PF_CheckoutResult granted{};
    if (PF_Err err =
            extra->cb->checkout_layer(in_data->effect_ref, PARAM_INPUT, kInputCheckoutId, &request,
                                      in_data->current_time, in_data->time_step, in_data->time_scale, &granted)) {
        return err;
    }
    const PF_LRect input = granted.result_rect;
    const PF_LRect layerMax = ClampToLayer(granted.max_result_rect, in);

    PreRenderData* record = new (std::nothrow) PreRenderData{};
    if (!record) return PF_Err_OUT_OF_MEMORY;
    output->pre_render_data = record;
    output->delete_pre_render_data_func = DisposePreRenderData;

    PreRenderRects rects{};
    PF_LRect grown{};
    switch (in.shadowType) {
        case SHADOW_NORMAL:
            rects = NormalRects(in, input, layerMax);
            break;
        case SHADOW_INNER:
            rects = InnerRects(in, input, layerMax, record);
            break;
        case SHADOW_RADIAL:
            rects = RadialRects(in, layerMax, &grown);
            break;
    }
    UnionLRect(&rects.result, &output->result_rect);
    UnionLRect(&rects.max, &output->max_result_rect);
    if (in.shadowType == SHADOW_NORMAL) RecordNormalOffsets(input, output->max_result_rect, record);
    if (in.shadowType == SHADOW_RADIAL) RecordRadialPlacement(output->result_rect, grown, record);

    request.rect = TextureRect(in, *output);
    PF_CheckoutResult texture{};
    if (PF_Err err =
            extra->cb->checkout_layer(in_data->effect_ref, PARAM_TEXTURE_LAYER, kTextureCheckoutId, &request,
                                      in_data->current_time, in_data->time_step, in_data->time_scale, &texture)) {
        return err;
    }

    output->flags = static_cast<PF_RenderOutputFlags>(output->flags | PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS);
    return PF_Err_NONE;
}

}  // namespace umbrant::effect

void DisposePreRenderData(void* preRenderData) {
    delete static_cast<PreRenderData*>(preRenderData);
}
