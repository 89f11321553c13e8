// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant params`: every row that the module declares, as a table or sentences for people, or as JSON.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/animation/value_json.h"
#include "host/cli/command.h"
#include "host/cli/opened_module.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/results.h"
#include "host/cli/settings.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/param_path.h"
#include "host/parameters/parameter_description.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

struct ParamsOptions {
    std::string module;
    bool json = false;
    bool values = false;
    bool all = false;
    bool helpText = false;
    std::string preset;
    std::vector<std::string> settings;
};

struct FlagName {
    A_long bit;
    const char* name;
};

constexpr FlagName kFlags[] = {
    {PF_ParamFlag_CANNOT_TIME_VARY, "cannot-time-vary"},
    {PF_ParamFlag_CANNOT_INTERP, "cannot-interpolate"},
    {PF_ParamFlag_START_COLLAPSED, "collapsed"},
    {PF_ParamFlag_SUPERVISE, "supervised"},
    {PF_ParamFlag_USE_VALUE_FOR_OLD_PROJECTS, "value-for-old-projects"},
    {PF_ParamFlag_EXCLUDE_FROM_HAVE_INPUTS_CHANGED, "not-an-input"},
    {PF_ParamFlag_SKIP_REVEAL_WHEN_UNHIDDEN, "skip-reveal"},
};

constexpr FlagName kUiFlags[] = {
    {PF_PUI_TOPIC, "own-topic"},           {PF_PUI_CONTROL, "own-control"},     {PF_PUI_STD_CONTROL_ONLY, "unstored"},
    {PF_PUI_NO_ECW_UI, "not-in-panel"},    {PF_PUI_ECW_SEPARATOR, "separator"}, {PF_PUI_DISABLED, "disabled"},
    {PF_PUI_RADIO_BUTTON, "radio-button"}, {PF_PUI_INVISIBLE, "invisible"},
};

std::vector<std::string> FlagNames(const ParamRow& row) {
    std::vector<std::string> names;
    for (const FlagName& flag : kFlags) {
        if (row.def.flags & flag.bit) names.emplace_back(flag.name);
    }
    for (const FlagName& flag : kUiFlags) {
        if (row.def.ui_flags & flag.bit) names.emplace_back(flag.name);
    }
    return names;
}

/// A number of a row's range; those of floats with as many digits as a float has.
std::string RangeText(const PF_ParamDef& def, double value) {
    return KindOf(def) == ParamKind::kFloat ? fmt::format("{}", static_cast<float>(value)) : fmt::format("{}", value);
}

Json Describe(const ParamSet& params, const ParamRow& row) {
    Json json{{"index", row.index},
              {"id", row.def.uu.id},
              {"path", row.path},
              {"name", row.name},
              {"type", ParamTypeName(row.def.param_type)},
              {"depth", row.depth}};
    if (const auto range = SliderRange(row.def)) {
        const auto number = [&](double value) { return Json::parse(RangeText(row.def, value)); };
        json["min"] = number(range->validMin);
        json["max"] = number(range->validMax);
        json["sliderMin"] = number(range->sliderMin);
        json["sliderMax"] = number(range->sliderMax);
    }
    if (KindOf(row.def) == ParamKind::kFloat) json["precision"] = *Precision(row.def);
    if (IsPercent(row.def)) json["unit"] = "percent";
    if (HasValue(KindOf(row.def))) json["default"] = ValueJson(row, params.DefaultText(row.index));
    if (KindOf(row.def) == ParamKind::kPopup) {
        json["items"] = row.items;
        json["defaultIndex"] = row.def.u.pd.dephault;
    }
    if (!row.label.empty()) json["label"] = row.label;
    if (const auto description = DescriptionOf(row.path); !description.empty()) json["description"] = description;
    json["flags"] = FlagNames(row);
    json["flagBits"] = row.def.flags;
    json["uiFlagBits"] = row.def.ui_flags;
    return json;
}

/// What may be written after the equals sign.
std::string Accepted(const ParamRow& row) {
    if (const auto range = SliderRange(row.def)) {
        return fmt::format("{} to {}{}", RangeText(row.def, range->validMin), RangeText(row.def, range->validMax),
                           IsPercent(row.def) ? " %" : "");
    }
    switch (KindOf(row.def)) {
        case ParamKind::kAngle:
            return "degrees";
        case ParamKind::kPoint:
            return "x,y in pixels";
        case ParamKind::kColor:
            return "#rrggbb";
        case ParamKind::kCheckBox:
            return "on, off";
        case ParamKind::kLayer:
            return row.index == 0 ? "INPUT" : "--texture";
        case ParamKind::kButton:
            return fmt::format("[{}]", row.label);
        default:
            return "";
    }
}

std::string JoinedFlags(const ParamRow& row) {
    std::string text;
    for (const std::string& name : FlagNames(row)) text += (text.empty() ? "" : ", ") + name;
    return text;
}

/// The items of a popup as they are typed, on a separate line; separators keep their number and are left out.
std::string ItemsLine(const ParamRow& row) {
    std::string line;
    for (std::size_t i = 0; i < row.items.size(); ++i) {
        if (row.items[i].starts_with("(-")) continue;
        line += fmt::format("{}{} {}", line.empty() ? "" : ", ", i + 1, PathForm(row.items[i]));
    }
    return line;
}

