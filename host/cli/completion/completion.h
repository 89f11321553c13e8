// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What shells may complete on the program's command line: read once from its declared options, and from the effect's
// rows, and then written in the syntax of each shell. Inside host/cli only.

#include <string>
#include <vector>

#include "host/parameters/param_set.h"

namespace CLI {
class App;
}

namespace umbrant::host {

/// The value of an option, or an argument.
struct CompletionValue {
    enum class Kind {
        kNone,     ///< a flag
        kText,     ///< anything; nothing to suggest
        kChoices,  ///< one of `choices`; a text of another form may be right too
        kFile,
        kSetting,  ///< PATH=VALUE of a parameter
        kRow,      ///< a parameter's path
    };
    Kind kind = Kind::kNone;
    std::vector<std::string> choices;
    std::string shown;  ///< what the help calls it: "FRAMES"
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

/// A parameter that can be set, and its named values.
struct CompletionRow {
    std::string path;
    std::vector<std::string> values;  ///< a popup's items, "on" and "off"; empty for numbers and the like
};

/// Reads a declared command line. A command that hands the rest of its arguments to `render` has a command below it for
/// each word that may come first.
CompletionNode DescribeCommands(const CLI::App& app);

/// Gives every value that is a row of the panel these names to choose from.
void NameRows(CompletionNode& program, const std::vector<std::string>& names);

/// The rows that `--set` takes and that have a path.
std::vector<CompletionRow> DescribeRows(const ParamSet& params);

/// The scripts. Each is a whole file for its shell.
std::string BashCompletion(const CompletionNode& program, const std::vector<CompletionRow>& rows);
std::string ZshCompletion(const CompletionNode& program, const std::vector<CompletionRow>& rows);
std::string FishCompletion(const CompletionNode& program, const std::vector<CompletionRow>& rows);

}  // namespace umbrant::host
