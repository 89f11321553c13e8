// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant panel`: the effect's panel as a picture, its rows for programs, and its buttons.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/option_checks.h"
#include "host/cli/output_folder.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/results.h"
#include "host/cli/settings.h"
#include "host/image/picture.h"
#include "host/panel/panel_picture.h"
#include "host/panel/panel_rows.h"
#include "host/process/interruption.h"
#include "host/render/plan/frame_limits.h"
#include "host/render/plan/frame_numbers.h"
#include "host/render/plan/output_check.h"

namespace umbrant::host {

namespace {

constexpr char kPanelExamples[] =
    "  umbrant panel -o panel.png\n"
    "      the panel in its initial state\n"
    "  umbrant panel -o panel.png --set style/shadow-type=radial --open all --scale 2 --theme light\n"
    "      every row of a radial shadow, at double size\n"
    "  umbrant panel -o panel.png --open about-support --close style --width 420\n"
    "      groups opened and closed; rows are named as in --set, or by '#index'\n"
    "  umbrant panel --press about-support/product-page\n"
    "      presses a button, named by its group and label, its label alone, its path, or '#3'\n"
    "  umbrant panel --json --set style/shadow-type=inner\n"
    "      the visible rows, for programs\n"
    "  umbrant panel -o panel.png --preset moving.json --time 1.5\n"
    "      the values of a preset, with its keyframes at 1.5 seconds";

struct PanelOptions {
    std::string output;
    std::string preset;
    double seconds = 0;
    std::string rate = "24";
    int zeroFrame = 0;
    std::vector<std::string> settings;
    std::vector<std::string> opened;
    std::vector<std::string> closed;
    std::string press;
    int width = PanelMetrics::kUsualWidth;
    int scale = 1;
    std::string theme = "dark";
    bool json = false;
    std::string module;
};

const char* ControlName(PanelControl control) {
    switch (control) {
        case PanelControl::kGroup:
            return "group";
        case PanelControl::kHeading:
            return "heading";
        case PanelControl::kSpacer:
            return "spacer";
        case PanelControl::kSlider:
            return "slider";
        case PanelControl::kAngle:
            return "angle";
        case PanelControl::kPopup:
            return "popup";
        case PanelControl::kLayer:
            return "layer";
        case PanelControl::kPoint:
            return "point";
        case PanelControl::kColor:
            return "colour";
        case PanelControl::kButton:
            return "button";
        case PanelControl::kCheckBox:
            return "check box";
        case PanelControl::kOwn:
            return "own";
        case PanelControl::kNothing:
            break;
    }
    return "nothing";
}

std::string ItemsJson(const std::vector<PanelItem>& items) {
    auto rows = nlohmann::ordered_json::array();
    for (const PanelItem& item : items) {
        nlohmann::ordered_json row = {{"index", item.index}, {"control", ControlName(item.control)},
                                      {"name", item.name},   {"value", item.value},
                                      {"depth", item.depth}, {"disabled", item.disabled},
                                      {"top", item.top},     {"height", item.height}};
        if (item.twirl) row["open"] = item.open;
        rows.push_back(std::move(row));
    }
    return rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

Result<Done> Press(EffectSession& session, const std::string& name) {
    const auto button = TRY(FindButton(session, name));
    {
        // The effect may start a program that outlives this one, a browser for an address.
        const SignalsOfTheStart signals;
        if (auto pressed = session.UserChangedParam(button); !pressed) return pressed;
    }
    std::fputs(fmt::format("pressed '{}'\n", session.Params().Row(button).label).c_str(), stderr);
    return Done{};
}

Result<Done> WritePanel(EffectSession& session, const OpenedModule& opened, const PanelOptions& options) {
    PanelPictureOptions drawing;
    drawing.width = options.width;
    drawing.scale = options.scale;
    drawing.theme = options.theme == "light" ? &kLightTheme : &kDarkTheme;
    drawing.effectName = opened.effect.name;
    const auto picture = TRY(DrawPanel(session, drawing));
    const World& pixels = picture.pixels;
    const Placement place{{0, 0, pixels.Width(), pixels.Height()}, pixels.Width(), pixels.Height()};
    if (auto written = WritePicture(options.output, pixels, place); !written) return written;
    PrintResult(options.output + "\n");
    return Done{};
}

/// Applies the preset and the settings, with keyframes at the chosen time.
Result<Done> SetValues(const PanelOptions& options, EffectSession& session) {
    const auto rate = TRY(ParseRate(options.rate));
    AnimatedParams params{session.Params(), {}};
    if (auto set = ApplyValues(options.preset, options.settings, params); !set) return set;
    const AnimationClock clock{rate.PerSecond(), static_cast<double>(options.zeroFrame)};
    session.Params() = params.animation.ValuesAt(params.values, clock.FrameOf(options.seconds), clock);
    return Done{};
}

Result<ExitCode> Panel(const PanelOptions& options) {
    if (options.output.empty() && options.press.empty() && !options.json) {
        return Failure{ErrorKind::kUsage, "nothing to do; use -o FILE, --json or --press BUTTON"};
    }
    if (!options.output.empty()) {
        TRY(CheckWritable(options.output));
        if (!options.preset.empty()) {
            TRY(CheckApart(options.preset, options.output));
        }
        CleanFolderOf(options.output);
    }
    auto opened = TRY(OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module)));
    EffectSession& session = opened.Session();
    TRY(SetValues(options, session));
    TRY(session.UpdateParamsUI());
    for (const std::string& name : options.opened) {
        TRY(Twirl(session, name, true));
    }
    for (const std::string& name : options.closed) {
        TRY(Twirl(session, name, false));
    }
    if (!options.press.empty()) {
        TRY(Press(session, options.press));
    }
    if (options.json) PrintResult(ItemsJson(PanelItems(session, options.width)));
    if (!options.output.empty()) {
        TRY(WritePanel(session, opened, options));
    }
    TRY(session.End());
    return ExitCode::kDone;
}

}  // namespace

