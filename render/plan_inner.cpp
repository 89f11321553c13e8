// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's passes: as a normal shadow's, but of the inverted alpha, which is as large as the first buffer.

#include "render/blur_stride.h"
#include "render/plan_parts.h"
#include "render/plan_passes.h"

namespace umbrant::effect {

namespace {

SamplePlan PlanInnerSample(const myParams& settings, const perSampleData& sample, const framebufferData& record) {
    SamplePlan plan;
    plan.across = PlanInnerAcross(settings, sample, record);
    plan.down = PlanDown(plan.across.blur.amount, plan.across.blur.steps, record);
    plan.place = PlanPlace(settings, sample, record);
    return plan;
}

}  // namespace

AcrossPlan PlanInnerAcross(const myParams& settings, const perSampleData& sample, const framebufferData& record) {
    const framebufferData& first = settings.framebuffers.front();
    const double amount = BlurAmount(sample.softness);
    AcrossPlan plan;
    plan.blur.amount = static_cast<float>(amount);
    plan.blur.steps = BlurSteps(settings.resolutionScale, amount);
    plan.blur.stride = StrideAcross(amount, plan.blur.steps, settings.innerSourceWorld->width);
    plan.blur.inputStride = static_cast<double>(plan.blur.stride) * first.fboW;
    plan.x = ScaledAxis(record.fboW, static_cast<float>(static_cast<double>(record.fboW) / first.fboW), first.fboW,
                        Edge::kMirror);
    plan.y = ScaledAxis(record.fboH, static_cast<float>(static_cast<double>(record.fboH) / first.fboH), first.fboH,
                        Edge::kMirror);
    plan.opacity = static_cast<float>(sample.opacity);
    return plan;
}

InversionPlan PlanInversion(const myParams& settings) {
    const framebufferData& first = settings.framebuffers.front();
    const PF_LayerDef& source = *settings.innerSourceWorld;
    return {ScaledAxis(first.fboW, static_cast<float>(static_cast<double>(first.paddedW) / source.width), source.width,
                       Edge::kClamp),
            ScaledAxis(first.fboH, static_cast<float>(static_cast<double>(first.paddedH) / source.height),
                       source.height, Edge::kClamp),
            settings.shadowColourFloat.alpha};
}

Region InvertedRegion(const InversionPlan& plan, const Region& holes) {
    return {SeenThrough(plan.x, holes.x, 0, Precision::kDriver), SeenThrough(plan.y, holes.y, 0, Precision::kDriver)};
}

StackPlan PlanInnerStack(const myParams& settings, const Region& inverted, Precision precision) {
    return PlanBufferStack(settings, PlanInnerSample, inverted, precision);
}

}  // namespace umbrant::effect
