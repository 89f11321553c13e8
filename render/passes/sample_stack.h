// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The loop that the normal and the inner shadow share: every sample blurred across, blurred down, and placed.

#include <vector>

#include "gl/framebuffer.h"
#include "hostapi/commands.h"
#include "render/pass_plan.h"
#include "render/render_settings.h"

namespace umbrant::effect {

/// Sends the program `programId` the blur across of a sample, and leaves it in the settings for `SendBlurHUniforms`.
using BlurSender = void (*)(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId);

/// Draws all samples of `plan`, which is that of `settings`, in order: `source` is blurred in the sample's ping-pong
/// buffer and added to `accumulated`, which the first sample clears, also when it is skipped. A sample whose buffer is
/// zero-sized or whose planned regions are empty is skipped. The quad must be bound and the blend function set;
/// blending is on afterwards. Throws std::out_of_range when a sample names a buffer that there is not.
void DrawSampleStack(myParams* settings, const StackPlan& plan, Framebuffer& source, std::vector<Framebuffer>& blurred,
                     Framebuffer& accumulated, BlurSender sendAcross, PF_OutData* out_data);

}  // namespace umbrant::effect
