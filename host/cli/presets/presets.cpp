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
#include "host/cli/sheet/make_sheet.h"
#include "host/cli/sheet/preset_sheet.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr char kPresetsExamples[] =
    "  umbrant presets\n"
    "      the names for --preset, and the files behind them\n"
    "  umbrant render title.png -o shadow.png --preset long-faded\n"
    "      draws with one of them\n"
    "  umbrant params --json --values --set style/distance=80 > ~/.config/umbrant/presets/mine.json\n"
    "      adds one of your own; create the folder first\n"
    "  umbrant presets -o presets.png\n"
    "      a picture of all of them; `umbrant presets title.png -o presets.png` draws your layer";

struct PresetsOptions {
    bool json = false;
    RenderOptions render;  ///< of the sheet
    int cell = 240;
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

void AddSheetOptions(CLI::App& app, PresetsOptions& options) {
    RenderOptions& render = options.render;
    CLI::Option* output =
        app.add_option("-o,--output", render.output, "Draw all presets into an image instead: " + WritableFormats())
            ->check([](const std::string& file) { return file.empty() ? "'' names no file" : ""; });
    output->excludes("--json");
    app.add_option("INPUT", render.input, "The layer that the image shows (default: two letters)")->needs(output);
    app.add_option("--cell", options.cell, "The longest side of each preset's picture, in pixels")
        ->check(CLI::Range(kSmallestCell, kLargestCell))
        ->capture_default_str()
        ->needs(output)
        ->type_name("N");
    app.add_option("--texture", render.texture, "An image for presets with a texture")
        ->needs(output)
        ->type_name("IMAGE");
    app.add_option("--background", render.background,
                   "What is behind the pictures: a colour, an image, or a checkerboard (default: a grey)")
        ->check(WhyNoBackground)
        ->needs(output)
        ->type_name("COLOUR|IMAGE|checker");
    app.add_option("--renderer", render.renderer, "gl, cpu or auto, as of `umbrant render`")
        ->check(CLI::IsMember({"auto", "gl", "cpu"}))
        ->needs(output)
        ->type_name("auto|gl|cpu");
    app.add_option("--module", render.module,
                   "The effect's module (default: UMBRANT_MODULE, else the program's own module)")
        ->needs(output)
        ->type_name("FILE");
}

Result<ExitCode> Presets(const PresetsOptions& options) {
    const std::vector<NamedPreset> presets = TRY(NamedPresets());
    if (!options.render.output.empty()) {
        TRY(MakePresetSheet(presets, options.render, options.cell));
        PrintResult(options.render.output + "\n");
        return ExitCode::kDone;
    }
    PrintResult(options.json ? JsonText(presets) : Text(presets));
    return ExitCode::kDone;
}

}  // namespace

Command PresetsCommand() {
    const auto options = std::make_shared<PresetsOptions>();
    Command command;
    command.name = "presets";
    command.summary = "List the presets that --preset finds by name, or draw them all";
    command.examples = kPresetsExamples;
    command.options = [options](CLI::App& app) {
        app.add_flag("--json", options->json, "Print JSON: names, files, and whether a preset is your own");
        AddSheetOptions(app, *options);
    };
    command.run = [options] { return Presets(*options); };
    return command;
}

}  // namespace umbrant::host
