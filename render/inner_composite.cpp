// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/inner_composite.h"

#include <algorithm>
#include <optional>
#include <type_traits>

#include "hostapi/errors.h"
#include "pixel/blend_modes.h"
#include "pixel/pixel_transfer.h"
#include "pixel/world_rows.h"
#include "render/composite.h"

namespace umbrant::effect {

namespace {

// A cleared world of the output's size and format.
PF_Err MakeWorld(const PF_LayerDef& output, HV_EffectWorld* world) {
    world->width = output.width;
    world->height = output.height;
    return world->actuallyInit();
}

template <typename Pixel>
constexpr auto kOpaque = static_cast<decltype(Pixel::alpha)>(std::is_same_v<Pixel, PF_Pixel> ? 255 : 1);

template <typename Pixel>
void MakeRowOpaque(void* row, A_long width) {
    auto* pixels = static_cast<Pixel*>(row);
    std::for_each(pixels, pixels + width, [](Pixel& pixel) { pixel.alpha = kOpaque<Pixel>; });
}

// Every pixel of the output becomes opaque, so that the shadow blends with the layer's colour alone; the clip puts the
// layer's alpha back.
PF_Err MakeOpaque(PF_InData* in_data, const myParams& settings, AEGP_SuiteHandler& suites) {
    PF_LayerDef* output = settings.outputWorld;
    if (settings.isOwnHost) {
        const auto makeRow = settings.bitDepth == 8 ? MakeRowOpaque<PF_Pixel> : MakeRowOpaque<PF_PixelFloat>;
        const auto made = WalkRows(in_data, output, [&](A_long, void* row) { makeRow(row, output->width); });
        if (made) return *made;
    }
    if (settings.bitDepth == 8) {
        return suites.Iterate8Suite1()->iterate(in_data, 0, output->height, output, nullptr, nullptr, maxAlpha8,
                                                output);
    }
    return suites.IterateFloatSuite1()->iterate(in_data, 0, output->height, output, nullptr, nullptr, maxAlpha32,
                                                output);
}

PF_Err Composite(PF_InData* in_data, AEGP_SuiteHandler& suites, myParams* settings, PF_EffectWorld* shadow) {
    if (settings->textureWorld) {
        if (PF_Err err = LayTexture(in_data, settings, suites, shadow)) return err;
    }
    if (PF_Err err = LayInput(in_data, settings, suites, PF_Xfer_IN_FRONT, 255)) return err;
    if (PF_Err err = MakeOpaque(in_data, *settings, suites)) return err;
    PF_CompositeMode mode{};
    mode.xfer = ShadowTransferMode(settings->shadowBlendMode);
    mode.opacity = 255;
    PF_LayerDef* output = settings->outputWorld;
    if (PF_Err err = suites.WorldTransformSuite1()->transfer_rect(
            in_data->effect_ref, in_data->quality, PF_MF_Alpha_STRAIGHT, in_data->field, &output->extent_hint, shadow,
            &mode, nullptr, 0, 0, output)) {
        return err;
    }
    return LayInput(in_data, settings, suites, PF_Xfer_MULTIPLY_ALPHA, 255);
}

}  // namespace

PF_Err PadInput(PF_InData* in_data, const myParams& settings, HV_EffectWorld* padded) {
    if (PF_Err err = MakeWorld(*settings.outputWorld, padded)) return err;
    if (!padded->initialised) return PF_Err_NONE;
    const PreRenderData& grown = settings.preRender;
    PF_Rect place = {grown.innerGrowLeft, grown.innerGrowTop, grown.innerGrowLeft + settings.inputWorld->width,
                     grown.innerGrowTop + settings.inputWorld->height};
    return in_data->utils->copy(in_data->effect_ref, settings.inputWorld, &padded->world, nullptr, &place);
}

PF_Err CompositeInnerShadow(PF_InData* in_data, AEGP_SuiteHandler& suites, myParams* settings,
                            const std::function<PF_Err(PF_EffectWorld* shadow)>& readBack) {
    HV_EffectWorld shadow(in_data, *settings->outputWorld);
    if (PF_Err err = MakeWorld(*settings->outputWorld, &shadow)) return err;
    if (!shadow.initialised) return PF_Err_NONE;
    if (readBack) {
        if (PF_Err err = readBack(&shadow.world)) return err;
    }
    return Composite(in_data, suites, settings, &shadow.world);
}

}  // namespace umbrant::effect
