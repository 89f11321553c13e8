// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The radial shadow's passes.

#include "gl/framebuffer.h"
#include "gl/quad.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "render/passes/alpha_regions.h"
#include "render/passes/draw.h"
#include "render/passes/passes.h"
#include "render/plan_passes.h"
#include "render/shadow_shaders.h"

namespace umbrant::effect {

namespace {

// A quad of the size of the padded copy in the output's lower left corner; deleted on every way out.
class PlacementQuad {
 public:
    PlacementQuad(float width, float height) { InitQuadRatio(&vao_, &vbo_, width, height); }
    ~PlacementQuad() { DeleteQuad(&vao_, &vbo_); }
    PlacementQuad(const PlacementQuad&) = delete;
    PlacementQuad& operator=(const PlacementQuad&) = delete;
    GLuint Vao() const { return vao_; }

 private:
    GLuint vao_ = 0;
    GLuint vbo_ = 0;
};

struct RadialBuffers {
    Framebuffer input;
    Framebuffer padded;
    Framebuffer blurred;
    Framebuffer output;
};

// The layer, centred in a border that leaves room for the blur.
void DrawPaddedCopy(const PaddingPlan& plan, RadialBuffers& buffers, PF_OutData* out_data) {
    Program& program = local_render_data->programs[kProgramCopy];
    buffers.input.BindTAO(PING, out_data);
    buffers.padded.BindFBO(PING, true, out_data);
    program.Use(out_data);
    const unsigned id = program.Get(out_data);
    const float xform[16] = {plan.layerScaleX, 0, 0, 0, 0, plan.layerScaleY, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    SendMatrix(id, xform);
    // Intended: no program declares these two, so GL ignores them.
    SendFloat(id, "scaleX", plan.layerScaleX);
    SendFloat(id, "scaleY", plan.layerScaleY);
    DrawQuad();
    buffers.input.CleanUp();
}

void BlurSample(const SamplePlan& plan, RadialBuffers& buffers, PF_OutData* out_data) {
    Program* programs = local_render_data->programs;

    // Across, from the padded layer.
    SetBlending(false);
    glBindVertexArray(local_render_data->quadVAO);
    buffers.blurred.BindFBO(PING, true, out_data);
    buffers.padded.BindTAO(PING, out_data);
    programs[kProgramBlurW].Use(out_data);
    unsigned id = programs[kProgramBlurW].Get(out_data);
    SendInt(id, "steps", plan.across.blur.steps);
    SendFloat(id, "stride", plan.across.blur.stride);
    SendFloat(id, "opacityF", plan.across.opacity);
    SendFloat(id, "scaleW", plan.across.x.scale);
    SendFloat(id, "scaleH", plan.across.y.scale);
    SendMatrix(id, kIdentity);
    DrawQuadIn(plan.regions.across);

    // Down, from the pass before.
    buffers.blurred.BindFBO(PONG, true, out_data);
    buffers.blurred.BindTAO(PING, out_data);
    programs[kProgramBlurH].Use(out_data);
    id = programs[kProgramBlurH].Get(out_data);
    SendInt(id, "steps", plan.down.steps);
    SendFloat(id, "stride", plan.down.stride);
    SendMatrix(id, kIdentity);
    DrawQuadIn(plan.regions.down);
}

// Into place, onto the samples before.
void PlaceSample(const SamplePlan& plan, bool first, const PlacementQuad& quad, RadialBuffers& buffers,
                 PF_OutData* out_data) {
    Program& program = local_render_data->programs[kProgramCopy];
    SetBlending(true);
    program.Use(out_data);
    const unsigned id = program.Get(out_data);
    glBindVertexArray(quad.Vao());
    buffers.output.BindFBO(PING, first, out_data);
    buffers.blurred.BindTAO(PONG, out_data);
    SendPlacement(id, plan.place);
    DrawQuadIn(plan.regions.placed);
}

// All samples; one that adds nothing only clears the output when it is the first.
void DrawSamples(const StackPlan& stack, const PaddingPlan& padding, RadialBuffers& buffers, PF_OutData* out_data) {
    const PlacementQuad quad(padding.quadScaleX, padding.quadScaleY);
    for (const SamplePlan& plan : stack.samples) {
        const bool first = &plan == stack.samples.data();
        if (plan.regions.Empty() && !WorksEverywhere()) {
            if (first) buffers.output.BindFBO(PING, true, out_data);
            continue;
        }
        BlurSample(plan, buffers, out_data);
        PlaceSample(plan, first, quad, buffers, out_data);
    }
}

}  // namespace

PF_Err RenderRadialPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                          const RadialGeometry& geometry) {
    // Without samples nothing is ever drawn or cleared: the output keeps its transparent black.
    if (settings->samples.empty()) return PF_Err_NONE;

    RadialBuffers buffers;
    const PF_Err uploaded = buffers.input.FBO_Init_PF_World(settings->inputWorld, settings, out_data);
    const auto depth = static_cast<unsigned short>(settings->bitDepth);
    const PF_LayerDef& output = *settings->outputWorld;
    bool initialised = buffers.padded.FramebufferInit(geometry.paddedW, geometry.paddedH, 1, depth, out_data);
    initialised &= buffers.blurred.FramebufferInit(geometry.paddedW, geometry.paddedH, 2, depth, out_data);
    initialised &= buffers.output.FramebufferInit(output.width, output.height, 1, depth, out_data);

    if (buffers.input.zeroSized || buffers.padded.zeroSized || buffers.blurred.zeroSized || buffers.output.zeroSized) {
        in_data->utils->ansi.sprintf(out_data->return_msg, "%s", kRadialTooSmall);
        return PF_Err_NONE;
    }
    if (uploaded || !initialised) return PF_Err_OUT_OF_MEMORY;

    EnableScreenBlend();
    glBindVertexArray(local_render_data->quadVAO);
    const PaddingPlan padding = PlanPadding(*settings, geometry);
    const Region padded = PaddedRegion(padding, FindAlpha(*settings->inputWorld, settings->bitDepth));
    DrawPaddedCopy(padding, buffers, out_data);
    DrawSamples(PlanRadialStack(*settings, padding, padded, Precision::kDriver), padding, buffers, out_data);
    buffers.blurred.CleanUp();
    buffers.padded.CleanUp();

    glFinish();
    return buffers.output.DownloadBuffer(in_data, suites, &settings->shadowColourFloat, &settings->shadowColour8,
                                         settings->outputWorld, out_data);
}

}  // namespace umbrant::effect
