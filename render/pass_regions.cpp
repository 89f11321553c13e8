// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Following a region through the passes.

#include "render/pass_regions.h"

#include <algorithm>
#include <cmath>

#include "pixel/saturate.h"

namespace {

// Inputs or pixels that a driver's sampling place may be off by, and more.
constexpr double kSpare = 1;

Range Limited(double begin, double end, int32_t size) {
    return {std::clamp(ToInt32(std::floor(begin)), 0, size), std::clamp(ToInt32(std::ceil(end)), 0, size)};
}

/// Where a copy lies on one axis of the output, in pixels, and how many texels it has there.
struct Place {
    double start;
    double length;
    int32_t texels;
};

// Pixels that mix any of the texels `drawn`.
Range Placed(const Place& place, const Range& drawn, int32_t size) {
    if (drawn.Empty()) return {};
    const double pixel = place.length / place.texels;
    const double begin = place.start + (drawn.begin - 0.5 - kSpare) * pixel;
    const double end = place.start + (drawn.end + 0.5 + kSpare) * pixel;
    return Limited(begin - kSpare, end + kSpare, size);
}

// As `SendXformUniforms` places it: about the middle of the output, shifted by pixels.
Place Centred(double shift, int32_t padded, int32_t texels, int32_t size) {
    return {(size - padded) / 2.0 + shift, static_cast<double>(padded), texels};
}

Place CentredX(const myParams& s, const perSampleData& sample, const framebufferData& record) {
    return Centred(sample.offsetX + s.offsetShadowX + s.preRender.centreOffsetX, record.paddedW, record.fboW,
                   s.outputWorld->width);
}

Place CentredY(const myParams& s, const perSampleData& sample, const framebufferData& record) {
    return Centred(sample.offsetY + s.offsetShadowY + s.preRender.centreOffsetY, record.paddedH, record.fboH,
                   s.outputWorld->height);
}

// The rows that the blur down makes of the region across, in its own rows.
Region Down(const Region& across, int32_t rows, double reach) {
    if (across.Empty()) return {};
    return {across.x, SeenThrough({rows, rows, static_cast<double>(rows), false}, across.y, reach)};
}

SampleRegions Follow(const Region& across, int32_t rows, double reachDown, const Place& x, const Place& y,
                     const PF_LayerDef& output) {
    const Region down = Down(across, rows, reachDown);
    if (down.Empty()) return {};
    return {across, down, {Placed(x, down.x, output.width), Placed(y, down.y, output.height)}};
}

}  // namespace

// An output sees an input when a tap comes nearer than one input to it. A mirrored input is never nearer than the input
// itself, so mirrors see nothing more.
Range SeenThrough(const CoveredAxis& axis, const Range& something, double reach) {
    if (something.Empty()) return {};
    const double pitch = axis.covered / axis.outputs;
    const double first = (axis.inputs - axis.covered + pitch) / 2 - 0.5;
    const double far = reach + 1 + kSpare;
    Range seen =
        Limited((something.begin - far - first) / pitch, (something.end - 1 + far - first) / pitch + 1, axis.outputs);
    if (axis.clamped && something.begin == 0) seen.begin = 0;
    if (axis.clamped && something.end == axis.inputs) seen.end = axis.outputs;
    return seen;
}

SampleRegions NormalRegions(const myParams& settings, const perSampleData& sample, const framebufferData& record,
                            const Region& layer) {
    const PF_LayerDef& input = *settings.inputWorld;
    const double amount = std::max(sample.softness, 1.0);
    const Region across = {
        SeenThrough({input.width, record.fboW, static_cast<double>(record.paddedW), true}, layer.x, amount),
        SeenThrough({input.height, record.fboH, static_cast<double>(record.paddedH), true}, layer.y, 0)};
    return Follow(across, record.fboH, amount / record.paddedH * record.fboH, CentredX(settings, sample, record),
                  CentredY(settings, sample, record), *settings.outputWorld);
}

Region InvertedRegion(const myParams& settings, const Region& holes) {
    const framebufferData& first = settings.framebuffers.front();
    const PF_LayerDef& source = *settings.innerSourceWorld;
    return {SeenThrough({source.width, first.fboW, static_cast<double>(first.paddedW), true}, holes.x, 0),
            SeenThrough({source.height, first.fboH, static_cast<double>(first.paddedH), true}, holes.y, 0)};
}

SampleRegions InnerRegions(const myParams& settings, const perSampleData& sample, const framebufferData& record,
                           const Region& inverted) {
    const framebufferData& first = settings.framebuffers.front();
    const double amount = std::max(sample.softness, 1.0);
    const double reachAcross = amount / settings.innerSourceWorld->width * first.fboW;
    const Region across = {
        SeenThrough({first.fboW, record.fboW, static_cast<double>(record.fboW), false}, inverted.x, reachAcross),
        SeenThrough({first.fboH, record.fboH, static_cast<double>(record.fboH), false}, inverted.y, 0)};
    return Follow(across, record.fboH, amount / record.paddedH * record.fboH, CentredX(settings, sample, record),
                  CentredY(settings, sample, record), *settings.outputWorld);
}

SampleRegions RadialRegions(const myParams& settings, const perSampleData& sample, int32_t width, int32_t height,
                            const Region& layer) {
    const Region across = {SeenThrough({width, width, static_cast<double>(width), false}, layer.x, sample.softness),
                           layer.y};
    const double scale = sample.radialScale;
    return Follow(across, height, sample.softness, {sample.radialTx, scale * width, width},
                  {sample.radialTy, scale * height, height}, *settings.outputWorld);
}
