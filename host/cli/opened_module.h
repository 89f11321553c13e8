// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What every command that meets the effect begins with: the module's file found and loaded, and a session started.

#include <memory>
#include <optional>
#include <string>

#include "host/module/module.h"
#include "host/session/effect_session.h"
#include "host/session/renderer.h"

/// A session and the module that it needs to outlive it.
struct OpenedModule {
    std::unique_ptr<Module> module;
    std::optional<EffectSession> session;

    EffectSession& Session() { return *session; }
};

/// Loads the module that `option` names, or the one that is found without it, and starts a session.
Result<OpenedModule> OpenModule(const std::optional<std::string>& option, SessionOptions options = {});
