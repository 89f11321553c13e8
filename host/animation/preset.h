// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Presets: files that hold values of parameters, and keyframes of those that move, as `params --json --values` writes
// them and `--preset` reads them. Version 1 has only values:
//
//   { "version": 1, "values": { "style/distance": "80", "style/color": "#203060" } }
//
// Version 2 may also have keyframes:
//
//   { "version": 2,
//     "values": { "style/color": "#203060" },
//     "keyframes": {
//       "style/angle": [ { "frame": 1, "value": 45, "out": "ease" }, { "frame": 48, "value": 405 } ] } }

#include <filesystem>
#include <string>

#include "host/animation/animation.h"
#include "host/parameters/param_set.h"
#include "host/result.h"

namespace umbrant::host {

/// What a preset changes: values, and what moves.
struct AnimatedParams {
    ParamSet values;
    Animation animation;
};

/// Sets the values of the file; other rows do not change, and a row that gets a value loses its keyframes. Fails
/// with `ErrorKind::kFile` when the file cannot be read as JSON, and with `ErrorKind::kUsage` and every mistake at
/// once, with its line and column, when it is not a preset. A failure changes nothing.
Result<Done> ApplyPreset(const std::filesystem::path& file, AnimatedParams& params);

/// The same for a preset's text, which failures call by `name`.
Result<Done> ApplyPresetText(const std::string& text, const std::string& name, AnimatedParams& params);

/// The current values and tracks as a preset, ending in a line break: every row that a user can set, in the order of
/// the panel. Without tracks it is of version 1.
std::string PresetText(const AnimatedParams& params);

}  // namespace umbrant::host
