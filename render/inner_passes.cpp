// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's passes: the inverted alpha is blurred and shifted like a normal shadow.

#include <vector>

#include "gl/framebuffer.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "pixel/blur_stride.h"
#include "pixel/effect_world.h"
#include "render/draw.h"
#include "render/inner_composite.h"
#include "render/pass_regions.h"
#include "render/passes.h"
#include "render/sample_stack.h"
#include "render/shadow_shaders.h"

namespace {

struct Buffers {
    Framebuffer source;
    Framebuffer inverted;
    Framebuffer accumulated;
    std::vector<Framebuffer> blurred;
};

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
    in_data->utils->ansi.sprintf(out_data->return_msg, "%s", kInnerTooSmall);
    return false;
}

// Draws what of the inverted alpha is not 0.
void DrawInverted(const myParams& settings, const Region& inverted, Buffers& buffers, PF_OutData* out_data) {
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
    SetBlending(false);
    DrawQuadIn(inverted);
    buffers.source.CleanUp();
}

// As a normal shadow's senders, but the source is the inverted buffer, which is as large as the padded world.
void SendBlurAcross(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId) {
    const perSampleData& sample = params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& record = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    const framebufferData& first = params->framebuffers.front();
    const double blurAmount = BlurAmount(sample.softness);
    params->blurAmount = static_cast<float>(blurAmount);
    params->blurSteps = BlurSteps(params->resolutionScale, blurAmount);
    params->blurStride = StrideAcross(blurAmount, params->blurSteps, params->innerSourceWorld->width);
    SendMatrix(*programId, kIdentity);
    SendFloat(*programId, "opacityF", sample.opacity);
    SendInt(*programId, "steps", params->blurSteps);
    SendFloat(*programId, "stride", params->blurStride);
    SendFloat(*programId, "scaleW", static_cast<double>(record.fboW) / first.fboW);
    SendFloat(*programId, "scaleH", static_cast<double>(record.fboH) / first.fboH);
}

}  // namespace

PF_Err RenderInnerShadow(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings) {
    // Without samples the shadow stays transparent, and there is no record to size a buffer by.
    if (settings->samples.empty()) return CompositeInnerShadow(in_data, suites, settings, nullptr);

    HV_EffectWorld padded(in_data, *settings->outputWorld);
    if (PF_Err err = PadInput(in_data, *settings, &padded)) return err;
    settings->innerSourceWorld = &padded.world;

    Buffers buffers;
    buffers.blurred = std::vector<Framebuffer>(settings->framebuffers.size());
    PF_Err err = PF_Err_NONE;
    if (!MakeBuffers(in_data, out_data, settings, &buffers, &err)) return err;

    EnableScreenBlend();
    glBindVertexArray(local_render_data->quadVAO);
    const Region inverted = InvertedRegion(*settings, FindHoles(*settings->innerSourceWorld, settings->bitDepth));
    DrawInverted(*settings, inverted, buffers, out_data);
    DrawSampleStack(settings, buffers.inverted, inverted, buffers.blurred, buffers.accumulated,
                    {SendBlurAcross, SendBlurHUniforms, InnerRegions}, out_data);
    buffers.blurred.clear();
    glFinish();
    return CompositeInnerShadow(in_data, suites, settings, [&](PF_EffectWorld* shadow) {
        return buffers.accumulated.DownloadBuffer(in_data, suites, &settings->shadowColourFloat,
                                                  &settings->shadowColour8, shadow, out_data);
    });
}
