// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's passes: the inverted alpha is blurred and shifted like a normal shadow.

#include <vector>

#include "gl/framebuffer.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "pixel/effect_world.h"
#include "render/inner_composite.h"
#include "render/passes/alpha_regions.h"
#include "render/passes/draw.h"
#include "render/passes/passes.h"
#include "render/passes/sample_stack.h"
#include "render/plan_passes.h"
#include "render/shadow_shaders.h"

namespace umbrant::effect {

namespace {

struct InnerBuffers {
    Framebuffer source;
    Framebuffer inverted;
    Framebuffer accumulated;
    std::vector<Framebuffer> blurred;
};

// False, with `result` set, when the passes cannot run.
bool MakeBuffers(PF_InData* in_data, PF_OutData* out_data, myParams* settings, InnerBuffers* buffers, PF_Err* result) {
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
void DrawInverted(const InversionPlan& plan, const Region& inverted, InnerBuffers& buffers, PF_OutData* out_data) {
    Program& program = local_render_data->programs[kProgramInvert];
    buffers.source.BindTAO(PING, out_data);
    buffers.inverted.BindFBO(PING, true, out_data);
    program.Use(out_data);
    const unsigned id = program.Get(out_data);
    SendMatrix(id, kIdentity);
    SendFloat(id, "opacityF", plan.opacity);
    SendFloat(id, "scaleW", plan.x.scale);
    SendFloat(id, "scaleH", plan.y.scale);
    SetBlending(false);
    DrawQuadIn(inverted);
    buffers.source.CleanUp();
}

// As a normal shadow's senders, but the source is the inverted buffer, which is as large as the padded world.
void SendBlurAcross(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId) {
    const perSampleData& sample = params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& record = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    const AcrossPlan plan = PlanInnerAcross(*params, sample, record);
    KeepBlur(plan.blur, params);
    SendMatrix(*programId, kIdentity);
    SendFloat(*programId, "opacityF", plan.opacity);
    SendInt(*programId, "steps", plan.blur.steps);
    SendFloat(*programId, "stride", plan.blur.stride);
    SendFloat(*programId, "scaleW", plan.x.scale);
    SendFloat(*programId, "scaleH", plan.y.scale);
}

}  // namespace

PF_Err RenderInnerShadow(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                         const RadialGeometry&) {
    // Without samples the shadow stays transparent, and there is no record to size a buffer by.
    if (settings->samples.empty()) return CompositeInnerShadow(in_data, suites, settings, nullptr);

    HV_EffectWorld padded(in_data, *settings->outputWorld);
    if (PF_Err err = PadInput(in_data, *settings, &padded)) return err;
    settings->innerSourceWorld = &padded.world;

    InnerBuffers buffers;
    buffers.blurred = std::vector<Framebuffer>(settings->framebuffers.size());
    PF_Err err = PF_Err_NONE;
    if (!MakeBuffers(in_data, out_data, settings, &buffers, &err)) return err;

    EnableScreenBlend();
    glBindVertexArray(local_render_data->quadVAO);
    const InversionPlan inversion = PlanInversion(*settings);
    const Region inverted = InvertedRegion(inversion, FindHoles(*settings->innerSourceWorld, settings->bitDepth));
    DrawInverted(inversion, inverted, buffers, out_data);
    DrawSampleStack(settings, PlanInnerStack(*settings, inverted, Precision::kDriver), buffers.inverted,
                    buffers.blurred, buffers.accumulated, SendBlurAcross, out_data);
    buffers.blurred.clear();
    glFinish();
    return CompositeInnerShadow(in_data, suites, settings, [&](PF_EffectWorld* shadow) {
        return buffers.accumulated.DownloadBuffer(in_data, suites, &settings->shadowColourFloat,
                                                  &settings->shadowColour8, shadow, out_data);
    });
}

}  // namespace umbrant::effect
