// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Answers the host's smart pre-render: asks for the layers over the right rectangles and reports to the host how far
// the shadow reaches beyond the layer. Runs on any render thread, without a lock.

#include "hostapi/commands.h"
#include "hostapi/smart_render.h"

namespace umbrant::effect {

/// Sets the output's rectangles, flags, `pre_render_data` and its delete function. Returns the first error of the host,
/// `PF_Err_OUT_OF_MEMORY` when the record cannot be allocated; throws 516 for a missing suite.
PF_Err PreRender(PF_InData* in_data, PF_OutData* out_data, PF_PreRenderExtra* extra);

}  // namespace umbrant::effect

/// Releases the record that PreRender handed to the host, and nothing else. The host calls it once per pre-render.
void DisposePreRenderData(void* preRenderData);
