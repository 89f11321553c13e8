// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// From the words of a command line to what may follow.

#include <fmt/format.h>

#include <algorithm>

#include "host/cli/completion/completion.h"

namespace umbrant::host {

namespace {

using Kind = CompletionValue::Kind;
using AnswerKind = CompletionAnswer::Kind;

/// Where the last word is.
struct Place {
    const CompletionNode* node = nullptr;
    const CompletionOption* pending = nullptr;  ///< its value is the next word
    std::vector<const CompletionOption*> used;  ///< of this command
    std::size_t arguments = 0;                  ///< of this command, so far
    bool isAfterMark = false;                   ///< after "--", where everything is an argument
};

const CompletionOption* FindOption(const CompletionNode& node, std::string_view name) {
    for (const CompletionOption& option : node.options) {
        if (std::find(option.names.begin(), option.names.end(), name) != option.names.end()) return &option;
    }
    return nullptr;
}

/// How much of a word is the option before its value, as in "--canvas=grow" and "-oshadow.png"; 0 for another word.
std::size_t JoinedLength(std::string_view word) {
    if (word.starts_with("--")) return word.find('=') == std::string_view::npos ? 0 : word.find('=') + 1;
    return word.starts_with('-') && word.size() > 2 ? 2 : 0;
}

/// The option of a word that has the option's value too, if it takes one.
const CompletionOption* JoinedOption(const CompletionNode& node, std::string_view word) {
    std::string_view name = word.substr(0, JoinedLength(word));
    if (name.ends_with('=')) name.remove_suffix(1);
    const CompletionOption* option = name.empty() ? nullptr : FindOption(node, name);
    return option != nullptr && option->value.kind != Kind::kNone ? option : nullptr;
}

void PassOption(const std::string& word, Place& place) {
    const CompletionOption* joined = JoinedOption(*place.node, word);
    const CompletionOption* option = joined != nullptr ? joined : FindOption(*place.node, word);
    if (option == nullptr) return;
    place.used.push_back(option);
    if (joined == nullptr && option->value.kind != Kind::kNone) place.pending = option;
}

void PassWord(const std::string& word, Place& place) {
    if (place.pending != nullptr) {
        place.pending = nullptr;
        return;
    }
    if (!place.isAfterMark && word == "--") {
        place.isAfterMark = true;
        return;
    }
    // A single "-" is the name of a standard stream.
    if (!place.isAfterMark && word.size() > 1 && word.front() == '-') return PassOption(word, place);
    const auto& commands = place.node->commands;
    const auto command =
        std::find_if(commands.begin(), commands.end(), [&](const CompletionNode& each) { return each.name == word; });
    if (place.isAfterMark || command == commands.end()) {
        ++place.arguments;
    } else {
        place = {&*command, nullptr, {}, 0, false};
    }
}

CompletionAnswer Words(std::string prefix, const std::vector<std::string>& texts) {
    CompletionAnswer answer{AnswerKind::kWords, std::move(prefix), {}};
    for (const std::string& text : texts) answer.candidates.push_back({text, ""});
    return answer;
}

CompletionAnswer Settings(std::string prefix, std::string_view text, const std::vector<CompletionRow>& rows) {
    const std::size_t equals = text.find('=');
    if (equals != std::string_view::npos) {
        prefix += text.substr(0, equals + 1);
        for (const CompletionRow& row : rows) {
            if (row.path == text.substr(0, equals)) return Words(std::move(prefix), row.values);
        }
        return {};
    }
    CompletionAnswer answer{AnswerKind::kSettings, std::move(prefix), {}};
    for (const CompletionRow& row : rows) answer.candidates.push_back({row.path + "=", ""});
    return answer;
}

bool AnyBegins(const std::vector<std::string>& words, std::string_view text) {
    return std::any_of(words.begin(), words.end(), [&](const std::string& word) { return word.starts_with(text); });
}

/// `text` is what follows the prefix.
CompletionAnswer ValueAnswer(const CompletionValue& value, std::string prefix, std::string_view text,
                             const std::function<CompletionRows()>& rows) {
    switch (value.kind) {
        case Kind::kNone:
        case Kind::kText:
            return {};
        case Kind::kChoices:
            return Words(std::move(prefix), value.choices);
        case Kind::kFile:
            if (AnyBegins(value.choices, text)) return Words(std::move(prefix), value.choices);
            return {AnswerKind::kFiles, std::move(prefix), {}};
        case Kind::kSetting:
            return Settings(std::move(prefix), text, rows().settings);
        case Kind::kRow:
            return Words(std::move(prefix), rows().twirls);
    }
    return {};
}

CompletionAnswer OptionsAnswer(const Place& place, std::string_view current) {
    CompletionAnswer answer{AnswerKind::kOptions, "", {}};
    for (const CompletionOption& option : place.node->options) {
        const bool isUsed = std::find(place.used.begin(), place.used.end(), &option) != place.used.end();
        if (isUsed && !option.mayRepeat) continue;
        for (const std::string& name : option.names) {
            const bool isLong = name.starts_with("--");
            if (!isLong && current.starts_with("--")) continue;
            const bool hasSign = isLong && option.value.kind != Kind::kNone;
            answer.candidates.push_back({hasSign ? name + "=" : name, option.summary});
        }
    }
    return answer;
}

CompletionAnswer CommandsAnswer(const CompletionNode& node) {
    CompletionAnswer answer;
    for (const CompletionNode& below : node.commands) answer.candidates.push_back({below.name, below.summary});
    return answer;
}

bool HasControlCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; });
}

std::string OneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
    return text;
}

const char* KindText(AnswerKind kind) {
    switch (kind) {
        case AnswerKind::kWords:
            return "words";
        case AnswerKind::kOptions:
            return "options";
        case AnswerKind::kSettings:
            return "settings";
        case AnswerKind::kFiles:
            return "files";
    }
    return "";
}

}  // namespace

CompletionAnswer AnswerCompletion(const CompletionNode& program, const std::vector<std::string>& words,
                                  const std::function<CompletionRows()>& rows) {
    if (words.empty()) return {};
    Place place;
    place.node = &program;
    for (std::size_t i = 0; i + 1 < words.size(); ++i) PassWord(words[i], place);
    const std::string_view current = words.back();
    if (place.pending != nullptr) return ValueAnswer(place.pending->value, "", current, rows);
    if (!place.isAfterMark && current.starts_with('-')) {
        const CompletionOption* joined = JoinedOption(*place.node, current);
        if (joined == nullptr) return OptionsAnswer(place, current);
        const std::size_t length = JoinedLength(current);
        return ValueAnswer(joined->value, std::string(current.substr(0, length)), current.substr(length), rows);
    }
    if (!place.node->commands.empty()) return place.isAfterMark ? CompletionAnswer{} : CommandsAnswer(*place.node);
    if (place.arguments >= place.node->arguments.size()) return {};
    return ValueAnswer(place.node->arguments[place.arguments], "", current, rows);
}

std::string CompletionText(const CompletionAnswer& answer) {
    // No parameter's name has one, so nothing is lost.
    if (HasControlCharacter(answer.prefix)) return CompletionText({});
    std::string text;
    for (const CompletionCandidate& candidate : answer.candidates) {
        text += OneLine(candidate.text);
        if (!candidate.description.empty()) text += "\t" + OneLine(candidate.description);
        text += '\n';
    }
    return text + fmt::format(":{}\t{}\n", KindText(answer.kind), answer.prefix);
}

}  // namespace umbrant::host
