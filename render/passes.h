// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The GPU passes of each shadow type: from the input's alpha to coloured shadow pixels in the output world. The calling
// thread's render state must exist and its context be current.

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "render/render_settings.h"

/// Normal shadow. Each sample is blurred across, blurred down and placed, the output adding them as s (1 - d) + d. A
/// zero-sized input or output writes "UM2 Error: in/out FBO too small" into the return message and succeeds, output
/// untouched. `PF_Err_OUT_OF_MEMORY` when a buffer cannot be had; otherwise the read-back's error.
PF_Err RenderNormalPasses(PF_InData* in_data, PF_OutData* out_data, AEGP_SuiteHandler& suites, myParams* settings);
