// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Runs the program's commands inside of the test's process, which takes a fraction of the time that a process of the
// program takes. For everything that a run reads, draws, prints and answers. What belongs to a process (signals,
// limits, the environment, closed or full streams, standard input, terminals, the start and the exit code itself) is
// tested with RunUmbrant and RunningProgram.

#include <string>
#include <vector>

#include "tests/host/cli/program.h"

namespace umbrant::host {

/// What RunUmbrant(folder, arguments) returns. A run has standard output and standard error as files, the folder as
/// working folder and no UMBRANT_MODULE; all are restored. Modules other than the program's own run in processes of
/// the built program, as ever.
Outcome RunInProcess(const Folder& folder, const std::vector<std::string>& arguments);

}  // namespace umbrant::host
