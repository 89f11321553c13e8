// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/shadow_shaders.h"

#include "gl/program.h"
#include "gl/thread_state.h"
#include "render/passes/draw.h"
#include "render/plan_passes.h"
#include "render/render_settings.h"
#include "render/shader_sources.h"

using namespace umbrant::effect;

bool InitPrograms(Program* programs, PF_OutData* out_data) {
    const char* const fragments[kProgramCount] = {kInvertFrag, kBlurWFrag, kBlurHFrag, kCopyAFrag, kCopyBFrag};
    bool allBuilt = true;
    for (int slot = 0; slot < kProgramCount; ++slot) {
        const bool built = programs[slot].InitInternal(kQuadVert, fragments[slot], out_data);
        allBuilt = allBuilt && built;
    }
    return allBuilt;
}

void SendBlurWUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId) {
    const perSampleData& sample = params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& buffer = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    const AcrossPlan plan = PlanNormalAcross(*params, sample, buffer);
    KeepBlur(plan.blur, params);

    SendFloat(*programId, "opacityF", plan.opacity);
    SendMatrix(*programId, kIdentity);
    SendInt(*programId, "steps", plan.blur.steps);
    SendFloat(*programId, "stride", plan.blur.stride);
    SendFloat(*programId, "scaleW", plan.x.scale);
    SendFloat(*programId, "scaleH", plan.y.scale);
}

void SendBlurHUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId) {
    (void)params->samples.at(static_cast<size_t>(*sampleIndex));  // out of range, it throws
    const framebufferData& buffer = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    const BlurPlan plan = PlanDown(params->blurAmount, params->blurSteps, buffer);
    KeepBlur(plan, params);

    SendInt(*programId, "steps", plan.steps);
    SendFloat(*programId, "stride", plan.stride);
    SendMatrix(*programId, kIdentity);
}

void SendXformUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned*, PF_OutData* out_data) {
    const perSampleData& sample = params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& buffer = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    // Intended: the location is asked of the thread's own placing program, whatever id the caller passes.
    SendPlacement(local_render_data->programs[kProgramPlace].Get(out_data), PlanPlace(*params, sample, buffer));
}
