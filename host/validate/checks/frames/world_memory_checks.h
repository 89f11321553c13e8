// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whether an effect keeps to the memory of its worlds: their rows may be longer than their pixels, they may end at a
// guard page, and their extent hints may be wrong.

#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// The frame is the same whatever the rows' length is, and rows may go from the bottom up.
void FollowsRowLengths(CheckRun& run);
/// Nothing is read or written before and behind a world, or between its rows.
void StaysInside(CheckRun& run);
/// Extent hints that are empty, too large or inverted do no harm.
void DistrustsExtents(CheckRun& run);

}  // namespace umbrant::host
