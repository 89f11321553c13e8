// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The GPU passes of each shadow type: from the layer's alpha to coloured shadow pixels. The calling thread's render
// state must exist and its context be current. In all of them a zero-sized buffer writes its message into the return
// message and succeeds with the output untouched, `PF_Err_OUT_OF_MEMORY` says that a buffer cannot be had, and a host
// error is returned as it is; a missing suite throws 516. Only the radial shadow reads the geometry.

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "render/render_settings.h"
#include "render/settings/radial_samples.h"

namespace umbrant::effect {

inline constexpr char kNormalTooSmall[] = "UM2 Error: in/out FBO too small";
inline constexpr char kInnerTooSmall[] = "UM2 Inner Error: in/out FBO too small";
inline constexpr char kRadialTooSmall[] = "UM2 Radial Error: in/out FBO too small";

/// Normal shadow, into the output world. Each sample is blurred across, blurred down and placed, the output adding them
/// as s (1 - d) + d. Message: `kNormalTooSmall`.
PF_Err RenderNormalPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                          const RadialGeometry& geometry);

/// Inner shadow, finished: the passes on the inverted alpha, then the composite of texture, source, shadow and clip,
/// all by host transfers. Message: `kInnerTooSmall`.
PF_Err RenderInnerShadow(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                         const RadialGeometry& geometry);

/// Radial shadow, into the output world: each sample a blurred copy of the padded layer, scaled about the origin.
/// Message: `kRadialTooSmall`.
PF_Err RenderRadialPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                          const RadialGeometry& geometry);

}  // namespace umbrant::effect
