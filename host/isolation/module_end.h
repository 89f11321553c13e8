// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the end of a module's process means to a person: one sentence with the module, how the process ended, and the
// command in which it did.

#include <filesystem>

#include "host/isolation/module_messages.h"
#include "host/process/child_program.h"

namespace umbrant::host {

/// `ErrorKind::kModule` while the module was loaded, else `ErrorKind::kEffect`.
Failure ExplainEnd(const ProcessEnd& end, const std::filesystem::path& module, const ModuleStatus& status);

/// The process sent something that is no message.
Failure WrongMessage(const std::filesystem::path& module);

}  // namespace umbrant::host
