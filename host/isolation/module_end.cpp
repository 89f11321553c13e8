// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/module_end.h"

#include <fmt/format.h>

#include <csignal>
#include <cstring>
#include <string>

#include "host/session/error_names.h"

namespace umbrant::host {

namespace {

/// When in a module's life its process ended.
std::string WhenOf(const ModuleStatus& status) {
    const int command = status.command;
    switch (status.phase) {
        case ModuleStatus::kLoads:
            return "while it was loaded";
        case ModuleStatus::kUnloads:
            return "while it was unloaded";
        case ModuleStatus::kInCommand:
            return fmt::format("during {}", CommandName(command));
        default:
            return command < 0 ? "before its first command" : fmt::format("after {}", CommandName(command));
    }
}

std::string Advice(const std::filesystem::path& module) {
    return fmt::format("; `umbrant validate {}` examines the module", module.string());
}

}  // namespace

Failure ExplainEnd(const ProcessEnd& end, const std::filesystem::path& module, const ModuleStatus& status) {
    std::string what;
    if (end.signal == 0) {
        what = fmt::format("ended the process with exit code {}", end.code);
    } else if (end.signal == SIGKILL) {
        what = "was killed (signal 9), possibly because memory ran out,";
    } else {
        what = fmt::format("crashed with signal {} ({})", end.signal, strsignal(end.signal));
    }
    if (status.phase == ModuleStatus::kLoads) {
        return {ErrorKind::kModule, fmt::format("cannot load the module '{}': it {} {}{}", module.string(), what,
                                                WhenOf(status), Advice(module))};
    }
    return {ErrorKind::kEffect,
            fmt::format("the module '{}' {} {}{}", module.string(), what, WhenOf(status), Advice(module))};
}

Failure WrongMessage(const std::filesystem::path& module) {
    return {ErrorKind::kEffect, fmt::format("the process of the module '{}' sent an invalid message: the module has "
                                            "overwritten memory that it does not own{}",
                                            module.string(), Advice(module))};
}

}  // namespace umbrant::host
