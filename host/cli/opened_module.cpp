// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/opened_module.h"

#include <filesystem>
#include <string_view>
#include <utility>

namespace {

/// The whole text of the popup with this name; a bar in the text had made several items of it.
std::string RowText(const ParamSet& params, std::string_view name) {
    for (const ParamRow& row : params.Rows()) {
        if (row.def.param_type != PF_Param_POPUP || row.name != name) continue;
        std::string text;
        for (std::size_t i = 0; i < row.items.size(); ++i) text += (i == 0 ? "" : "|") + row.items[i];
        return text;
    }
    return "";
}

}  // namespace

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

bool GpuStrings::HasContext() const {
    return glVersion != "NULL";
}

GpuStrings ReadGpuStrings(const ParamSet& params) {
    return {RowText(params, "Vendor"), RowText(params, "Renderer"), RowText(params, "OpenGL Version"),
            RowText(params, "Shader Version")};
}
