// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/opened_module.h"

#include <filesystem>
#include <utility>

Result<OpenedModule> OpenModule(const std::optional<std::string>& option, SessionOptions options) {
    std::optional<std::filesystem::path> named;
    if (option) named = *option;
    const auto file = FindModule(named);
    if (!file) return file.Error();
    auto loaded = Module::Load(*file);
    if (!loaded) return loaded.Error();
    OpenedModule opened;
    opened.module = std::make_unique<Module>(std::move(*loaded));
    auto session = EffectSession::Start(*opened.module, std::move(options));
    if (!session) return session.Error();
    opened.session.emplace(std::move(*session));
    return opened;
}
