// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Derives the passes of each shadow type from the settings. Pure functions of plain records: no host call, no GL. The
// settings must be filled, with their worlds, samples and framebuffer records.

#include "render/pass_plan.h"
#include "render/render_settings.h"
#include "render/settings/radial_samples.h"

namespace umbrant::effect {

/// Texels and pixels that a renderer's sampling positions may be away from the plan's.
enum class Precision : int32_t {
    kExact = 0,   ///< the CPU renderer calculates with the plan's own numbers
    kDriver = 1,  ///< more than the interpolation of any GPU driver is off
};

/// Blur across of a normal shadow's sample. Reads the size of the input world only.
AcrossPlan PlanNormalAcross(const myParams& settings, const perSampleData& sample, const framebufferData& record);

/// Blur across of an inner shadow's sample: its source is the inverted alpha, at the size of the first buffer.
AcrossPlan PlanInnerAcross(const myParams& settings, const perSampleData& sample, const framebufferData& record);

/// Blur down of a normal or inner shadow's sample; `amount` and `steps` are the blur across's.
BlurPlan PlanDown(float amount, int32_t steps, const framebufferData& record);

/// Placement of a normal or inner shadow's sample: about the middle of the output, shifted by the sample's offset.
PlacePlan PlanPlace(const myParams& settings, const perSampleData& sample, const framebufferData& record);

/// All passes of a normal shadow. `layer` is the part of the input world that is not 0.
/// Throws std::out_of_range when a sample names a buffer that there is not; so does `PlanInnerStack`.
StackPlan PlanNormalStack(const myParams& settings, const Region& layer, Precision precision);

InversionPlan PlanInversion(const myParams& settings);

/// The part of the inverted alpha that is not 0; `holes` is the part of the padded layer that is not full.
Region InvertedRegion(const InversionPlan& plan, const Region& holes);

/// All passes of an inner shadow. `inverted` is the part of the inverted alpha that is not 0.
StackPlan PlanInnerStack(const myParams& settings, const Region& inverted, Precision precision);

PaddingPlan PlanPadding(const myParams& settings, const RadialGeometry& geometry);

/// The part of the padded layer that is not 0; `layer` is that of the input world.
Region PaddedRegion(const PaddingPlan& plan, const Region& layer);

/// All passes of a radial shadow. `padded` is the part of the padded layer that is not 0.
StackPlan PlanRadialStack(const myParams& settings, const PaddingPlan& padding, const Region& padded,
                          Precision precision);

}  // namespace umbrant::effect
