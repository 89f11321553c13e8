// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's passes and composite: the inverted alpha is blurred and shifted like a normal shadow, laid over
// the layer with the chosen blend mode, and clipped to the layer's own alpha.

#include <algorithm>
#include <cmath>
#include <vector>

#include "gl/framebuffer.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "pixel/blend_modes.h"
#include "pixel/effect_world.h"
#include "pixel/pixel_transfer.h"
#include "pixel/saturate.h"
#include "render/composite.h"
#include "render/draw.h"
#include "render/passes.h"
#include "render/sample_stack.h"
#include "render/shadow_shaders.h"

namespace {

constexpr char kTooSmall[] = "UM2 Inner Error: in/out FBO too small";

struct Buffers {
    Framebuffer source;
    Framebuffer inverted;
    Framebuffer accumulated;
    std::vector<Framebuffer> blurred;
};

// A cleared world of the output's size and format.
PF_Err MakeWorld(const PF_LayerDef& output, HV_EffectWorld* world) {
    world->width = output.width;
    world->height = output.height;
    return world->actuallyInit();
}

// The layer in a border as wide as the output grew, so that its outside can cast a shadow into it.
PF_Err PadInput(PF_InData* in_data, const myParams& settings, HV_EffectWorld* padded) {
    if (PF_Err err = MakeWorld(*settings.outputWorld, padded)) return err;
    if (!padded->initialised) return PF_Err_NONE;
    const PreRenderData& grown = settings.preRender;
    PF_Rect place = {grown.innerGrowLeft, grown.innerGrowTop, grown.innerGrowLeft + settings.inputWorld->width,
                     grown.innerGrowTop + settings.inputWorld->height};
    return in_data->utils->copy(in_data->effect_ref, settings.inputWorld, &padded->world, nullptr, &place);
}

// False, with `result` set, when the passes cannot run.
bool MakeBuffers(PF_InData* in_data, PF_OutData* out_data, myParams* settings, Buffers* buffers, PF_Err* result) {
    const auto depth = static_cast<unsigned short>(settings->bitDepth);
    const PF_Err uploaded = buffers->source.FBO_Init_PF_World(settings->innerSourceWorld, settings, out_data);
    bool initialised = true;
    for (size_t i = 0; i < buffers->blurred.size(); ++i) {
        const framebufferData& record = settings->framebuffers[i];
        initialised &= buffers->blurred[i].FramebufferInit(record.fboW, record.fboH, 2, depth, out_data);
    }
    *result = PF_Err_OUT_OF_MEMORY;
    if (uploaded || !buffers->source.initialised || !initialised) return false;

    const framebufferData& first = settings->framebuffers.front();
    initialised = buffers->accumulated.FramebufferInit(settings->outputWorld->width, settings->outputWorld->height, 1,
                                                       depth, out_data);
    initialised &= buffers->inverted.FramebufferInit(first.fboW, first.fboH, 1, depth, out_data);
    if (!initialised) return false;

    *result = PF_Err_NONE;
    if (!buffers->source.zeroSized && !buffers->inverted.zeroSized && !buffers->accumulated.zeroSized) return true;
    in_data->utils->ansi.sprintf(out_data->return_msg, "%s", kTooSmall);
    return false;
}

void DrawInverted(const myParams& settings, Buffers& buffers, PF_OutData* out_data) {
    Program& program = local_render_data->programs[kProgramInvert];
    const framebufferData& first = settings.framebuffers.front();
    buffers.source.BindTAO(PING, out_data);
    buffers.inverted.BindFBO(PING, true, out_data);
    program.Use(out_data);
    const unsigned id = program.Get(out_data);
    SendMatrix(id, kIdentity);
    SendFloat(id, "opacityF", settings.shadowColourFloat.alpha);
    SendFloat(id, "scaleW", static_cast<double>(first.paddedW) / settings.innerSourceWorld->width);
    SendFloat(id, "scaleH", static_cast<double>(first.paddedH) / settings.innerSourceWorld->height);
    DrawQuad();
    buffers.source.CleanUp();
}

// As a normal shadow's senders, but the source is the inverted buffer, which is as large as the padded world.
void SendBlurAcross(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId) {
    const perSampleData& sample = params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& record = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    const framebufferData& first = params->framebuffers.front();
    const double blurAmount = std::max(sample.softness, 1.0);
    params->blurAmount = static_cast<float>(blurAmount);
    params->blurSteps = std::max(ToInt32(std::ceil(params->resolutionScale * blurAmount)), 1);
    params->blurStride = static_cast<float>((blurAmount / params->blurSteps) * (1.0 / params->innerSourceWorld->width));
    SendMatrix(*programId, kIdentity);
    SendFloat(*programId, "opacityF", sample.opacity);
    SendInt(*programId, "steps", params->blurSteps);
    SendFloat(*programId, "stride", params->blurStride);
    SendFloat(*programId, "scaleW", static_cast<double>(record.fboW) / first.fboW);
    SendFloat(*programId, "scaleH", static_cast<double>(record.fboH) / first.fboH);
}

// Every pixel of the output becomes opaque, so that the shadow blends with the layer's colour alone; the clip puts the
// layer's alpha back.
PF_Err MakeOpaque(PF_InData* in_data, const myParams& settings, AEGP_SuiteHandler& suites) {
    PF_LayerDef* output = settings.outputWorld;
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

// The second world: the shadow in its colour, read back from `accumulated`, or transparent without one.
PF_Err CompositeShadow(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                       Framebuffer* accumulated) {
    HV_EffectWorld shadow(in_data, *settings->outputWorld);
    if (PF_Err err = MakeWorld(*settings->outputWorld, &shadow)) return err;
    if (!shadow.initialised) return PF_Err_NONE;
    if (accumulated) {
        if (PF_Err err = accumulated->DownloadBuffer(in_data, suites, &settings->shadowColourFloat,
                                                     &settings->shadowColour8, &shadow.world, out_data)) {
            return err;
        }
    }
    return Composite(in_data, suites, settings, &shadow.world);
}

}  // namespace

PF_Err RenderInnerShadow(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings) {
    // Without samples the shadow stays transparent, and there is no record to size a buffer by.
    if (settings->samples.empty()) return CompositeShadow(in_data, out_data, suites, settings, nullptr);

    HV_EffectWorld padded(in_data, *settings->outputWorld);
    if (PF_Err err = PadInput(in_data, *settings, &padded)) return err;
    settings->innerSourceWorld = &padded.world;

    Buffers buffers;
    buffers.blurred = std::vector<Framebuffer>(settings->framebuffers.size());
    PF_Err err = PF_Err_NONE;
    if (!MakeBuffers(in_data, out_data, settings, &buffers, &err)) return err;

    EnableScreenBlend();
    glBindVertexArray(local_render_data->quadVAO);
    DrawInverted(*settings, buffers, out_data);
    DrawSampleStack(settings, buffers.inverted, buffers.blurred, buffers.accumulated,
                    {SendBlurAcross, SendBlurHUniforms}, out_data);
    buffers.blurred.clear();
    glFinish();
    return CompositeShadow(in_data, out_data, suites, settings, &buffers.accumulated);
}
