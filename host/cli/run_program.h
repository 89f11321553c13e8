// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From the program's arguments to its exit code. Failures are printed here and nowhere else.

#include <functional>
#include <vector>

#include "host/cli/command.h"

namespace umbrant::host {

/// Declares the program's command line, with these commands. They must outlive the declaration.
void DeclareProgram(CLI::App& app, const std::vector<Command>& commands);

/// Standard output for results only, whatever an effect prints; a signal that ends the process removes half-written
/// files first and leaves an exit code of 128 plus the signal. Once, before anything else.
void PrepareProcess();

/// Finds the command that the arguments name and runs it; prints what went wrong. Returns the process's exit code.
/// `instead` is called in place of the command's run once its options were read, and gives the exit code: for a caller
/// that only wants the arguments checked.
int RunProgram(int argc, const char* const* argv, const std::function<int(const Command&)>& instead = {});

/// The same for these commands only.
int RunProgram(const std::vector<Command>& commands, int argc, const char* const* argv,
               const std::function<int(const Command&)>& instead);

}  // namespace umbrant::host
