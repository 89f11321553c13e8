// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The about text, and the effect's name with its version as it is shown to people. [main]

#include <string>

#include "hostapi/commands.h"

namespace umbrant::effect {

/// "Umbrant 2 v1.3.3", of the numbers in entry/version.h.
std::string VersionedEffectName();

/// Writes the about text into `return_msg`; does nothing in Premiere Pro. Returns 0; throws 516 for a missing suite.
PF_Err About(PF_InData* in_data, PF_OutData* out_data);

}  // namespace umbrant::effect
