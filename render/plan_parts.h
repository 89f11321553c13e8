// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the plans of the three shadow types are made of.

#include "render/pass_plan.h"
#include "render/plan_passes.h"
#include "render/render_settings.h"

namespace umbrant::effect {

/// An axis whose outputs cover `scale` times the `inputs`.
AxisSampling ScaledAxis(int32_t outputs, float scale, int32_t inputs, Edge edge);

/// Places `texels` texels on an output of `size` pixels. `quad` is the share of the output that an unscaled copy has;
/// `scale` and `translation` (in half outputs, from the middle) are those of the "xform".
Placement PlaceAxis(float scale, float translation, float quad, int32_t size, int32_t texels);

/// Outputs that see any of `something` with taps up to `reach` inputs away.
Range SeenThrough(const AxisSampling& axis, const Range& something, double reach, Precision precision);

/// What each pass of a sample has to draw when its source holds `something`: only what is not 0 and shows in an output
/// of `width` x `height` pixels.
SampleRegions RegionsOf(const SamplePlan& plan, const Region& something, int32_t width, int32_t height,
                        Precision precision);

using BufferPlanner = SamplePlan (*)(const myParams& settings, const perSampleData& sample,
                                     const framebufferData& record);

/// The samples of a shadow that is blurred in the buffers of the settings. The regions of a sample without opacity, or
/// whose buffer is zero-sized, stay empty.
StackPlan PlanBufferStack(const myParams& settings, BufferPlanner planner, const Region& something,
                          Precision precision);

}  // namespace umbrant::effect
