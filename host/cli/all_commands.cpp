// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/command.h"

namespace umbrant::host {

std::vector<Command> AllCommands() {
    return {RenderCommand(), PreviewCommand(), SheetCommand(),     ParamsCommand(),   PresetsCommand(),
            InfoCommand(),   CompareCommand(), PanelCommand(),     ValidateCommand(), CurvesCommand(),
            FarmCommand(),   DoctorCommand(),  CompletionCommand()};
}

}  // namespace umbrant::host
