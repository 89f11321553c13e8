// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The normal shadow's passes.

#include "render/blur_stride.h"
#include "render/plan_parts.h"
#include "render/plan_passes.h"

namespace umbrant::effect {

namespace {

SamplePlan PlanNormalSample(const myParams& settings, const perSampleData& sample, const framebufferData& record) {
    SamplePlan plan;
    plan.across = PlanNormalAcross(settings, sample, record);
    plan.down = PlanDown(plan.across.blur.amount, plan.across.blur.steps, record);
    plan.place = PlanPlace(settings, sample, record);
    return plan;
}

Placement Centred(double shift, double padded, int32_t size, int32_t texels) {
    const auto translation = static_cast<float>((2.0 / size) * shift);
    return PlaceAxis(static_cast<float>(padded / size), translation, 1, size, texels);
}

}  // namespace

AcrossPlan PlanNormalAcross(const myParams& settings, const perSampleData& sample, const framebufferData& record) {
    const int32_t width = settings.inputWorld->width;
    const int32_t height = settings.inputWorld->height;
    const double amount = BlurAmount(sample.softness);
    AcrossPlan plan;
    plan.blur.amount = static_cast<float>(amount);
    plan.blur.steps = BlurSteps(settings.resolutionScale, amount);
    plan.blur.stride = StrideAcross(amount, plan.blur.steps, width);
    plan.blur.inputStride = static_cast<double>(plan.blur.stride) * width;
    plan.x =
        ScaledAxis(record.fboW, static_cast<float>(record.paddedW / static_cast<double>(width)), width, Edge::kClamp);
    plan.y =
        ScaledAxis(record.fboH, static_cast<float>(record.paddedH / static_cast<double>(height)), height, Edge::kClamp);
    plan.opacity = static_cast<float>(sample.opacity);
    return plan;
}

BlurPlan PlanDown(float amount, int32_t steps, const framebufferData& record) {
    BlurPlan plan;
    plan.amount = amount;
    plan.steps = steps;
    plan.stride = StrideDown(amount, steps, record.paddedH);
    plan.inputStride = static_cast<double>(plan.stride) * record.fboH;
    return plan;
}

PlacePlan PlanPlace(const myParams& settings, const perSampleData& sample, const framebufferData& record) {
    const PF_LayerDef& output = *settings.outputWorld;
    return {Centred(sample.offsetX + settings.offsetShadowX + settings.preRender.centreOffsetX, record.paddedW,
                    output.width, record.fboW),
            Centred(sample.offsetY + settings.offsetShadowY + settings.preRender.centreOffsetY, record.paddedH,
                    output.height, record.fboH)};
}

StackPlan PlanNormalStack(const myParams& settings, const Region& layer, Precision precision) {
    return PlanBufferStack(settings, PlanNormalSample, layer, precision);
}

}  // namespace umbrant::effect
