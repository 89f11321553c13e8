// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Shell completion in three parts: a model of the program's command line, read from its declared options; the answer to
// "what may follow these words?", which a shell's script gets from `umbrant __complete`; and the three scripts, which
// only ask and hand over. Inside host/cli only.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/cli/command.h"
#include "host/parameters/param_set.h"

namespace umbrant::host {

/// The value of an option, or an argument.
struct CompletionValue {
    enum class Kind {
        kNone,     ///< a flag
        kText,     ///< anything; nothing to suggest
        kChoices,  ///< one of `choices`; a text of another form may be right too
        kFile,     ///< or one of `choices`
        kSetting,  ///< PATH=VALUE of a parameter
        kRow,      ///< a row of the panel
    };
    Kind kind = Kind::kNone;
    std::vector<std::string> choices;
};

struct CompletionOption {
    std::vector<std::string> names;  ///< "-o", "--output"
    std::string summary;
    CompletionValue value;
    bool mayRepeat = false;
};

/// A command, or the program itself, with everything below it.
struct CompletionNode {
    std::string name;
    std::string summary;
    std::vector<CompletionOption> options;
    std::vector<CompletionValue> arguments;  ///< in their places
    std::vector<CompletionNode> commands;
};

/// Reads a declared command line. A command that hands the rest of its arguments to `render` has a command below it for
/// each word that may come first.
CompletionNode DescribeCommands(const CLI::App& app);

/// A parameter that can be set, and its named values.
struct CompletionRow {
    std::string path;
    std::vector<std::string> values;  ///< a popup's items, "on" and "off"; empty for numbers and the like
};

/// What a module's parameters add.
struct CompletionRows {
    std::vector<CompletionRow> settings;  ///< the rows that `--set` takes and that have a path
    std::vector<std::string> twirls;      ///< the rows that `panel --open` takes
};

/// The rows that `--set` takes and that have a path.
std::vector<CompletionRow> DescribeRows(const ParamSet& params);

struct CompletionCandidate {
    std::string text;
    std::string description;  ///< one line, or empty
};

/// What may stand in the place of the last word.
struct CompletionAnswer {
    enum class Kind {
        kWords,
        kOptions,   ///< an option that takes a value ends in "="
        kSettings,  ///< each ends in "=", and its value follows without a space
        kFiles,     ///< no candidates: names of files and folders
    };
    Kind kind = Kind::kWords;
    std::string prefix;  ///< the beginning of the word that candidates and names of files leave out: "--canvas="
    std::vector<CompletionCandidate> candidates;
};

/// Answers for the words after the program's name, of which the last, perhaps empty, is being completed. All candidates
/// of its place are given, whatever it begins with, as a shell may match them by rules of its user. `rows` is called
/// only where a parameter may follow, as it has to load a module.
CompletionAnswer AnswerCompletion(const CompletionNode& program, const std::vector<std::string>& words,
                                  const std::function<CompletionRows()>& rows);

/// The answer as lines for a script. Each candidate has one, with a tab and its description if it has one. The last
/// line begins with a colon: ":words", ":options", ":settings" or ":files", a tab, and the prefix.
std::string CompletionText(const CompletionAnswer& answer);

/// The scripts. `module` is a file for every question, or empty for the module that the program finds then.
std::string BashCompletion(const std::string& module);
std::string ZshCompletion(const std::string& module);
std::string FishCompletion(const std::string& module);

/// The program's first argument when a script asks.
constexpr std::string_view kCompletionRequest = "__complete";

/// `umbrant __complete [--module FILE] -- WORDS...`: prints the CompletionText for the words. `arguments` are those
/// after kCompletionRequest. It is not among AllCommands, so it is in no help text, completion or manual page. Its exit
/// code is 0, also without any candidate, and 2 when it is called in another form. Nothing that fails is reported: the
/// person at the keyboard would find the message in the middle of a line.
Command CompletionRequest(std::vector<std::string> arguments);

}  // namespace umbrant::host
