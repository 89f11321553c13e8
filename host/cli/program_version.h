// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

#include <string>

#include "hostapi/basic_types.h"

namespace umbrant::host {

/// The host program's own version, "major.minor.fix".
std::string ProgramVersion();

/// An effect's version, "1.3.3", from the packed form.
std::string EffectVersionText(A_u_long packed);

}  // namespace umbrant::host
