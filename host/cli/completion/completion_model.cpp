// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The command line and the parameters, as completion needs them.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>

#include "host/cli/completion/completion.h"
#include "host/cli/presets/named_presets.h"
#include "host/color/own_config.h"
#include "host/image/exr/compression_names.h"
#include "host/parameters/param_kind.h"
#include "host/parameters/param_path.h"
#include "host/video/clip_format.h"

namespace umbrant::host {

namespace {

using Kind = CompletionValue::Kind;

bool IsWord(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
        return std::islower(c) || std::isdigit(c) || c == '-' || c == '.';
    });
}

std::vector<std::string> Split(const std::string& text, char at) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t next = 0; next != std::string::npos; start = next + 1) {
        next = text.find(at, start);
        parts.push_back(text.substr(start, next == std::string::npos ? next : next - start));
    }
    return parts;
}

/// The choices of "grow|layer:{grow,layer}", "{text,json}" and "bar|lines|json|SECONDS"; none for other types.
std::vector<std::string> ChoicesOf(const std::string& type) {
    const std::size_t open = type.find('{'), close = type.find('}');
    std::vector<std::string> words;
    if (open != std::string::npos && close != std::string::npos && open < close) {
        words = Split(type.substr(open + 1, close - open - 1), ',');
    } else if (type.find('|') != std::string::npos) {
        words = Split(type.substr(0, type.find(':')), '|');
    }
    std::erase_if(words, [](const std::string& word) { return !IsWord(word); });
    return words;
}

std::vector<std::string> PresetNames() {
    std::vector<std::string> names;
    // A folder that cannot be read is a matter for the command itself.
    if (const auto presets = NamedPresets()) {
        for (const NamedPreset& preset : *presets) names.push_back(preset.name);
    }
    return names;
}

/// Those of the program's own; none where a configuration of the user's replaces them.
std::vector<std::string> ColorSpaceNames() {
    const char* configuration = std::getenv("OCIO");
    if (configuration && *configuration) return {};
    return {kSrgbSpace, kLinearSpace, kGammaSpace, kAcesSpace};
}

/// What the help calls a value: its type up to the checks.
std::string ShownType(const std::string& type) {
    return type.substr(0, type.find(':'));
}

CompletionValue ValueOf(const CLI::Option& option) {
    CompletionValue value;
    if (option.get_items_expected_max() == 0) return value;
    const std::string type = option.get_type_name();
    const std::string shown = ShownType(type);
    value.choices = ChoicesOf(type);
    // Their values depend on the file that is written, so no check names them.
    if (option.check_lname("codec")) value.choices = Split(ClipCodecNames(), ' ');
    if (option.check_lname("compression")) value.choices = CompressionNames();
    for (std::string& word : value.choices) std::erase(word, ',');
    if (shown == "SPACE") value.choices = ColorSpaceNames();
    if (option.check_lname("preset")) {
        value.kind = Kind::kFile;
        value.choices = PresetNames();
        return value;
    }
    if (option.check_lname("background")) {
        value.kind = Kind::kFile;
        return value;
    }
    const auto begins = [&](const char* text) { return shown.rfind(text, 0) == 0; };
    if (!value.choices.empty()) {
        value.kind = Kind::kChoices;
    } else if (shown == "PATH=VALUE" || shown == "PATH=VALUE,...") {
        value.kind = Kind::kSetting;
    } else if (shown == "ROW") {
        value.kind = Kind::kRow;
    } else if (option.get_positional() || begins("FILE") || begins("IMAGE") || begins("FOLDER") ||
               option.check_lname("output")) {
        value.kind = Kind::kFile;
    } else {
        value.kind = Kind::kText;
    }
    return value;
}

CompletionOption Describe(const CLI::Option& option) {
    CompletionOption described;
    for (const std::string& name : option.get_snames()) described.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) described.names.push_back("--" + name);
    described.summary = option.get_description();
    described.value = ValueOf(option);
    described.mayRepeat = option.get_items_expected_max() > 1;
    return described;
}

CompletionNode Describe(const CLI::App& app) {
    CompletionNode node;
    node.name = app.get_name();
    node.summary = app.get_description();
    for (const CLI::Option* option : app.get_options()) {
        if (option->get_positional()) {
            node.arguments.push_back(ValueOf(*option));
        } else {
            node.options.push_back(Describe(*option));
        }
    }
    for (const CLI::App* below : app.get_subcommands([](const CLI::App* each) { return !each->get_name().empty(); })) {
        node.commands.push_back(Describe(*below));
    }
    return node;
}

}  // namespace

CompletionNode DescribeCommands(const CLI::App& app) {
    CompletionNode program = Describe(app);
    const auto render = std::find_if(program.commands.begin(), program.commands.end(),
                                     [](const CompletionNode& node) { return node.name == "render"; });
    if (render == program.commands.end()) return program;
    const CompletionNode follows = *render;
    for (CompletionNode& command : program.commands) {
        if (!app.get_subcommand(command.name)->get_prefix_command() || command.arguments.empty()) continue;
        // After its own first argument come the arguments of `render`.
        for (const std::string& choice : command.arguments.front().choices) {
            command.commands.push_back({choice, command.summary, follows.options, follows.arguments, {}});
        }
        command.arguments.clear();
    }
    return program;
}

std::vector<CompletionRow> DescribeRows(const ParamSet& params) {
    std::vector<CompletionRow> rows;
    for (const ParamRow& row : params.Rows()) {
        const bool isReadOut = KindOf(row.def) == ParamKind::kPopup && row.items.size() == 1;
        if (row.path.empty() || params.DefaultText(row.index).empty() || isReadOut) continue;
        CompletionRow described{row.path, {}};
        if (KindOf(row.def) == ParamKind::kCheckBox) described.values = {"on", "off"};
        for (const std::string& item : row.items) {
            const std::string form = PathForm(item);
            if (!item.starts_with("(-") && !form.empty()) described.values.push_back(form);
        }
        rows.push_back(std::move(described));
    }
    return rows;
}

}  // namespace umbrant::host
