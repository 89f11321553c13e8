// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/shared_module.h"

#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include "host/process/fork_lock.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

/// The modules of the process. Everything else in it, and every set-up and set-down, happens under its mutex.
struct Registry {
    ForkLock mutex{ForkRank::kModules};
    struct SetUps {
        std::weak_ptr<SharedModule> any;            ///< OpenGL was asked for; the processor draws there too
        std::weak_ptr<SharedModule> processorOnly;  ///< no driver was loaded
    };
    std::map<fs::path, SetUps> loaded;
    std::atomic<pid_t> openGLUser = 0;  ///< the process that first began to use OpenGL; 0 for none. [any]

    /// Whether this process was forked from one that has used OpenGL, whose driver would wait here for threads that are
    /// not in this process. Also where all modules have been unloaded since: the driver stays.
    bool HasLostOpenGL() const { return openGLUser != 0 && openGLUser != getpid(); }
};

/// Lives to the process's very end: effects may be members of static objects.
Registry& TheRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}
[[maybe_unused]] const Registry& earlyRegistry = TheRegistry();  // before there are threads: see fork_lock.h

Result<fs::path> FileOf(const SharedModuleRequest& request) {
    const std::optional<fs::path> option = request.file.empty() ? std::nullopt : std::optional<fs::path>(request.file);
    ModuleSearch search = DefaultModuleSearch(option, ModuleSeeker::kLibrary);
    search.advice = request.advice.empty() ? "name one with EffectOptions::module or the environment variable "
                                             "UMBRANT_MODULE"
                                           : request.advice;
    return FindModule(search);
}

Failure LostOpenGL() {
    return {ErrorKind::kEffect,
            "OpenGL cannot be used: this process was forked from one that uses it. Fork before the first effect is "
            "created, start a new program, or use the CPU renderer"};
}

Result<EffectSession> StartSession(const Module& module, const SessionOptions& options) {
    if (options.renderer == UMBRANT_Renderer_PROCESSOR) return EffectSession::Start(module, options);
    std::optional<Result<EffectSession>> session;
    // A thread for this alone: the effect may turn out to be drawn by the processor.
    RenderWorker worker;
    TRY(worker.Run([&] { session.emplace(EffectSession::Start(module, options)); }));
    return std::move(*session);
}

Result<std::shared_ptr<SharedModule>> SetUp(const fs::path& file, const std::shared_ptr<SharedModule>& other,
                                            UMBRANT_Renderer renderer) {
    std::shared_ptr<LoadedModule> loaded = other ? other->loaded : nullptr;
    if (!loaded) {
        auto module = TRY(Module::Load(file));
        loaded = std::make_shared<LoadedModule>(std::move(module));
    }
    SessionOptions options;
    options.renderer = renderer;
    const std::lock_guard panelLock(loaded->mutex);
    auto session = TRY(StartSession(loaded->module, options));
    auto shared = std::make_shared<SharedModule>(loaded, std::move(session), renderer);
    shared->drawsOnThreads = (shared->root.OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING) != 0;
    return shared;
}

}  // namespace

SharedModule::~SharedModule() {
    // In a child that has lost OpenGL the effect leaves the driver alone, so `root` ends here, with its destructor.
    if (!usesOpenGL || TheRegistry().HasLostOpenGL()) return;
    worker.RunAnyhow([this] { static_cast<void>(root.End()); });
}

Result<SharedInstance> SharedInstance::Start(const SharedModuleRequest& request) {
    const auto file = TRY(FileOf(request));
    std::error_code error;
    const fs::path canonical = fs::canonical(file, error);
    const fs::path& key = error ? file : canonical;

    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    auto preference = request.renderer ? *request.renderer : TRY(ReadRendererPreference(""));
    if (preference == RendererPreference::kOpenGL && registry.HasLostOpenGL()) return LostOpenGL();
    const bool isSubstitute = preference == RendererPreference::kAuto && registry.HasLostOpenGL();
    if (isSubstitute) preference = RendererPreference::kProcessor;
    const UMBRANT_Renderer needed = RendererOfSetUp(preference);
    Registry::SetUps& setUps = registry.loaded[key];
    const std::shared_ptr<SharedModule> processorOnly = setUps.processorOnly.lock();
    std::shared_ptr<SharedModule> shared = setUps.any.lock();
    if (!shared && needed == UMBRANT_Renderer_PROCESSOR) shared = processorOnly;
    if (!shared) {
        if (needed != UMBRANT_Renderer_PROCESSOR) registry.openGLUser = getpid();
        auto made = TRY(SetUp(file, processorOnly, needed));
        shared = std::move(made);
        (needed == UMBRANT_Renderer_PROCESSOR ? setUps.processorOnly : setUps.any) = shared;
    }
    RendererDecision renderer = DecideRenderer(preference, ReadGpuStrings(shared->root.Params()));
    if (isSubstitute) renderer.why = "OpenGL cannot be used in a forked process";

    SessionOptions options;
    if (request.collapsed) options.layerFlags |= AEGP_LayerFlag_COLLAPSE;
    const std::lock_guard panelLock(shared->loaded->mutex);
    auto session = TRY(EffectSession::StartInstance(shared->root, options));
    session.SetRenderer(renderer.Request());
    return SharedInstance(shared, std::move(session), std::move(renderer));
}

Result<Frame> SharedInstance::Render(const FrameRequest& request) {
    if (renderer_.processor) return session_->Render(request);
    if (TheRegistry().HasLostOpenGL()) return LostOpenGL();
    std::optional<Result<Frame>> frame;
    TRY(shared_->worker.Run([&] { frame.emplace(session_->Render(request)); }));
    return std::move(*frame);
}

SharedInstance::~SharedInstance() {
    if (!shared_) return;
    const std::lock_guard lock(TheRegistry().mutex);
    // Kept to the end of the scope: its lock is held while the last session's set-down runs.
    const std::shared_ptr<LoadedModule> loaded = shared_->loaded;
    const std::lock_guard panelLock(loaded->mutex);
    session_.reset();
    shared_.reset();
}

}  // namespace umbrant::host
