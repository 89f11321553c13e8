// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/sample_stack.h"

#include "gl/thread_state.h"
#include "render/draw.h"
#include "render/shadow_shaders.h"

namespace {

void DrawSample(myParams* settings, int sample, Framebuffer& source, std::vector<Framebuffer>& blurred,
                Framebuffer& accumulated, const BlurSenders& senders, PF_OutData* out_data) {
    Program* programs = local_render_data->programs;
    int buffer = static_cast<int>(settings->samples[static_cast<size_t>(sample)].fbIndex);
    Framebuffer& pingPong = blurred.at(static_cast<size_t>(buffer));
    const bool first = sample == 0;
    if (pingPong.zeroSized) {
        if (first) accumulated.BindFBO(PING, true, out_data);
        return;
    }

    // Across, from the source.
    pingPong.BindFBO(PING, true, out_data);
    source.BindTAO(PING, out_data);
    programs[kProgramBlurW].Use(out_data);
    unsigned program = programs[kProgramBlurW].Get(out_data);
    senders.across(settings, &sample, &buffer, &program);
    DrawQuad();

    // Down, from the pass before.
    pingPong.BindFBO(PONG, true, out_data);
    pingPong.BindTAO(PING, out_data);
    programs[kProgramBlurH].Use(out_data);
    program = programs[kProgramBlurH].Get(out_data);
    senders.down(settings, &sample, &buffer, &program);
    DrawQuad();

    // Into place, onto the samples before.
    programs[kProgramPlace].Use(out_data);
    program = programs[kProgramPlace].Get(out_data);
    SendXformUniforms(settings, &sample, &buffer, &program, out_data);
    accumulated.BindFBO(PING, first, out_data);
    pingPong.BindTAO(PONG, out_data);
    DrawQuad();
}

}  // namespace

void DrawSampleStack(myParams* settings, Framebuffer& source, std::vector<Framebuffer>& blurred,
                     Framebuffer& accumulated, const BlurSenders& senders, PF_OutData* out_data) {
    for (int sample = 0; sample < static_cast<int>(settings->samples.size()); ++sample) {
        DrawSample(settings, sample, source, blurred, accumulated, senders, out_data);
    }
}
