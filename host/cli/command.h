// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A subcommand of the program, and the list of them. Each lives in a file of its own: its options, its examples, its
// run. A run prints results to standard output and words for people to standard error; failures are returned, and
// printed in one place.

#include <functional>
#include <string>
#include <vector>

#include "host/result.h"

namespace CLI {
class App;
}

struct Command {
    std::string name;
    std::string summary;
    std::string examples;                    ///< the end of its help text
    std::function<void(CLI::App&)> options;  ///< declares its options
    std::function<Result<ExitCode>()> run;   ///< after its options were read
};

Command RenderCommand();
Command ParamsCommand();
Command InfoCommand();
Command CompareCommand();
Command PanelCommand();
Command ValidateCommand();
Command CurvesCommand();
Command FarmCommand();
Command CompletionCommand();

/// All of them, in the order of the help text.
std::vector<Command> AllCommands();

/// Declares the program's command line, with these commands. They must outlive the declaration.
void DeclareProgram(CLI::App& app, const std::vector<Command>& commands);

/// For an option's check: why `text` is not a number from `low` to `high`, or an empty text.
std::string OutOfRange(const std::string& text, double low, double high);

/// The host program's own version, "major.minor.fix".
std::string ProgramVersion();

/// Standard output for results alone, whatever an effect prints; a signal that ends the process removes half-written
/// files first and leaves an exit code of 128 plus the signal. Once, before anything else.
void PrepareProcess();

/// Finds the command that the arguments name and runs it; prints what went wrong. Returns the process's exit code.
/// `instead` is called in place of the command's run once its options were read, and gives the exit code: for a caller
/// that only wants the arguments judged.
int RunProgram(int argc, const char* const* argv, const std::function<int(const Command&)>& instead = {});

/// The same for these commands alone.
int RunProgram(const std::vector<Command>& commands, int argc, const char* const* argv,
               const std::function<int(const Command&)>& instead);
