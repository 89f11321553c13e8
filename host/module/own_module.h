// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Identifies the program's own module, which runs in the program's process; every other runs in a separate process.

#include <filesystem>

#include "host/module/module.h"

namespace umbrant::host {

/// Whether `file` is the program's own module: the file that is found in `folders` when none is named, under
/// whatever name, or one with the same bytes. Nothing of the file is run.
bool IsOwnModule(const std::filesystem::path& file, const std::vector<std::filesystem::path>& folders);

}  // namespace umbrant::host
