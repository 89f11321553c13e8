// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From the panel's values to the numbers that the passes use. No host call, no GL.

#include "hostapi/geometry.h"
#include "render/render_settings.h"
#include "render/settings/param_checkout.h"

namespace umbrant::effect {

/// Fills the settings that follow from the parameters, in the order in which they depend on one another. Expects the
/// worlds, `bitDepth`, `preRender` and `shadowColourFloat` to be set; leaves the samples and framebuffer records empty.
void FillSettings(const CheckedOutParams& params, const PF_RationalScale& downsampleX, myParams* settings);

}  // namespace umbrant::effect
