// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/opened_module.h"

#include "host/isolation/module_process.h"
#include "host/module/own_module.h"

#include <filesystem>
#include <utility>

namespace umbrant::host {

Result<OpenedModule> OpenModule(const std::optional<std::string>& option, SessionOptions options) {
    std::optional<std::filesystem::path> named;
    if (option) named = *option;
    if (options.renderer == UMBRANT_Renderer_ANY) {
        // Whoever minds what is wrong with the variable has asked before.
        const auto preference = ReadRendererPreference("");
        options.renderer = RendererOfSetUp(preference ? *preference : RendererPreference::kAuto);
    }
    const ModuleSearch search = DefaultModuleSearch(named);
    const auto file = TRY(FindModule(search));
    OpenedModule opened;
    opened.file = file;
    if (!IsOwnModule(file, search.folders)) {
        auto process = TRY(ModuleProcess::Start({file, std::move(options), {}}));
        opened.effect = (process)->Effect();
        opened.session.emplace(EffectSession::Over(std::move(process)));
        return opened;
    }
    auto loaded = TRY(Module::Load(file));
    opened.module = std::make_unique<Module>(std::move(loaded));
    opened.effect = opened.module->Effect();
    auto session = TRY(EffectSession::Start(*opened.module, std::move(options)));
    opened.session.emplace(std::move(session));
    return opened;
}

}  // namespace umbrant::host
