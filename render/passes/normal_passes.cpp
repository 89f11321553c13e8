// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The normal (drop) shadow's passes.

#include <vector>

#include "gl/framebuffer.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "render/passes/alpha_regions.h"
#include "render/passes/draw.h"
#include "render/passes/passes.h"
#include "render/passes/sample_stack.h"
#include "render/plan_passes.h"
#include "render/shadow_shaders.h"

namespace umbrant::effect {

PF_Err RenderNormalPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                          const RadialGeometry&) {
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
        in_data->utils->ansi.sprintf(out_data->return_msg, "%s", kNormalTooSmall);
        return PF_Err_NONE;
    }
    if (uploaded || !input.initialised || !initialised) return PF_Err_OUT_OF_MEMORY;

    glBindVertexArray(local_render_data->quadVAO);
    EnableScreenBlend();
    const Region layer = FindAlpha(*settings->inputWorld, settings->bitDepth);
    DrawSampleStack(settings, PlanNormalStack(*settings, layer, Precision::kDriver), input, blurred, accumulated,
                    SendBlurWUniforms, out_data);

    glFinish();
    return accumulated.DownloadBuffer(in_data, suites, &settings->shadowColourFloat, &settings->shadowColour8,
                                      settings->outputWorld, out_data);
}

}  // namespace umbrant::effect
