// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One reading of the panel: pre-render and render take every parameter the same way.

#include <array>

#include "entry/param_ids.h"
#include "hostapi/commands.h"
#include "hostapi/params.h"

namespace umbrant::effect {

/// Parameter definitions by index. The input layer and the texture layer stay zero: they are layers and are checked out
/// on their own.
using CheckedOutParams = std::array<PF_ParamDef, PARAM_NUM_PARAMS>;

/// Checks out parameters 1 to 60 except the texture layer at the current time, each checked in again at once. Stops at
/// the first error of the host and returns it.
PF_Err CheckoutParams(PF_InData* in_data, CheckedOutParams* params);

}  // namespace umbrant::effect
