// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Commands with a null pointer where a host has something to give: hosts with faults of their own have sent them.

#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// Sends each such command in a process of its own. An error is an answer; a crash fails the run.
void StandsNullPointers(CheckRun& run);

}  // namespace umbrant::host
