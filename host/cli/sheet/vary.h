// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a contact sheet varies: one parameter's values, presets or frames along each of its directions.

#include <string>
#include <vector>

#include "host/result.h"

namespace umbrant::host {

/// One direction of a sheet.
struct SheetAxis {
    std::string key;                  ///< a parameter's path, or "preset"
    std::vector<std::string> values;  ///< as they are typed
    std::vector<std::string> labels;  ///< what the sheet shows for each; empty until they are known
};

/// "PATH=VALUE,VALUE,...", or with semicolons between values that have commas. Fails with `ErrorKind::kUsage`.
Result<SheetAxis> ParseVary(const std::string& text);

/// The same of several texts. Fails with `ErrorKind::kUsage`, also when two vary the same.
Result<std::vector<SheetAxis>> ParseVaries(const std::vector<std::string>& texts);

/// What one image of a sheet is drawn with.
struct SheetCombination {
    std::string preset;  ///< a name or a file; empty for none
    std::vector<std::string> settings;
};

/// All combinations of the axes' values in addition to a preset and settings, the last axis changing first. One without
/// axes.
std::vector<SheetCombination> Combinations(const std::vector<SheetAxis>& axes, const SheetCombination& common);

}  // namespace umbrant::host
