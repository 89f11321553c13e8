// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Presets: files that hold values of parameters, as `params --json --values` writes them and `--preset` reads them:
//
//   { "version": 1, "values": { "style/distance": "80", "style/color": "#203060" } }

#include <filesystem>
#include <string>

#include "host/result.h"
#include "host/session/param_set.h"

/// Sets what the file says; rows that it does not name keep their values. A value is a text as `--set` takes it, a
/// number, or true and false for on and off. Fails with `ExitCode::kFile` when the file cannot be read as JSON, and
/// with `ExitCode::kUsage`, telling every mistake at once, when it is no preset, names a row that does not exist or
/// twice, or has a value that its row does not take. A failure changes nothing.
Result<Done> ApplyPreset(const std::filesystem::path& file, ParamSet& params);

/// The current values as a preset, ending in a line break: every row that a user can set, in the order of the panel.
std::string PresetText(const ParamSet& params);
