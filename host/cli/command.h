// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A subcommand of the program, and the list of them. Each has a separate file: its options, its examples, its
// run. A run prints results to standard output and messages to standard error; failures are returned, and
// printed in one place.

#include <functional>
#include <string>
#include <vector>

#include "host/cli/exit_code.h"

namespace CLI {
class App;
}

namespace umbrant::host {

struct Command {
    std::string name;
    std::string summary;
    std::string examples;                    ///< the end of its help text
    std::function<void(CLI::App&)> options;  ///< declares its options
    std::function<Result<ExitCode>()> run;   ///< after its options were read
};

Command RenderCommand();
Command ParamsCommand();
Command PresetsCommand();
Command SheetCommand();
Command InfoCommand();
Command CompareCommand();
Command PanelCommand();
Command PreviewCommand();
Command ValidateCommand();
Command CurvesCommand();
Command FarmCommand();
Command DoctorCommand();
Command CompletionCommand();

/// All of them, in the order of the help text.
std::vector<Command> AllCommands();

}  // namespace umbrant::host
