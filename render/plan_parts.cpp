// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Axes and placements, and the samples of the shadow types that have buffers of their own.

#include "render/plan_parts.h"

namespace umbrant::effect {

AxisSampling ScaledAxis(int32_t outputs, float scale, int32_t inputs, Edge edge) {
    const double share = static_cast<double>(scale);
    const double pitch = share * inputs / outputs;
    return {outputs, scale, {0.5 * pitch - share * inputs / 2 + inputs / 2.0 - 0.5, pitch, inputs, edge}};
}

Placement PlaceAxis(float scale, float translation, float quad, int32_t size, int32_t texels) {
    const double share = static_cast<double>(scale);
    return {(1 - share + static_cast<double>(translation)) / 2 * size, share * static_cast<double>(quad) * size, texels,
            scale, translation};
}

StackPlan PlanBufferStack(const myParams& settings, BufferPlanner planner, const Region& something,
                          Precision precision) {
    StackPlan stack{settings.outputWorld->width, settings.outputWorld->height, something, {}};
    stack.samples.reserve(settings.samples.size());
    for (const perSampleData& sample : settings.samples) {
        const framebufferData& record = settings.framebuffers.at(sample.fbIndex);
        SamplePlan plan = planner(settings, sample, record);
        plan.buffer = sample.fbIndex;
        if (record.fboW >= 1 && record.fboH >= 1 && sample.opacity != 0) {
            plan.regions = RegionsOf(plan, something, stack.width, stack.height, precision);
        }
        stack.samples.push_back(plan);
    }
    return stack;
}

}  // namespace umbrant::effect
