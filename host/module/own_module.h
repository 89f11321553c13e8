// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whose a module is. The program runs its own module in its own process, and every other in a process of its own.

#include <filesystem>

#include "host/module/module.h"

/// Whether `file` is the program's own module: the file that is found in `folders` when nobody names one, under
/// whatever name, or one with the same bytes. Nothing of the file is run.
bool IsOwnModule(const std::filesystem::path& file, const std::vector<std::filesystem::path>& folders);
