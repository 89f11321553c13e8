// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The values that `--preset FILE` and `--set PATH=VALUE` give, as every command that shows the effect takes them.

#include <string>
#include <vector>

#include "host/animation/preset.h"
#include "host/parameters/param_set.h"
#include "host/result.h"

namespace umbrant::host {

/// Sets the values in their order. Fails with `ErrorKind::kUsage` at the first that has no '=' or cannot be set.
Result<Done> ApplySettings(const std::vector<std::string>& settings, ParamSet& params);

/// A preset's values and keyframes, unless its name is empty, and then the settings, which win: a row that is set keeps
/// still. Fails as ApplyPreset and ApplySettings do.
Result<Done> ApplyValues(const std::string& preset, const std::vector<std::string>& settings, AnimatedParams& params);

}  // namespace umbrant::host
