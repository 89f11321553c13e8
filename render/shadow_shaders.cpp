// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/shadow_shaders.h"

#include "gl/program.h"
#include "gl/thread_state.h"
#include "pixel/blur_stride.h"
#include "render/draw.h"
#include "render/render_settings.h"
#include "render/shader_sources.h"

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
    const double inputWidth = params->inputWorld->width;
    const double inputHeight = params->inputWorld->height;

    const double blurAmount = BlurAmount(sample.softness);
    params->blurAmount = static_cast<float>(blurAmount);
    params->blurSteps = BlurSteps(params->resolutionScale, blurAmount);
    params->blurStride = StrideAcross(blurAmount, params->blurSteps, params->inputWorld->width);

    SendFloat(*programId, "opacityF", sample.opacity);
    SendMatrix(*programId, kIdentity);
    SendInt(*programId, "steps", params->blurSteps);
    SendFloat(*programId, "stride", params->blurStride);
    SendFloat(*programId, "scaleW", buffer.paddedW / inputWidth);
    SendFloat(*programId, "scaleH", buffer.paddedH / inputHeight);
}

void SendBlurHUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId) {
    params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& buffer = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));

    params->blurStride = StrideDown(params->blurAmount, params->blurSteps, buffer.paddedH);

    SendInt(*programId, "steps", params->blurSteps);
    SendFloat(*programId, "stride", params->blurStride);
    SendMatrix(*programId, kIdentity);
}

void SendXformUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned*, PF_OutData* out_data) {
    const perSampleData& sample = params->samples.at(static_cast<size_t>(*sampleIndex));
    const framebufferData& buffer = params->framebuffers.at(static_cast<size_t>(*framebufferIndex));
    const double width = params->outputWorld->width;
    const double height = params->outputWorld->height;

    const float tx =
        static_cast<float>((2.0 / width) * (sample.offsetX + params->offsetShadowX + params->preRender.centreOffsetX));
    const float ty =
        static_cast<float>((2.0 / height) * (sample.offsetY + params->offsetShadowY + params->preRender.centreOffsetY));
    const float sx = static_cast<float>(buffer.paddedW / width);
    const float sy = static_cast<float>(buffer.paddedH / height);
    const float xform[16] = {sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, 1, 0, tx, ty, 0, 1};
    // Intended: the location is asked of the thread's own placing program, whatever id the caller passes.
    SendMatrix(local_render_data->programs[kProgramPlace].Get(out_data), xform);
}
