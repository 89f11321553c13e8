// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/composite.h"

#include <algorithm>

#include "hostapi/errors.h"
#include "hostapi/transfer.h"
#include "pixel/saturate.h"

using namespace umbrant::effect;

PF_Err CompTextureAndInput(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites) {
    if (params->textureWorld) {
        if (PF_Err err = LayTexture(in_data, params, suites, params->outputWorld)) return err;
    }
    if (params->sourceOpacity == 0) return PF_Err_NONE;
    return LayInput(in_data, params, suites, PF_Xfer_IN_FRONT, params->sourceOpacity);
}

namespace umbrant::effect {

PF_Err LayTexture(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites, PF_EffectWorld* shadow) {
    const PF_LayerDef* output = params->outputWorld;
    const PF_LayerDef* texture = params->textureWorld;
    const PF_Rect area = {0, 0, std::min(shadow->width, texture->width), std::min(shadow->height, texture->height)};
    params->textureComposite.opacity = ToUint8(params->textureStrength * 255);
    params->textureComposite.rgb_only = true;
    const PF_Err err = suites.WorldTransformSuite1()->transfer_rect(
        in_data->effect_ref, in_data->quality, PF_MF_Alpha_STRAIGHT, in_data->field, &area, texture,
        &params->textureComposite, nullptr, texture->origin_x - output->origin_x, texture->origin_y - output->origin_y,
        shadow);
    params->textureComposite.rgb_only = false;
    return err;
}

PF_Err LayInput(PF_InData* in_data, myParams* params, AEGP_SuiteHandler& suites, PF_TransferMode xfer,
                A_u_char opacity) {
    PF_LayerDef* output = params->outputWorld;
    const PF_LayerDef* input = params->inputWorld;
    PF_CompositeMode mode{};
    mode.xfer = xfer;
    mode.opacity = opacity;
    return suites.WorldTransformSuite1()->transfer_rect(
        in_data->effect_ref, in_data->quality, PF_MF_Alpha_STRAIGHT, in_data->field, &output->extent_hint, input, &mode,
        nullptr, input->origin_x - output->origin_x, input->origin_y - output->origin_y, output);
}

}  // namespace umbrant::effect