/// A popup with a single item has nothing to choose: it only shows its text, which is printed unchanged.
bool IsReadout(const ParamRow& row) {
    return KindOf(row.def) == ParamKind::kPopup && row.items.size() == 1;
}

constexpr std::size_t kColumns = 6;
using Cells = std::array<std::string, kColumns>;

Cells CellsOf(const ParamSet& params, const ParamRow& row) {
    return {std::to_string(row.index),
            row.path.empty() ? fmt::format("#{}", row.index) : row.path,
            ParamTypeName(row.def.param_type),
            IsReadout(row) ? row.items.front() : Accepted(row),
            IsReadout(row) ? "" : params.DefaultText(row.index),
            JoinedFlags(row)};
}

/// Whether people have no use for the row: it is there to look into the effect.
bool IsForDevelopers(const ParamRow& row) {
    return row.path == "debug" || row.path.starts_with("debug/");
}

std::string Text(const ParamSet& params, bool all) {
    std::vector<Cells> lines = {{"#", "PATH", "TYPE", "VALUES", "DEFAULT", "FLAGS"}};
    std::vector<std::string> itemLines = {""};
    std::array<std::size_t, kColumns> widths{};
    for (const ParamRow& row : params.Rows()) {
        if (KindOf(row.def) == ParamKind::kGroupEnd || (!all && IsForDevelopers(row))) continue;
        lines.push_back(CellsOf(params, row));
        itemLines.push_back(KindOf(row.def) == ParamKind::kPopup && !IsReadout(row) ? ItemsLine(row) : "");
        for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], lines.back()[i].size());
    }
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string line;
        for (std::size_t column = 0; column < kColumns; ++column) {
            line += fmt::format("{:<{}}  ", lines[i][column], widths[column]);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
        if (!itemLines[i].empty())
            text += std::string(widths[0] + widths[1] + widths[2] + 6, ' ') + itemLines[i] + "\n";
    }
    return text;
}

constexpr std::size_t kTextWidth = 80;  // characters

/// A text in lines of at most kTextWidth characters, each after `indent`.
std::string Wrapped(std::string_view text, std::string_view indent) {
    std::string wrapped;
    while (!text.empty()) {
        std::size_t end = text.size();
        if (indent.size() + end > kTextWidth) end = text.rfind(' ', kTextWidth - indent.size());
        wrapped += fmt::format("{}{}\n", indent, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return wrapped;
}

/// What each row does: its path and its sentences beneath.
std::string HelpText(const ParamSet& params, bool all) {
    std::string text;
    for (const ParamRow& row : params.Rows()) {
        const std::string_view description = DescriptionOf(row.path);
        if (description.empty() || (!all && IsForDevelopers(row))) continue;
        text += fmt::format("{}{}\n{}", text.empty() ? "" : "\n", row.path, Wrapped(description, "    "));
    }
    return text;
}

Result<ExitCode> Params(const ParamsOptions& options) {
    auto opened = TRY(OpenModule(options.module.empty() ? std::nullopt : std::optional(options.module)));
    AnimatedParams animated{opened.Session().Params(), {}};
    TRY(ApplyValues(options.preset, options.settings, animated));
    const ParamSet& params = animated.values;
    std::string text;
    if (options.values) {
        text = PresetText(animated);
    } else if (options.json) {
        Json rows = Json::array();
        for (const ParamRow& row : params.Rows()) rows.push_back(Describe(params, row));
        text = rows.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    } else if (options.helpText) {
        text = HelpText(params, options.all);
    } else {
        text = Text(params, options.all);
    }
    TRY(opened.Session().End());
    PrintResult(text);
    return ExitCode::kDone;
}

}  // namespace

Command ParamsCommand() {
    const auto options = std::make_shared<ParamsOptions>();
    Command command;
    command.name = "params";
    command.summary = "List every parameter: path, type, values, default, flags";
    command.examples =
        "  umbrant params\n"
        "  umbrant params --help-text\n"
        "      what each parameter does to the picture\n"
        "  umbrant params --json | jq '.[] | select(.type == \"popup\") | .path'\n"
        "  umbrant params --json --values --set style/distance=80 > long.json\n"
        "      a preset, for `umbrant render --preset long.json`";
    command.options = [options](CLI::App& app) {
        app.add_option("--module", options->module, "The effect's module")->type_name("FILE");
        app.add_flag("--all", options->all, "Also list the rows of the group 'debug', which --json always lists");
        CLI::Option* helpText =
            app.add_flag("--help-text", options->helpText, "Print what each parameter does to the picture");
        CLI::Option* json =
            app.add_flag("--json", options->json, "Print JSON, including the ends of groups")->excludes(helpText);
        CLI::Option* values =
            app.add_flag("--values", options->values, "Print only the values, as a preset for `render --preset`")
                ->needs(json);
        app.add_option("--preset", options->preset, "With --values: a preset to start from")
            ->type_name("NAME|FILE.json")
            ->needs(values);
        app.add_option("--set", options->settings, "With --values: a parameter's value; may be given many times")
            ->type_name("PATH=VALUE")
            ->allow_extra_args(false)
            ->needs(values);
    };
    command.run = [options]() -> Result<ExitCode> {
        options->preset = TRY(PresetFile(options->preset));
        return Params(*options);
    };
    return command;
}

}  // namespace umbrant::host
