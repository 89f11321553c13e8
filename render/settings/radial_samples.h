// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The stack of a radial shadow: how far each copy is scaled about the origin, blurred and shifted. Numbers only.

#include <vector>

#include "render/render_settings.h"
#include "render/settings/param_checkout.h"

namespace umbrant::effect {

/// What the samples and the passes of one radial render share. Lengths in (downsampled) pixels.
struct RadialGeometry {
    double growth = 0;    ///< the last copy's scale less one
    int32_t soft = 0;     ///< blur reach of the unscaled layer
    int32_t pad = 0;      ///< border around the layer on each side
    int32_t paddedW = 0;  ///< input width plus both borders
    int32_t paddedH = 0;
    double originX = 0;  ///< "Origin", layer coordinates
    double originY = 0;
};

/// Expects the settings of the render to be filled.
RadialGeometry BuildRadialGeometry(const CheckedOutParams& params, const myParams& settings);

/// The samples in drawing order; empty when `numSamples` is below 1, and cut off after `kMostSamples`. `radialTx`,
/// `radialTy` and `radialScale` map the padded input to output pixels.
std::vector<perSampleData> BuildRadialSamples(const myParams& settings, const RadialGeometry& geometry);

}  // namespace umbrant::effect
