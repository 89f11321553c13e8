// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Declares the parameters to the host. [main]

#include "hostapi/commands.h"

namespace umbrant::effect {

/// Adds every row of the parameter table but the input layer, registers the self-drawn area, and reports the
/// count to the host. Returns the first error of `add_param`, with the count then untouched; throws 516 for a missing
/// suite.
PF_Err ParamsSetup(PF_InData* in_data, PF_OutData* out_data);

}  // namespace umbrant::effect
