// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Names of the interface's numbers, for messages to people.

#include <string>

#include "hostapi/commands.h"

namespace umbrant::host {

/// "PF_Err_OUT_OF_MEMORY" for 4, "A_Err_MISSING_SUITE" for 13, ...; "unknown error" for a value without a name.
const char* ErrorName(PF_Err error);

/// "PF_Cmd_SMART_RENDER" for 24, ...; "unknown command" for a value without a name.
const char* CommandName(PF_Cmd command);

/// An effect's error as the host shows it: its own text first when there is one, then the code and its name:
/// "Not able to acquire AEFX Suite. (error 13, A_Err_MISSING_SUITE)".
std::string EffectErrorText(PF_Err error, const std::string& message);

}  // namespace umbrant::host
