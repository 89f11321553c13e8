// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What every command that meets the effect begins with: the module's file found and loaded, a session started, and the
// rows that tell about the graphics processor.

#include <memory>
#include <optional>
#include <string>

#include "host/module/module.h"
#include "host/session/effect_session.h"

/// A session and the module that it needs to outlive it.
struct OpenedModule {
    std::unique_ptr<Module> module;
    std::optional<EffectSession> session;

    EffectSession& Session() { return *session; }
};

/// Loads the module that `option` names, or the one that is found without it, and starts a session.
Result<OpenedModule> OpenModule(const std::optional<std::string>& option, SessionOptions options = {});

/// The four rows in which the effect reports its OpenGL.
struct GpuStrings {
    std::string vendor;
    std::string renderer;
    std::string glVersion;
    std::string shaderVersion;

    /// False when the effect could not make a context: it then says "NULL" in all rows.
    bool HasContext() const;
};

GpuStrings ReadGpuStrings(const ParamSet& params);
