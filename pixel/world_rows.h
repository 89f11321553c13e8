// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Worlds row by row, as this project's own host offers them.

#include <functional>
#include <optional>

#include "hostapi/commands.h"

namespace umbrant::effect {

/// What is done with row `y`, whose first pixel is at `pixels`; must not throw.
using RowWork = std::function<void(A_long y, void* pixels)>;

/// Calls `work` for every row of `world`, on several threads at once. Returns the host's error, or nothing, with
/// nothing done, where the host does not offer rows. Only to be called where the host offers its private suite.
std::optional<PF_Err> WalkRows(PF_InData* in_data, PF_EffectWorld* world, const RowWork& work);

}  // namespace umbrant::effect
