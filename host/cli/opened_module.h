// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What every command that meets the effect begins with: the module's file found and loaded, and a session started.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "host/module/module.h"
#include "host/session/effect_session.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// A session on a module: on the program's own one in this process, on any other in a process of its own.
struct OpenedModule {
    std::filesystem::path file;
    Registration effect;
    std::unique_ptr<Module> module;  ///< outlives the session; null for a module in another process
    std::optional<EffectSession> session;

    EffectSession& Session() { return *session; }
};

/// Loads the module that `option` names, or the one that is found without it, and starts a session. Whose module it is
/// is decided before anything of it is run. Without a renderer in the options it is set up for the one that the
/// environment requests.
Result<OpenedModule> OpenModule(const std::optional<std::string>& option, SessionOptions options = {});

}  // namespace umbrant::host
