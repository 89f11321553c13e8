// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whether renders write static data of the module, which several of them would then share.

#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// Compares the module's writable data before and after frames. An object that is too small to hold a lock fails the
/// run when the effect announces renders on several threads; everything else is a warning.
void KeepsItsStaticsStill(CheckRun& run);

}  // namespace umbrant::host
