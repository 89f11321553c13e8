// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The radial shadow's passes.

#include <algorithm>

#include "gl/framebuffer.h"
#include "gl/quad.h"
#include "gl/thread_state.h"
#include "hostapi/errors.h"
#include "pixel/blur_stride.h"
#include "render/draw.h"
#include "render/pass_regions.h"
#include "render/passes.h"
#include "render/shadow_shaders.h"

namespace {

// A quad of the size of the padded copy in the output's lower left corner; deleted on every road out.
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

struct Buffers {
    Framebuffer input;
    Framebuffer padded;
    Framebuffer blurred;
    Framebuffer output;
};

// The layer, centred in a border that leaves room for the blur.
void DrawPaddedCopy(const myParams& settings, const RadialGeometry& geometry, Buffers& buffers, PF_OutData* out_data) {
    Program& program = local_render_data->programs[kProgramCopy];
    buffers.input.BindTAO(PING, out_data);
    buffers.padded.BindFBO(PING, true, out_data);
    program.Use(out_data);
    const unsigned id = program.Get(out_data);
    const double scaleX = static_cast<double>(settings.inputWorld->width) / geometry.paddedW;
    const double scaleY = static_cast<double>(settings.inputWorld->height) / geometry.paddedH;
    const float xform[16] = {
        static_cast<float>(scaleX), 0, 0, 0, 0, static_cast<float>(scaleY), 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    SendMatrix(id, xform);
    // Intended: no program declares these two, so GL ignores them.
    SendFloat(id, "scaleX", scaleX);
    SendFloat(id, "scaleY", scaleY);
    DrawQuad();
    buffers.input.CleanUp();
}

void BlurSample(const myParams& settings, const RadialGeometry& geometry, const perSampleData& sample,
                const SampleRegions& regions, Buffers& buffers, PF_OutData* out_data) {
    Program* programs = local_render_data->programs;
    const int steps = BlurSteps(settings.resolutionScale, sample.softness);

    // Across, from the padded layer.
    SetBlending(false);
    glBindVertexArray(local_render_data->quadVAO);
    buffers.blurred.BindFBO(PING, true, out_data);
    buffers.padded.BindTAO(PING, out_data);
    programs[kProgramBlurW].Use(out_data);
    unsigned id = programs[kProgramBlurW].Get(out_data);
    SendInt(id, "steps", steps);
    SendFloat(id, "stride", StrideRadial(sample.softness, steps, geometry.paddedW));
    SendFloat(id, "opacityF", sample.opacity);
    SendFloat(id, "scaleW", 1);
    SendFloat(id, "scaleH", 1);
    SendMatrix(id, kIdentity);
    DrawQuadIn(regions.across);

    // Down, from the pass before.
    buffers.blurred.BindFBO(PONG, true, out_data);
    buffers.blurred.BindTAO(PING, out_data);
    programs[kProgramBlurH].Use(out_data);
    id = programs[kProgramBlurH].Get(out_data);
    SendInt(id, "steps", steps);
    SendFloat(id, "stride", StrideRadial(sample.softness, steps, geometry.paddedH));
    SendMatrix(id, kIdentity);
    DrawQuadIn(regions.down);
}

// Into place. The quad starts in the lower left corner at unit scale: scaling it by s about the centre of device
// coordinates moves that corner to -s, so s - 1 brings it back before the translation.
void PlaceSample(const myParams& settings, const perSampleData& sample, bool first, const Region& region,
                 const PlacementQuad& quad, Buffers& buffers, PF_OutData* out_data) {
    Program& program = local_render_data->programs[kProgramCopy];
    SetBlending(true);
    program.Use(out_data);
    const unsigned id = program.Get(out_data);
    glBindVertexArray(quad.Vao());
    buffers.output.BindFBO(PING, first, out_data);
    buffers.blurred.BindTAO(PONG, out_data);
    const double s = sample.radialScale;
    const float scale = static_cast<float>(s);
    const float tx = static_cast<float>(s - 1 + 2 * sample.radialTx / settings.outputWorld->width);
    const float ty = static_cast<float>(s - 1 + 2 * sample.radialTy / settings.outputWorld->height);
    const float xform[16] = {scale, 0, 0, 0, 0, scale, 0, 0, 0, 0, 1, 0, tx, ty, 0, 1};
    SendMatrix(id, xform);
    DrawQuadIn(region);
}

// Where the padded copy holds anything, and a texel more: the copy is drawn texel upon texel, but a driver's sampling
// place may be off by a little, and a little of an infinite alpha is full.
Region PaddedRegion(const myParams& settings, const RadialGeometry& geometry) {
    if (WorksEverywhere()) return WholeRegion(geometry.paddedW, geometry.paddedH);
    Region region = FindAlpha(*settings.inputWorld, settings.bitDepth);
    if (region.Empty()) return {};
    region.x = {std::max(region.x.begin + geometry.pad - 1, 0),
                std::min(region.x.end + geometry.pad + 1, geometry.paddedW)};
    region.y = {std::max(region.y.begin + geometry.pad - 1, 0),
                std::min(region.y.end + geometry.pad + 1, geometry.paddedH)};
    return region;
}

// All samples; one that adds nothing only clears the output when it is the first.
void DrawSamples(const myParams& settings, const RadialGeometry& geometry, Buffers& buffers, PF_OutData* out_data) {
    const PF_LayerDef& output = *settings.outputWorld;
    const PlacementQuad quad(static_cast<float>(geometry.paddedW) / static_cast<float>(output.width),
                             static_cast<float>(geometry.paddedH) / static_cast<float>(output.height));
    const Region layer = PaddedRegion(settings, geometry);
    for (const perSampleData& sample : settings.samples) {
        const bool first = &sample == settings.samples.data();
        const SampleRegions regions = RadialRegions(settings, sample, geometry.paddedW, geometry.paddedH, layer);
        if (!WorksEverywhere() && (sample.opacity == 0 || regions.placed.Empty())) {
            if (first) buffers.output.BindFBO(PING, true, out_data);
            continue;
        }
        BlurSample(settings, geometry, sample, regions, buffers, out_data);
        PlaceSample(settings, sample, first, regions.placed, quad, buffers, out_data);
    }
}

}  // namespace

PF_Err RenderRadialPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                          const RadialGeometry& geometry) {
    // Without samples nothing is ever drawn or cleared: the output keeps its transparent black.
    if (settings->samples.empty()) return PF_Err_NONE;

    Buffers buffers;
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
    DrawPaddedCopy(*settings, geometry, buffers, out_data);
    DrawSamples(*settings, geometry, buffers, out_data);
    buffers.blurred.CleanUp();
    buffers.padded.CleanUp();

    glFinish();
    return buffers.output.DownloadBuffer(in_data, suites, &settings->shadowColourFloat, &settings->shadowColour8,
                                         settings->outputWorld, out_data);
}
