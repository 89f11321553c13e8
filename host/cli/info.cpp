// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant info`: the module's identity and its renderer.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/program_version.h"
#include "host/cli/results.h"
#include "host/session/renderer.h"

namespace umbrant::host {

namespace {

struct InfoOptions {
    std::string module;
    bool json = false;
};

/// "eFKT" from the number whose bytes it is.
std::string FourCharacters(A_long code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift & 255);
    return text;
}

std::string WithoutFinalBreaks(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

nlohmann::ordered_json Describe(const OpenedModule& opened, const std::string& about, RendererPreference preference) {
    const Registration& effect = opened.effect;
    const EffectSession& session = *opened.session;
    const GpuStrings gpu = ReadGpuStrings(session.Params());
    const RendererDecision renderer = DecideRenderer(preference, gpu);
    return {
        {"module", opened.file.string()},
        {"name", effect.name},
        {"matchName", effect.matchName},
        {"category", effect.category},
        {"version", EffectVersionText(session.EffectVersion())},
        {"entryPoint", effect.entryPoint},
        {"kind", FourCharacters(effect.kind)},
        {"apiVersion", fmt::format("{}.{}", effect.apiMajor, effect.apiMinor)},
        {"outFlags", fmt::format("{:#010x}", static_cast<A_u_long>(session.OutFlags()))},
        {"outFlags2", fmt::format("{:#010x}", static_cast<A_u_long>(session.OutFlags2()))},
        {"about", about},
        {"renderer", {{"used", renderer.Name()}, {"why", renderer.why}}},
        {"gpu",
         {{"vendor", gpu.vendor},
          {"renderer", gpu.renderer},
          {"openglVersion", gpu.glVersion},
          {"shaderVersion", gpu.shaderVersion}}},
        {"host", {{"version", ProgramVersion()}, {"apiVersion", "13.28"}}},
    };
}

std::string Text(const nlohmann::ordered_json& info) {
    const auto get = [&info](const char* key) { return info[key].get<std::string>(); };
    const auto gpu = [&info](const char* key) { return info["gpu"][key].get<std::string>(); };
    std::string text;
    const auto line = [&text](const char* label, const std::string& value) {
        text += fmt::format("{:<16} {}\n", label, value.empty() ? "not declared by the effect" : value);
    };
    line("Effect", fmt::format("{} {}", get("name"), get("version")));
    line("Match name", get("matchName"));
    line("Category", get("category"));
    line("Module", get("module"));
    line("Interface", fmt::format("{} {}, entry {}", get("kind"), get("apiVersion"), get("entryPoint")));
    line("Flags", fmt::format("{} {}", get("outFlags"), get("outFlags2")));
    line("Vendor", gpu("vendor"));
    line("Renderer", gpu("renderer"));
    line("OpenGL Version", gpu("openglVersion"));
    line("Shader Version", gpu("shaderVersion"));
    line("Drawn by", fmt::format("{}: {}", info["renderer"]["used"] == "cpu" ? "the CPU renderer" : "the GPU renderer",
                                 info["renderer"]["why"].get<std::string>()));
    line("Host", fmt::format("umbrant {}, interface {}", info["host"]["version"].get<std::string>(),
                             info["host"]["apiVersion"].get<std::string>()));
    const std::string about = WithoutFinalBreaks(get("about"));
    return text + "\n" + (about.empty() ? "the effect has no about text" : about) + "\n";
}

Result<ExitCode> Info(const InfoOptions& options) {
    const auto preference = TRY(ReadRendererPreference(""));
    auto opened = TRY(OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module)));
    const auto about = TRY(opened.Session().About());
    const auto info = Describe(opened, about, preference);
    TRY(opened.Session().End());
    const std::string text =
        options.json ? info.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n" : Text(info);
    PrintResult(text);
    return ExitCode::kDone;
}

}  // namespace

Command InfoCommand() {
    const auto options = std::make_shared<InfoOptions>();
    Command command;
    command.name = "info";
    command.summary = "Show the module's identity and about text, the GPU, and the renderer that draws";
    command.examples =
        "  umbrant info\n"
        "  umbrant info --json --module build/release/umbrant2.so";
    command.options = [options](CLI::App& app) {
        app.add_option("--module", options->module, "The effect's module")->type_name("FILE");
        app.add_flag("--json", options->json, "Print JSON");
    };
    command.run = [options] { return Info(*options); };
    return command;
}

}  // namespace umbrant::host