Command PanelCommand() {
    const auto options = std::make_shared<PanelOptions>();
    Command command;
    command.name = "panel";
    command.summary = "Draw the effect's panel as an image, list its visible rows, or press one of its buttons";
    command.examples = kPanelExamples;
    command.options = [options](CLI::App& app) {
        app.add_option("-o,--output", options->output, "The image to write: " + WritableFormats());
        CLI::Option* preset =
            app.add_option("--preset", options->preset, "Values and keyframes from a preset; --set overrides them")
                ->type_name("NAME|FILE.json");
        app.add_option("--time", options->seconds, "The time at which keyframes are shown")
            ->check([](const std::string& text) { return OutOfRange(text, 0.0, kLongestTime); })
            ->needs(preset)
            ->type_name("SECONDS");
        app.add_option("--rate", options->rate, "Frames per second, for keyframes whose times are frames")
            ->capture_default_str()
            ->needs(preset)
            ->type_name("RATE");
        app.add_option("--zero-frame", options->zeroFrame, "The frame at time 0, for keyframes whose times are frames")
            ->check(CLI::Range(-kFarthestFrame, kFarthestFrame))
            ->capture_default_str()
            ->needs(preset)
            ->type_name("FRAME");
        app.add_option("--set", options->settings, "A parameter's value; may be given many times")
            ->type_name("PATH=VALUE")
            ->allow_extra_args(false);
        app.add_option("--open", options->opened, "Open a group, slider or angle, or 'all'")
            ->type_name("ROW")
            ->allow_extra_args(false);
        app.add_option("--close", options->closed, "Close a group, slider or angle, or 'all'; applied after --open")
            ->type_name("ROW")
            ->allow_extra_args(false);
        app.add_option("--press", options->press, "A button to press: its label, its path or '#index'")
            ->type_name("BUTTON");
        app.add_option("--width", options->width, "Width of the panel in pixels, before --scale")
            ->check(CLI::Range(PanelMetrics::kLeastWidth, PanelMetrics::kMostWidth))
            ->capture_default_str()
            ->type_name("N");
        app.add_option("--scale", options->scale, "Pixels of the image per pixel of the panel")
            ->check(CLI::Range(1, 4))
            ->capture_default_str()
            ->type_name("1..4");
        app.add_option("--theme", options->theme, "The colours of the panel")
            ->check(CLI::IsMember({"dark", "light"}))
            ->capture_default_str()
            ->type_name("dark|light");
        app.add_flag("--json", options->json, "Print JSON: the visible rows");
        app.add_option("--module", options->module,
                       "The effect's module (default: UMBRANT_MODULE, else the program's own module)")
            ->type_name("FILE");
    };
    command.run = [options]() -> Result<ExitCode> {
        options->preset = TRY(PresetFile(options->preset));
        return Panel(*options);
    };
    return command;
}

}  // namespace umbrant::host
