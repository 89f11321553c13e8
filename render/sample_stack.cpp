// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/sample_stack.h"

#include "gl/thread_state.h"
#include "render/draw.h"
#include "render/shadow_shaders.h"

namespace {

/// What all samples of a stack share.
struct Stack {
    myParams* settings;
    Framebuffer& source;
    const Region& something;
    std::vector<Framebuffer>& blurred;
    Framebuffer& accumulated;
    const BlurSenders& senders;
    PF_OutData* out_data;
};

bool AddsNothing(const Stack& stack, const perSampleData& sample, const SampleRegions& regions) {
    return !WorksEverywhere() && (stack.something.Empty() || sample.opacity == 0 || regions.placed.Empty());
}

void DrawSample(const Stack& stack, int sample) {
    Program* programs = local_render_data->programs;
    PF_OutData* out_data = stack.out_data;
    const perSampleData& copy = stack.settings->samples[static_cast<size_t>(sample)];
    int buffer = static_cast<int>(copy.fbIndex);
    Framebuffer& pingPong = stack.blurred.at(copy.fbIndex);
    const bool first = sample == 0;
    SampleRegions regions;
    if (!pingPong.zeroSized) {
        regions =
            stack.senders.regions(*stack.settings, copy, stack.settings->framebuffers[copy.fbIndex], stack.something);
    }
    if (pingPong.zeroSized || AddsNothing(stack, copy, regions)) {
        if (first) stack.accumulated.BindFBO(PING, true, out_data);
        return;
    }

    // Across, from the source.
    SetBlending(false);
    pingPong.BindFBO(PING, true, out_data);
    stack.source.BindTAO(PING, out_data);
    programs[kProgramBlurW].Use(out_data);
    unsigned program = programs[kProgramBlurW].Get(out_data);
    stack.senders.across(stack.settings, &sample, &buffer, &program);
    DrawQuadIn(regions.across);

    // Down, from the pass before.
    pingPong.BindFBO(PONG, true, out_data);
    pingPong.BindTAO(PING, out_data);
    programs[kProgramBlurH].Use(out_data);
    program = programs[kProgramBlurH].Get(out_data);
    stack.senders.down(stack.settings, &sample, &buffer, &program);
    DrawQuadIn(regions.down);

    // Into place, onto the samples before.
    SetBlending(true);
    programs[kProgramPlace].Use(out_data);
    program = programs[kProgramPlace].Get(out_data);
    SendXformUniforms(stack.settings, &sample, &buffer, &program, out_data);
    stack.accumulated.BindFBO(PING, first, out_data);
    pingPong.BindTAO(PONG, out_data);
    DrawQuadIn(regions.placed);
}

}  // namespace

void DrawSampleStack(myParams* settings, Framebuffer& source, const Region& something,
                     std::vector<Framebuffer>& blurred, Framebuffer& accumulated, const BlurSenders& senders,
                     PF_OutData* out_data) {
    const Stack stack{settings, source, something, blurred, accumulated, senders, out_data};
    for (int sample = 0; sample < static_cast<int>(settings->samples.size()); ++sample) DrawSample(stack, sample);
}
