// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A module's file is loaded once in a process, however many effects are made of it, and set up once; a second time when
// OpenGL is requested after a set-up that loaded no driver. What belongs on one thread in a host (loading, set-up,
// set-down, panel commands) is kept apart in time here.

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/library/render_worker.h"
#include "host/module/module.h"
#include "host/process/fork_lock.h"
#include "host/session/effect_session.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// A module's file in this process.
struct LoadedModule {
    explicit LoadedModule(Module loaded) : module(std::move(loaded)) {}

    const Module module;  ///< stays where it is: the sessions refer to it
    /// Around every panel command, and around frames of an effect that takes one thread at a time.
    ForkLock mutex{ForkRank::kModule};
};

/// A set-up of a module: the instance that all others are made from. What may use OpenGL is done on threads of its own:
/// set-up, set-down and frames by OpenGL.
struct SharedModule {
    SharedModule(std::shared_ptr<LoadedModule> of, EffectSession session, UMBRANT_Renderer renderer)
        : loaded(std::move(of)), usesOpenGL(renderer != UMBRANT_Renderer_PROCESSOR), root(std::move(session)) {}
    ~SharedModule();
    SharedModule(const SharedModule&) = delete;
    SharedModule& operator=(const SharedModule&) = delete;

    const std::shared_ptr<LoadedModule> loaded;
    const bool usesOpenGL;
    EffectSession root;
    bool drawsOnThreads = false;
    RenderWorker worker;  ///< the last, so that its context goes before the module does
};

/// What an effect was asked to be made with.
struct SharedModuleRequest {
    std::string file;    ///< empty looks for one
    std::string advice;  ///< what to do when none is found; empty for a program's own way
    std::optional<RendererPreference> renderer;
    bool collapsed = false;
};

/// An instance of a shared module; ends its session, and the module with the last one.
class SharedInstance {
 public:
    /// Fails as FindModule, Module::Load, EffectSession::Start and ReadRendererPreference do.
    static Result<SharedInstance> Start(const SharedModuleRequest& request);
    ~SharedInstance();
    SharedInstance(SharedInstance&&) noexcept = default;
    SharedInstance& operator=(SharedInstance&&) = delete;

    /// Draws a frame: by OpenGL on the set-up's thread, otherwise on the calling one. Fails as EffectSession::Render
    /// and RenderWorker::Run do, and with `ErrorKind::kEffect` for OpenGL in a child of a process that has used it.
    Result<Frame> Render(const FrameRequest& request);

    SharedModule& Shared() const { return *shared_; }
    EffectSession& Session() { return *session_; }
    const RendererDecision& Renderer() const { return renderer_; }

 private:
    SharedInstance(std::shared_ptr<SharedModule> shared, EffectSession session, RendererDecision renderer)
        : shared_(std::move(shared)), session_(std::move(session)), renderer_(std::move(renderer)) {}
    std::shared_ptr<SharedModule> shared_;
    std::optional<EffectSession> session_;
    RendererDecision renderer_;
};

}  // namespace umbrant::host
