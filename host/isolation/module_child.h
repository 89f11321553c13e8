// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The other side of ModuleProcess: this program as the process in which a module that is not ours runs.

#include <optional>

namespace umbrant::host {

/// Arguments with which the program starts itself as that process.
inline constexpr char kModuleProcessArgument[] = "--module-process";

/// The exit code when the arguments ask for that process and its socket is there: serves it to the end. Nothing
/// otherwise. To be called first in main.
std::optional<int> RunModuleProcess(int argc, const char* const* argv);

}  // namespace umbrant::host
