// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The radial shadow's passes: the padded layer, blurred at its own size and scaled about the origin.

#include <algorithm>

#include "render/blur_stride.h"
#include "render/plan_parts.h"
#include "render/plan_passes.h"

namespace umbrant::effect {

namespace {

// Samples of a radial shadow keep their softness in double precision.
BlurPlan Blur(double softness, int32_t steps, int32_t size) {
    const float stride = StrideRadial(softness, steps, size);
    return {static_cast<float>(softness), steps, stride, static_cast<double>(stride) * size};
}

// The quad starts in the lower left corner at unit scale: scaling it by s about the centre of device coordinates moves
// that corner to -s, so s - 1 brings it back before the translation.
Placement Place(double scale, double translation, float quad, int32_t size, int32_t texels) {
    const auto moved = static_cast<float>(scale - 1 + 2 * translation / size);
    return PlaceAxis(static_cast<float>(scale), moved, quad, size, texels);
}

SamplePlan PlanRadialSample(const myParams& settings, const perSampleData& sample, const PaddingPlan& padding) {
    const int32_t steps = BlurSteps(settings.resolutionScale, sample.softness);
    const PF_LayerDef& output = *settings.outputWorld;
    SamplePlan plan;
    plan.across.blur = Blur(sample.softness, steps, padding.width);
    plan.across.x = ScaledAxis(padding.width, 1, padding.width, Edge::kMirror);
    plan.across.y = ScaledAxis(padding.height, 1, padding.height, Edge::kMirror);
    plan.across.opacity = static_cast<float>(sample.opacity);
    plan.down = Blur(sample.softness, steps, padding.height);
    plan.place.x = Place(sample.radialScale, sample.radialTx, padding.quadScaleX, output.width, padding.width);
    plan.place.y = Place(sample.radialScale, sample.radialTy, padding.quadScaleY, output.height, padding.height);
    return plan;
}

}  // namespace

PaddingPlan PlanPadding(const myParams& settings, const RadialGeometry& geometry) {
    const PF_LayerDef& input = *settings.inputWorld;
    const PF_LayerDef& output = *settings.outputWorld;
    PaddingPlan plan;
    plan.pad = geometry.pad;
    plan.width = geometry.paddedW;
    plan.height = geometry.paddedH;
    plan.layerScaleX = static_cast<float>(static_cast<double>(input.width) / plan.width);
    plan.layerScaleY = static_cast<float>(static_cast<double>(input.height) / plan.height);
    plan.quadScaleX = static_cast<float>(plan.width) / static_cast<float>(output.width);
    plan.quadScaleY = static_cast<float>(plan.height) / static_cast<float>(output.height);
    return plan;
}

// A texel more on each side: the copy is drawn texel upon texel, but a driver's sampling position may be off by a
// little, and a little of an infinite alpha is full.
Region PaddedRegion(const PaddingPlan& plan, const Region& layer) {
    if (layer.Empty()) return {};
    return {{std::max(layer.x.begin + plan.pad - 1, 0), std::min(layer.x.end + plan.pad + 1, plan.width)},
            {std::max(layer.y.begin + plan.pad - 1, 0), std::min(layer.y.end + plan.pad + 1, plan.height)}};
}

StackPlan PlanRadialStack(const myParams& settings, const PaddingPlan& padding, const Region& padded,
                          Precision precision) {
    StackPlan stack{settings.outputWorld->width, settings.outputWorld->height, padded, {}};
    stack.samples.reserve(settings.samples.size());
    for (const perSampleData& sample : settings.samples) {
        SamplePlan plan = PlanRadialSample(settings, sample, padding);
        if (sample.opacity != 0) plan.regions = RegionsOf(plan, padded, stack.width, stack.height, precision);
        stack.samples.push_back(plan);
    }
    return stack;
}

}  // namespace umbrant::effect
