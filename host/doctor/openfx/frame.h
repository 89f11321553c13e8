// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One frame of a plug-in that was described: an instance with a small image as its source, drawn once.

#include <string>

#include "host/doctor/openfx/effect.h"
#include "host/doctor/openfx/plugin_calls.h"

namespace umbrant::host {

/// Draws a frame with an instance of what was described in that context. Returns what was drawn, as
/// "draws a frame of 83 x 66 pixels in 8 bits", or why no frame can be asked for, as "was not asked for a frame: ...".
/// Fails with `ErrorKind::kEffect`.
Result<std::string> DrawFrame(PluginCalls& plugin, const OpenFxEffect& effect, const OpenFxEffect& described,
                              const std::string& context);

}  // namespace umbrant::host
