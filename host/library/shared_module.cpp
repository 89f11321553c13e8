// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/shared_module.h"

#include <fmt/format.h>

#include <filesystem>
#include <map>
#include <system_error>
#include <utility>

#include "host/compositing/fork_lock.h"

namespace {

namespace fs = std::filesystem;

/// The modules of the process. Everything in it, and every set-up and set-down, happens under its mutex.
struct Registry {
    ForkLock mutex{ForkRank::kModules};
    std::map<fs::path, std::weak_ptr<SharedModule>> loaded;
};

/// Lives to the process's very end: effects may be members of static objects.
Registry& TheRegistry() {
    static Registry& registry = *new Registry;
    return registry;
}

Result<fs::path> FileOf(const SharedModuleRequest& request) {
    const std::optional<fs::path> option = request.file.empty() ? std::nullopt : std::optional<fs::path>(request.file);
    ModuleSearch search = DefaultModuleSearch(option, ModuleSeeker::kLibrary);
    search.advice = request.advice.empty() ? "name one with EffectOptions::module or the environment variable "
                                             "UMBRANT_MODULE"
                                           : request.advice;
    return FindModule(search);
}

Result<std::shared_ptr<SharedModule>> Load(const fs::path& file) {
    auto loaded = Module::Load(file);
    if (!loaded) return loaded.Error();
    auto module = std::make_unique<const Module>(std::move(*loaded));
    auto session = EffectSession::Start(*module);
    if (!session) return session.Error();
    auto shared = std::make_shared<SharedModule>(std::move(module), std::move(*session));
    shared->drawsOnThreads = (shared->root.OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING) != 0;
    return shared;
}

}  // namespace

Result<SharedInstance> SharedInstance::Start(const SharedModuleRequest& request) {
    const auto file = FileOf(request);
    if (!file) return file.Error();
    std::error_code error;
    const fs::path canonical = fs::canonical(*file, error);
    const fs::path& key = error ? *file : canonical;

    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    std::shared_ptr<SharedModule> shared = registry.loaded[key].lock();
    if (!shared) {
        auto loaded = Load(*file);
        if (!loaded) return loaded.Error();
        shared = std::move(*loaded);
        registry.loaded[key] = shared;
    }
    const auto wish = request.renderer ? Result<RendererWish>(*request.renderer) : ReadRendererWish("");
    if (!wish) return wish.Error();
    RendererDecision renderer = DecideRenderer(*wish, ReadGpuStrings(shared->root.Params()));

    SessionOptions options;
    if (request.collapsed) options.layerFlags |= AEGP_LayerFlag_COLLAPSE;
    const std::lock_guard panelLock(shared->mutex);
    auto session = EffectSession::StartInstance(shared->root, options);
    if (!session) return session.Error();
    session->SetRenderer(renderer.Request());
    return SharedInstance(shared, std::move(*session), std::move(renderer));
}

SharedInstance::~SharedInstance() {
    if (!shared_) return;
    const std::lock_guard lock(TheRegistry().mutex);
    {
        const std::lock_guard panelLock(shared_->mutex);
        session_.reset();
    }
    shared_.reset();
}
