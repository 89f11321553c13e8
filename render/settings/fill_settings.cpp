// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/settings/fill_settings.h"

#include <algorithm>
#include <cmath>

#include "pixel/blend_modes.h"
#include "pixel/saturate.h"
#include "render/settings/angle.h"

namespace umbrant::effect {

namespace {

double Slider(const CheckedOutParams& params, ParamIndex index) {
    return params[index].u.fs_d.value;
}

int32_t Popup(const CheckedOutParams& params, ParamIndex index) {
    return params[index].u.pd.value;
}

void FillOpacities(const CheckedOutParams& params, myParams* settings) {
    settings->opacityMaster = Slider(params, PARAM_OPACITY_MASTER) * 0.01;
    settings->opacityStart = settings->opacityMaster * Slider(params, PARAM_OPACITY_START) * 0.01;
    settings->opacityEnd = settings->opacityMaster * Slider(params, PARAM_OPACITY_END) * 0.01;
}

void FillEasing(const CheckedOutParams& params, myParams* settings) {
    settings->easeMode = Popup(params, PARAM_EASE_MODE) - 1;
    settings->easeAmount = Slider(params, PARAM_EASE) * 0.01;
    settings->easeSoftness = std::min(settings->easeAmount * Slider(params, PARAM_EASE_SOFTNESS) * 0.01, 1.0);
    settings->easeDistance = std::min(settings->easeAmount * Slider(params, PARAM_EASE_DISTANCE) * 0.01, 1.0);
    const double opacity = Slider(params, PARAM_EASE_OPACITY) * 0.01 * settings->easeAmount;
    settings->easeOpacity = opacity >= 1.0 ? 1.0 : opacity;
}

void FillQuality(const CheckedOutParams& params, myParams* settings) {
    settings->resolution = Popup(params, PARAM_RESOLUTION);
    settings->resolutionScale = settings->resolution * 0.2;
    settings->prioritise = static_cast<uint8_t>(Popup(params, PARAM_PRIORITISE) - 1);
    settings->debugLeft = Slider(params, PARAM_DEBUG_LEFT);
    settings->debugTop = Slider(params, PARAM_DEBUG_TOP);
    settings->debugRight = Slider(params, PARAM_DEBUG_RIGHT);
    settings->debugBottom = Slider(params, PARAM_DEBUG_BOTTOM);
}

void FillTravel(const CheckedOutParams& params, myParams* settings) {
    settings->distancePx = Slider(params, PARAM_DISTANCE) * settings->downscaleX;
    const double angle = RadiansOf(settings->angleDeg);
    settings->travelX = settings->distancePx * std::sin(angle);
    settings->travelY = -settings->distancePx * std::cos(angle);
    settings->stepX = settings->travelX / settings->numSamples;
    settings->stepY = settings->travelY / settings->numSamples;
    settings->offsetShadowPx = settings->downscaleX * Slider(params, PARAM_OFFSET_SHADOW);
    settings->offsetShadowX = settings->offsetShadowPx * std::sin(angle);
    settings->offsetShadowY = -settings->offsetShadowPx * std::cos(angle);
}

void FillCompositing(const CheckedOutParams& params, myParams* settings) {
    // Single precision, so that 100 % is 255 and 50 % is 127.
    settings->sourceOpacity = ToUint8(static_cast<float>(Slider(params, PARAM_SOURCE_OPACITY)) * 2.55f);
    settings->textureStrength = Slider(params, PARAM_TEXTURE_STRENGTH) * 0.01;
    settings->textureBlendMode = Popup(params, PARAM_TEXTURE_BLEND_MODE);
    ApplyTextureTransferMode(settings->textureBlendMode, &settings->textureComposite);
    settings->textureComposite.opacity = ToUint8(settings->textureStrength * 255);
    settings->textureComposite.rgb_only = true;
}

}  // namespace

void FillSettings(const CheckedOutParams& params, const PF_RationalScale& downsampleX, myParams* settings) {
    settings->textureLayerDef = params[PARAM_TEXTURE_LAYER].u.ld;
    settings->downscaleX = static_cast<float>(downsampleX.num) / static_cast<float>(downsampleX.den);
    settings->shadowType = Popup(params, PARAM_SHADOW_TYPE);
    settings->shadowColour8 = params[PARAM_COLOR].u.cd.value;
    settings->shadowBlendMode = Popup(params, PARAM_BLEND_MODE);
    FillOpacities(params, settings);

    const PF_LayerDef& buffer = settings->shadowType == SHADOW_INNER ? *settings->outputWorld : *settings->inputWorld;
    settings->bufferW = buffer.width;
    settings->bufferH = buffer.height;
    settings->numSamples = ToInt32(Slider(params, PARAM_SAMPLES));
    settings->numFramebuffers = std::min(settings->numSamples, 2);
    settings->angleDeg = params[PARAM_ANGLE].u.ad.value / 65536.0;
    settings->softnessPx = ToInt32(Slider(params, PARAM_SOFTNESS) * settings->downscaleX);
    settings->softnessPx2 = 2 * settings->softnessPx;

    FillEasing(params, settings);
    FillQuality(params, settings);
    // A radial shadow travels by scaling instead.
    if (settings->shadowType < SHADOW_RADIAL) FillTravel(params, settings);
    FillCompositing(params, settings);
}

}  // namespace umbrant::effect
