// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/passes/sample_stack.h"

#include "gl/thread_state.h"
#include "render/passes/draw.h"
#include "render/shadow_shaders.h"

namespace umbrant::effect {

namespace {

/// What all samples of a stack share.
struct Stack {
    myParams* settings;
    const StackPlan& plan;
    Framebuffer& source;
    std::vector<Framebuffer>& blurred;
    Framebuffer& accumulated;
    BlurSender sendAcross;
    PF_OutData* out_data;
};

void DrawSample(const Stack& stack, int sample) {
    Program* programs = local_render_data->programs;
    PF_OutData* out_data = stack.out_data;
    const SamplePlan& plan = stack.plan.samples[static_cast<size_t>(sample)];
    int buffer = static_cast<int>(plan.buffer);
    Framebuffer& pingPong = stack.blurred.at(plan.buffer);
    const bool first = sample == 0;
    if (pingPong.zeroSized || (plan.regions.Empty() && !WorksEverywhere())) {
        if (first) stack.accumulated.BindFBO(PING, true, out_data);
        return;
    }

    // Across, from the source.
    SetBlending(false);
    pingPong.BindFBO(PING, true, out_data);
    stack.source.BindTAO(PING, out_data);
    programs[kProgramBlurW].Use(out_data);
    unsigned program = programs[kProgramBlurW].Get(out_data);
    stack.sendAcross(stack.settings, &sample, &buffer, &program);
    DrawQuadIn(plan.regions.across);

    // Down, from the pass before.
    pingPong.BindFBO(PONG, true, out_data);
    pingPong.BindTAO(PING, out_data);
    programs[kProgramBlurH].Use(out_data);
    program = programs[kProgramBlurH].Get(out_data);
    SendBlurHUniforms(stack.settings, &sample, &buffer, &program);
    DrawQuadIn(plan.regions.down);

    // Into place, onto the samples before.
    SetBlending(true);
    programs[kProgramPlace].Use(out_data);
    program = programs[kProgramPlace].Get(out_data);
    SendXformUniforms(stack.settings, &sample, &buffer, &program, out_data);
    stack.accumulated.BindFBO(PING, first, out_data);
    pingPong.BindTAO(PONG, out_data);
    DrawQuadIn(plan.regions.placed);
}

}  // namespace

void DrawSampleStack(myParams* settings, const StackPlan& plan, Framebuffer& source, std::vector<Framebuffer>& blurred,
                     Framebuffer& accumulated, BlurSender sendAcross, PF_OutData* out_data) {
    const Stack stack{settings, plan, source, blurred, accumulated, sendAcross, out_data};
    for (int sample = 0; sample < static_cast<int>(plan.samples.size()); ++sample) DrawSample(stack, sample);
}

}  // namespace umbrant::effect
