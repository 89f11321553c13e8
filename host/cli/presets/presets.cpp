// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant presets`: the presets that `--preset NAME` finds.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>

#include "host/cli/command.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/results.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr char kExamples[] =
    "  umbrant presets\n"
    "      the names for --preset, and the files behind them\n"
    "  umbrant render title.png -o shadow.png --preset long-faded\n"
    "      draws with one of them\n"
    "  umbrant params --json --values --set style/distance=80 > ~/.config/umbrant/presets/mine.json\n"
    "      adds one of your own; create the folder first";

struct PresetsOptions {
    bool json = false;
};

std::string Text(const std::vector<NamedPreset>& presets) {
    std::size_t width = 0;
    for (const NamedPreset& preset : presets) width = std::max(width, preset.name.size());
    std::string text;
    for (const NamedPreset& preset : presets) {
        text += fmt::format("{:<{}}  {}\n", preset.name, width, preset.file.string());
    }
    return text;
}

std::string JsonText(const std::vector<NamedPreset>& presets) {
    Json list = Json::array();
    for (const NamedPreset& preset : presets) {
        list.push_back({{"name", preset.name}, {"file", preset.file.string()}, {"isYours", preset.isUsers}});
    }
    return list.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Result<ExitCode> Presets(const PresetsOptions& options) {
    const std::vector<NamedPreset> presets = TRY(NamedPresets());
    PrintResult(options.json ? JsonText(presets) : Text(presets));
    return ExitCode::kDone;
}

}  // namespace

Command PresetsCommand() {
    const auto options = std::make_shared<PresetsOptions>();
    Command command;
    command.name = "presets";
    command.summary = "List the presets that --preset finds by name";
    command.examples = kExamples;
    command.options = [options](CLI::App& app) {
        app.add_flag("--json", options->json, "Print JSON: names, files, and whether a preset is your own");
    };
    command.run = [options] { return Presets(*options); };
    return command;
}

}  // namespace umbrant::host
