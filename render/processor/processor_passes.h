// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The shadow types drawn by the CPU renderer, step for step as render/passes/passes.h has them for the GPU: the same
// handles and iterations of the host in the same order, the same messages and errors, the same result for zero-sized
// buffers. This project's own host hands over whole rows instead of iterating over pixels.

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "render/render_settings.h"
#include "render/settings/radial_samples.h"

namespace umbrant::effect {

PF_Err RenderNormalOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                               const RadialGeometry& geometry);

/// Finished, composite included.
PF_Err RenderInnerOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                              const RadialGeometry& geometry);

PF_Err RenderRadialOnProcessor(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings,
                               const RadialGeometry& geometry);

}  // namespace umbrant::effect
