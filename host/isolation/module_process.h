// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A module and one session on it in a process of their own, so that nothing the module does to its process reaches this
// one: it may crash, call exit, change the working folder or overwrite memory. The process is a copy of the program; it
// has no file of ours open. Pixels go through shared memory, everything else through a socket.

#include <filesystem>
#include <memory>

#include "host/module/module.h"
#include "host/session/remote_session.h"

namespace umbrant::host {

/// What is run, and by which program.
struct ModuleProcessOptions {
    std::filesystem::path module;
    SessionOptions session{};         ///< without its functions and its log
    std::filesystem::path program{};  ///< empty for the running one
};

/// The session is that of EffectSession. When its process ends, the call that was under way, or the next one, fails
/// with one sentence that names the module, how its process ended and the command: `ErrorKind::kModule` while the
/// module was loaded, else `ErrorKind::kEffect`. The next frame after that is drawn in a new process.
class ModuleProcess : public RemoteSession {
 public:
    /// Starts the process, loads the module and sets the session up. Fails as Module::Load and EffectSession::Start do,
    /// with `ErrorKind::kInternal` when the process cannot be started, and as above.
    static Result<std::unique_ptr<ModuleProcess>> Start(const ModuleProcessOptions& options);

    virtual const Registration& Effect() const = 0;
    /// The process's number; 0 when there is none.
    virtual int Process() const = 0;
};

}  // namespace umbrant::host
