// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The completion script for bash. It needs nothing but bash itself.

#include <fmt/format.h>

#include "host/cli/completion/completion.h"

namespace umbrant::host {

namespace {

using Kind = CompletionValue::Kind;

/// The part that does not depend on what is completed. `$where` is the command with its parents, a blank before each.
constexpr char kFunction[] = R"script(
_umbrant() {
    local line=${COMP_LINE:0:COMP_POINT} where= option= current value word i count=0
    local kind= choices= commands= options= paths=
    local -a words
    # Not COMP_WORDS: readline parts words at "=", wherever one stands.
    read -ra words <<<"$line"
    [[ $line == *[[:space:]] ]] && words+=('')
    current=${words[-1]}
    for ((i = 1; i < ${#words[@]} - 1; ++i)); do
        word=${words[i]}
        if [[ $option ]]; then
            option=
        elif [[ $word == -* ]]; then
            _umbrant_value "$where $word"
            [[ $kind == none || $word == *=* ]] || option=$word
        else
            _umbrant_words "$where"
            if [[ " $commands " == *" $word "* ]]; then
                where+=" $word" count=0
            else
                ((++count))
            fi
        fi
    done

    value=$current
    local joined=
    if [[ ! $option && $current == --*=* ]]; then
        option=${current%%=*} value=${current#*=} joined=yes
    fi
    _umbrant_words "$where"
    if [[ $option ]]; then
        _umbrant_value "$where $option"
    elif [[ $current == -* ]]; then
        kind=choices choices=$options
    elif [[ $commands ]]; then
        kind=choices choices=$commands
    else
        _umbrant_value "$where #$((count + 1))"
    fi

    COMPREPLY=()
    case $kind in
        file) return ;;  # by readline itself, which knows how to quote
        choices) COMPREPLY=($(compgen -W "$choices" -- "$value")) ;;
        row)
            _umbrant_row
            COMPREPLY=($(compgen -W "$paths" -- "$value"))
            ;;
        setting)
            _umbrant_row "${value%%=*}"
            if [[ $value == *=* ]]; then
                COMPREPLY=($(compgen -P "${value%%=*}=" -W "$choices" -- "${value#*=}"))
            else
                COMPREPLY=($(compgen -S = -W "$paths" -- "$value"))
                compopt -o nospace 2>/dev/null
            fi
            ;;
    esac
    # Where nothing is known, file names would be wrong.
    [[ ${#COMPREPLY[@]} -gt 0 ]] || compopt +o default 2>/dev/null
    if [[ $COMP_WORDBREAKS != *=* ]]; then
        [[ ! $joined ]] || COMPREPLY=("${COMPREPLY[@]/#/$option=}")
    elif [[ $value == *=* ]]; then
        COMPREPLY=("${COMPREPLY[@]#"${value%"${value##*=}"}"}")
    fi
}

complete -o default -F _umbrant umbrant
)script";

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

std::string KindText(const CompletionValue& value) {
    switch (value.kind) {
        case Kind::kNone:
            return "kind=none";
        case Kind::kText:
            return "kind=text";
        case Kind::kChoices:
            return fmt::format("kind=choices choices='{}'", Joined(value.choices));
        case Kind::kFile:
            return "kind=file";
        case Kind::kSetting:
            return "kind=setting";
        case Kind::kRow:
            return "kind=row";
    }
    return "";
}

/// The branches of _umbrant_value.
void AddValues(const CompletionNode& node, const std::string& where, std::string& text) {
    for (const CompletionOption& option : node.options) {
        if (option.value.kind == Kind::kNone) continue;
        std::string names;
        for (const std::string& name : option.names) {
            names += fmt::format("{}'{} {}'", names.empty() ? "" : " | ", where, name);
        }
        text += fmt::format("        {}) {} ;;\n", names, KindText(option.value));
    }
    for (std::size_t i = 0; i < node.arguments.size(); ++i) {
        text += fmt::format("        '{} #{}') {} ;;\n", where, i + 1, KindText(node.arguments[i]));
    }
    for (const CompletionNode& below : node.commands) AddValues(below, where + " " + below.name, text);
}

/// The branches of _umbrant_words.
void AddWords(const CompletionNode& node, const std::string& where, std::string& text) {
    std::vector<std::string> commands, options;
    for (const CompletionNode& below : node.commands) commands.push_back(below.name);
    for (const CompletionOption& option : node.options) options.push_back(option.names.back());
    text += fmt::format("        '{}')\n            commands='{}'\n            options='{}'\n            ;;\n", where,
                        Joined(commands), Joined(options));
    for (const CompletionNode& below : node.commands) AddWords(below, where + " " + below.name, text);
}

}  // namespace

std::string BashCompletion(const CompletionNode& program, const std::vector<CompletionRow>& rows) {
    std::string text = "# Completion of umbrant's command line for bash, written by `umbrant completion bash`.\n\n";
    text += "# The value of an option or argument: sets kind and choices.\n";
    text += "_umbrant_value() {\n    kind=none choices=\n    case $1 in\n";
    AddValues(program, "", text);
    text += "    esac\n}\n\n# The commands and options of a command: sets commands and options.\n";
    text += "_umbrant_words() {\n    commands= options=\n    case $1 in\n";
    AddWords(program, "", text);
    text += "    esac\n}\n\n# The parameters, and the values of one: sets paths and choices.\n";
    text += "_umbrant_row() {\n    paths='";
    for (const CompletionRow& row : rows) text += (&row == &rows.front() ? "" : " ") + row.path;
    text += "' choices=\n    case $1 in\n";
    for (const CompletionRow& row : rows) {
        if (!row.values.empty()) text += fmt::format("        '{}') choices='{}' ;;\n", row.path, Joined(row.values));
    }
    return text + "    esac\n}\n" + kFunction;
}

}  // namespace umbrant::host
