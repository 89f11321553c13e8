// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant completion`, which prints a shell's script, and `umbrant __complete`, which the script runs at each
// question.

#include "host/cli/completion/completion.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <memory>

#include "host/cli/opened_module.h"
#include "host/cli/results.h"
#include "host/cli/run_program.h"
#include "host/panel/panel_rows.h"

namespace umbrant::host {

namespace {

struct CompletionOptions {
    std::string shell;
    std::string module;
};

Result<ExitCode> Completion(const CompletionOptions& options) {
    std::string module;
    if (!options.module.empty()) {
        // What cannot be loaded is reported here, as the script never reports anything.
        const auto opened = TRY(OpenModule(options.module));
        module = std::filesystem::absolute(opened.file).string();
    }
    PrintResult(options.shell == "bash"  ? BashCompletion(module)
                : options.shell == "zsh" ? ZshCompletion(module)
                                         : FishCompletion(module));
    return ExitCode::kDone;
}

CompletionRows ReadRows(const std::optional<std::string>& module) {
    auto opened = OpenModule(module);
    if (!opened) return {};
    return {DescribeRows(opened->Session().Params()), TwirlNames(opened->Session())};
}

Result<ExitCode> Answer(const std::vector<std::string>& arguments) {
    std::optional<std::string> module;
    std::size_t first = 0;
    if (arguments.size() > 1 && arguments[0] == "--module") {
        module = arguments[1];
        first = 2;
    }
    if (arguments.size() < first + 2 || arguments[first] != "--") {
        return Failure{ErrorKind::kUsage,
                       "__complete is for the scripts of `umbrant completion`; it takes [--module FILE] -- WORDS..."};
    }
    const std::vector<std::string> words(arguments.begin() + static_cast<std::ptrdiff_t>(first) + 1, arguments.end());
    CompletionAnswer answer;
    try {
        const std::vector<Command> commands = AllCommands();
        CLI::App app;
        DeclareProgram(app, commands);
        answer = AnswerCompletion(DescribeCommands(app), words, [&] { return ReadRows(module); });
    } catch (const std::exception&) {
        answer = {};
    }
    PrintResult(CompletionText(answer));
    return ExitCode::kDone;
}

}  // namespace

Command CompletionCommand() {
    const auto options = std::make_shared<CompletionOptions>();
    Command command;
    command.name = "completion";
    command.summary = "Print a script for a shell that completes commands, options and values";
    command.examples =
        "  source <(umbrant completion bash)\n"
        "      for the running bash; a package installs the script for all users\n"
        "  umbrant completion zsh > ~/.zfunc/_umbrant\n"
        "      in a folder of zsh's fpath, before compinit runs\n"
        "  umbrant completion fish > ~/.config/fish/completions/umbrant.fish";
    command.options = [options](CLI::App& app) {
        app.add_option("SHELL", options->shell, "The shell")
            ->check(CLI::IsMember({"bash", "zsh", "fish"}))
            ->type_name("bash|zsh|fish")
            ->required();
        app.add_option("--module", options->module,
                       "The effect's module, whose parameters are completed (default: UMBRANT_MODULE, else the "
                       "program's own module)")
            ->type_name("FILE");
    };
    command.run = [options] { return Completion(*options); };
    return command;
}

Command CompletionRequest(std::vector<std::string> arguments) {
    Command command;
    command.name = kCompletionRequest;
    command.run = [arguments = std::move(arguments)] { return Answer(arguments); };
    return command;
}

}  // namespace umbrant::host
