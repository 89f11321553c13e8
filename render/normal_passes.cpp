// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The normal (drop) shadow's passes.

#include <vector>

#include "gl/framebuffer.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "platform/gl_api.h"
#include "render/passes.h"
#include "render/shadow_shaders.h"

namespace {

constexpr char kTooSmall[] = "UM2 Error: in/out FBO too small";

void DrawQuad() {
    glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
}

// Blurs and places one sample. The accumulation buffer is cleared by the first one, also when that one is skipped.
void DrawSample(myParams* settings, int sample, Framebuffer& input, std::vector<Framebuffer>& blurred,
                Framebuffer& accumulated, PF_OutData* out_data) {
    Program* programs = local_render_data->programs;
    int buffer = static_cast<int>(settings->samples[static_cast<size_t>(sample)].fbIndex);
    Framebuffer& pingPong = blurred.at(static_cast<size_t>(buffer));
    const bool first = sample == 0;
    if (pingPong.zeroSized) {
        if (first) accumulated.BindFBO(PING, true, out_data);
        return;
    }

    // Across, from the layer's alpha.
    pingPong.BindFBO(PING, true, out_data);
    input.BindTAO(PING, out_data);
    programs[kProgramBlurW].Use(out_data);
    unsigned program = programs[kProgramBlurW].Get(out_data);
    SendBlurWUniforms(settings, &sample, &buffer, &program);
    DrawQuad();

    // Down, from the pass before.
    pingPong.BindFBO(PONG, true, out_data);
    pingPong.BindTAO(PING, out_data);
    programs[kProgramBlurH].Use(out_data);
    program = programs[kProgramBlurH].Get(out_data);
    SendBlurHUniforms(settings, &sample, &buffer, &program);
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

PF_Err RenderNormalPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings) {
    // Without samples nothing is ever drawn or cleared: the output keeps its transparent black.
    if (settings->samples.empty()) return PF_Err_NONE;

    Framebuffer input;
    const PF_Err uploaded = input.FBO_Init_PF_World(settings->inputWorld, settings, out_data);

    const auto depth = static_cast<unsigned short>(settings->bitDepth);
    bool initialised = true;
    std::vector<Framebuffer> blurred(settings->framebuffers.size());
    for (size_t i = 0; i < blurred.size(); ++i) {
        const framebufferData& record = settings->framebuffers[i];
        if (!blurred[i].FramebufferInit(record.fboW, record.fboH, 2, depth, out_data)) initialised = false;
    }
    Framebuffer accumulated;
    if (!accumulated.FramebufferInit(settings->outputWorld->width, settings->outputWorld->height, 1, depth, out_data)) {
        initialised = false;
    }

    if (input.zeroSized || accumulated.zeroSized) {
        in_data->utils->ansi.sprintf(out_data->return_msg, "%s", kTooSmall);
        return PF_Err_NONE;
    }
    if (uploaded || !input.initialised || !initialised) return PF_Err_OUT_OF_MEMORY;

    // Blending stays on through the blurs, whose targets are cleared and so keep what is drawn.
    glBindVertexArray(local_render_data->quadVAO);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE_MINUS_DST_COLOR, GL_ONE);
    for (int sample = 0; sample < static_cast<int>(settings->samples.size()); ++sample) {
        DrawSample(settings, sample, input, blurred, accumulated, out_data);
    }

    glFinish();
    return accumulated.DownloadBuffer(in_data, suites, &settings->shadowColourFloat, &settings->shadowColour8,
                                      settings->outputWorld, out_data);
}
