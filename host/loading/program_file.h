// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which file is the program: what is installed with it is found from there, and its child processes run it.

#include <filesystem>

namespace umbrant::host {

/// The file of the running program, or the one of StandInForProgram. Empty when the system does not report it.
std::filesystem::path ProgramFile();

/// Makes ProgramFile() return this absolute path. For a process that runs the program's commands without being the
/// program, such as a test. To be called once, while the process has one thread.
void StandInForProgram(const std::filesystem::path& program);

}  // namespace umbrant::host
