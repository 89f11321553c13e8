// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

#include <string>

namespace umbrant::host {

/// The host program's own version, "major.minor.fix".
std::string ProgramVersion();

}  // namespace umbrant::host
