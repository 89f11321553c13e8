// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The completions for fish.

#include <fmt/format.h>

#include "host/cli/completion/completion.h"

namespace umbrant::host {

namespace {

using Kind = CompletionValue::Kind;

/// A text within single quotes.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') quoted += '\\';
        quoted += c == '\n' ? ' ' : c;
    }
    return quoted + "'";
}

/// The possible values, as arguments of `complete`: -x is a value without file names, -rF one with them.
std::string ValueText(const CompletionValue& value) {
    switch (value.kind) {
        case Kind::kNone:
            return "";
        case Kind::kText:
            return " -x";
        case Kind::kChoices: {
            std::string words;
            for (const std::string& choice : value.choices) words += (words.empty() ? "" : " ") + choice;
            return " -x -a " + Quoted(words);
        }
        case Kind::kFile:
            return " -r -F";
        case Kind::kSetting:
            return " -x -a '(__umbrant_settings)'";
        case Kind::kRow:
            return " -x -a '(__umbrant_rows)'";
    }
    return "";
}

/// `seen` is fish's condition that the command, and not one below it, is being written.
void AddCommand(const CompletionNode& node, const std::string& above, std::string& text) {
    std::string names;
    for (const CompletionNode& below : node.commands) names += " " + below.name;
    std::string here = above;
    if (!names.empty()) {
        here = above.empty() ? "__fish_use_subcommand" : above + "; and not __fish_seen_subcommand_from" + names;
    }
    const std::string complete = "complete -c umbrant -n " + Quoted(here);
    for (const CompletionNode& below : node.commands) {
        text += fmt::format("{} -a {} -d {}\n", complete, below.name, Quoted(below.summary));
    }
    for (const CompletionOption& option : node.options) {
        text += complete;
        for (const std::string& name : option.names) {
            text += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
        }
        text += fmt::format("{} -d {}\n", ValueText(option.value), Quoted(option.summary));
    }
    for (const CompletionValue& argument : node.arguments) {
        // fish knows no places: whatever an argument may be is offered for all of them.
        if (argument.kind == Kind::kFile) text += complete + " -F\n";
        if (argument.kind == Kind::kChoices) {
            for (const std::string& choice : argument.choices) text += complete + " -a " + choice + "\n";
        }
    }
    for (const CompletionNode& below : node.commands) {
        const std::string seen = "__fish_seen_subcommand_from " + below.name;
        AddCommand(below, above.empty() ? seen : above + "; and " + seen, text);
    }
}

void AddFunction(const char* name, const std::vector<std::string>& lines, std::string& text) {
    text += fmt::format("function {}\n    printf '%s\\n'", name);
    for (const std::string& line : lines) text += " \\\n        " + line;
    text += "\nend\n\n";
}

}  // namespace

std::string FishCompletion(const CompletionNode& program, const std::vector<CompletionRow>& rows) {
    std::string text = "# Completion of umbrant's command line for fish, written by `umbrant completion fish`.\n\n";
    std::vector<std::string> paths, settings;
    for (const CompletionRow& row : rows) {
        paths.push_back(row.path);
        if (row.values.empty()) settings.push_back(row.path + "=");
        for (const std::string& value : row.values) settings.push_back(row.path + "=" + value);
    }
    AddFunction("__umbrant_rows", paths, text);
    AddFunction("__umbrant_settings", settings, text);
    text += "complete -c umbrant -f\n";
    AddCommand(program, "", text);
    return text;
}

}  // namespace umbrant::host
