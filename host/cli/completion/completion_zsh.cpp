// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The completion function for zsh: one function per command, in the syntax of zsh's _arguments.

#include <fmt/format.h>

#include "host/cli/completion/completion.h"

namespace umbrant::host {

namespace {

using Kind = CompletionValue::Kind;

/// A text within single quotes, with a backslash before what _arguments and _describe would take for their own.
std::string Quoted(const std::string& text, const char* special) {
    std::string quoted;
    for (const char c : text) {
        if (c == '\'') {
            quoted += "'\\''";
        } else if (c == '\n') {
            quoted += ' ';
        } else {
            if (c == '\\' || std::string_view(special).find(c) != std::string_view::npos) quoted += '\\';
            quoted += c;
        }
    }
    return quoted;
}

/// ":FRAMES: " and the possible values.
std::string Action(const CompletionValue& value) {
    const std::string shown = Quoted(value.shown, ":[]");
    switch (value.kind) {
        case Kind::kNone:
            return "";
        case Kind::kText:
            return fmt::format(":{}: ", shown);
        case Kind::kChoices: {
            std::string words;
            for (const std::string& choice : value.choices) words += (words.empty() ? "" : " ") + choice;
            return fmt::format(":{}:({})", shown, words);
        }
        case Kind::kFile:
            return fmt::format(":{}:_files", shown);
        case Kind::kSetting:
            return fmt::format(":{}:_umbrant_setting", shown);
        case Kind::kRow:
            return fmt::format(":{}:_umbrant_row", shown);
    }
    return "";
}

/// An option's form: '(-o --output)'{-o+,--output=}'[summary]:FILE:_files'.
std::string OptionSpec(const CompletionOption& option) {
    const bool hasValue = option.value.kind != Kind::kNone;
    std::string all, spellings;
    for (const std::string& name : option.names) {
        all += (all.empty() ? "" : " ") + name;
        spellings += (spellings.empty() ? "" : ",") + name;
        if (hasValue) spellings += name.rfind("--", 0) == 0 ? "=" : "+";
    }
    const std::string rest = fmt::format("[{}]{}", Quoted(option.summary, "[]:"), Action(option.value));
    const std::string before = option.mayRepeat ? "*" : fmt::format("({})", all);
    if (option.names.size() == 1) return fmt::format("'{}{}{}'", before, spellings, rest);
    return fmt::format("'{}'{{{}}}'{}'", before, spellings, rest);
}

/// The function of a command, after those of the commands below it.
void AddFunction(const CompletionNode& node, const std::string& name, std::string& text) {
    for (const CompletionNode& below : node.commands) AddFunction(below, name + "_" + below.name, text);
    text += fmt::format("\n{}() {{\n", name);
    if (!node.commands.empty()) text += "    local curcontext=$curcontext state line\n    local -a commands\n";
    text += "    _arguments -C";
    for (const CompletionOption& option : node.options) text += " \\\n        " + OptionSpec(option);
    for (std::size_t i = 0; i < node.arguments.size(); ++i) {
        text += fmt::format(" \\\n        '{}{}'", i + 1, Action(node.arguments[i]));
    }
    if (node.commands.empty()) {
        text += "\n}\n";
        return;
    }
    text +=
        " \\\n        '1: :->command' '*:: :->arguments'\n    case $state in\n        command)\n            "
        "commands=(\n";
    for (const CompletionNode& below : node.commands) {
        text += fmt::format("                '{}:{}'\n", below.name, Quoted(below.summary, ":"));
    }
    text += "            )\n            _describe command commands\n            ;;\n        arguments)\n";
    text += "            case $line[1] in\n";
    for (const CompletionNode& below : node.commands) {
        text += fmt::format("                {}) {}_{} ;;\n", below.name, name, below.name);
    }
    text += "            esac\n            ;;\n    esac\n}\n";
}

}  // namespace

std::string ZshCompletion(const CompletionNode& program, const std::vector<CompletionRow>& rows) {
    std::string text =
        "#compdef umbrant\n# Completion of umbrant's command line for zsh, written by `umbrant "
        "completion zsh`.\n\n_umbrant_row() {\n    local -a paths\n    paths=(";
    for (const CompletionRow& row : rows) text += "\n        " + row.path;
    text +=
        "\n    )\n    compadd \"$@\" -a paths\n}\n\n_umbrant_setting() {\n    local -a choices\n"
        "    if ! compset -P '*='; then\n        _umbrant_row \"$@\" -q -S =\n        return\n    fi\n"
        "    case ${${IPREFIX%=}##*=} in\n";
    for (const CompletionRow& row : rows) {
        if (row.values.empty()) continue;
        text += fmt::format("        {}) choices=(", row.path);
        for (const std::string& value : row.values) text += (&value == &row.values.front() ? "" : " ") + value;
        text += ") ;;\n";
    }
    text += "    esac\n    compadd \"$@\" -a choices\n}\n";
    AddFunction(program, "_umbrant", text);
    return text + "\n_umbrant \"$@\"\n";
}

}  // namespace umbrant::host
