// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// From arguments to a command and from its outcome to an exit code. The only place that prints failures.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <optional>
#include <sstream>

#include "host/cli/completion/completion.h"
#include "host/cli/program_version.h"
#include "host/cli/results.h"
#include "host/cli/run_program.h"
#include "host/compositing/memory_shortage.h"
#include "host/image/image_threads.h"
#include "host/parameters/param_path.h"
#include "host/process/files/temporary_file.h"
#include "host/process/interruption.h"
#include "host/process/running_children.h"
#include "host/process/standard_streams.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

constexpr char kDescription[] =
    "Renders long, soft shadows for images with transparency.\n"
    "Results go to standard output, messages to standard error.";

constexpr char kFooter[] =
    "\nExamples:\n"
    "  umbrant render title.png -o shadow.png\n"
    "  umbrant render title.png -o shadow.png --set style/distance=80 --set style/color=#203060\n"
    "  umbrant params\n"
    "\n"
    "Exit codes: 0 done, 1 the effect or a check failed (or compared images differ), 2 wrong usage or a bad value,\n"
    "3 a file cannot be read or written, 4 the module cannot be loaded, 5 an internal error, 129 the terminal was "
    "closed,\n"
    "130 interrupted, 131 quit, 141 nobody reads standard output, 143 terminated.";

int Code(ExitCode code) {
    return static_cast<int>(code);
}

void Say(const std::string& sentence) {
    StayWhileEnding();
    std::fputs(fmt::format("umbrant: {}\n", sentence).c_str(), stderr);
}

void CleanUp() {
    // They may be writing files that are removed then.
    EndChildProcesses();
    EndTemporaryFiles();
}

std::string Suggestion(const std::string& typed, const std::vector<std::string>& candidates) {
    const auto nearest = Nearest(typed, candidates, 1);
    return nearest.empty() ? "" : fmt::format("; did you mean '{}'?", nearest.front());
}

/// The message about an unexpected argument, with the closest match; nothing when all are known.
std::optional<std::string> UnknownArgument(const CLI::App& app, const std::vector<Command>& commands) {
    const auto chosen = app.get_subcommands();
    const CLI::App& asked = chosen.empty() ? app : *chosen.front();
    const std::vector<std::string> extras = asked.remaining(true);
    // What follows a command of that kind is for another one to judge.
    if (extras.empty() || asked.get_prefix_command()) return std::nullopt;
    const std::string& extra = extras.front();
    if (extra.size() > 1 && extra.front() == '-') {
        std::vector<std::string> options;
        for (const CLI::Option* option : asked.get_options()) {
            if (!option->get_lnames().empty()) options.push_back("--" + option->get_lnames().front());
        }
        const std::string name = extra.substr(0, extra.find('='));
        return fmt::format("there is no option '{}'{}", name, Suggestion(name, options));
    }
    if (chosen.empty()) {
        std::vector<std::string> names;
        for (const Command& command : commands) names.push_back(command.name);
        return fmt::format("there is no command '{}'{}", extra, Suggestion(extra, names));
    }
    return fmt::format("'{}' is not expected here", extra);
}

int UsageError(const CLI::App& app, const std::vector<Command>& commands, const CLI::ParseError& problem) {
    const auto unknown = UnknownArgument(app, commands);
    std::string sentence = unknown ? *unknown : std::string(problem.what());
    std::replace(sentence.begin(), sentence.end(), '\n', ' ');
    while (!sentence.empty() && sentence.back() == ' ') sentence.pop_back();
    const auto chosen = app.get_subcommands();
    Say(sentence);
    std::fputs(fmt::format("See `umbrant{}{} --help`.\n", chosen.empty() ? "" : " ",
                           chosen.empty() ? "" : chosen.front()->get_name())
                   .c_str(),
               stderr);
    return Code(ExitCode::kUsage);
}

/// The command's own code, unless its results could not be handed over.
int Finish(int code) {
    if (FlushResults()) return code;
    Say(fmt::format("the results cannot be written to standard output: {}", std::strerror(errno)));
    return Code(ExitCode::kFile);
}

void SayThreadShortage(const ThreadShortage& shortage) {
    Say(fmt::format(
        "only {} of {} threads could be started; the work continues with fewer and takes longer (`ulimit -u`, "
        "or the container's limits of tasks and memory, allow more)",
        shortage.allowed, shortage.wanted));
}

int Run(const Command& command) {
    ReportThreadShortage(SayThreadShortage);
    try {
        const Result<ExitCode> outcome = command.run();
        if (outcome) return Finish(Code(*outcome));
        Say(outcome.error().sentence);
        // The failure's own code is more specific than that of lost results.
        const int code = Code(ExitCodeOf(outcome.error().kind));
        Finish(code);
        return code;
    } catch (const std::bad_alloc&) {
        Say(NotEnoughMemory(fmt::format("the command '{}'", command.name)).sentence);
    } catch (const std::exception& problem) {
        Say(fmt::format("internal error: {}", problem.what()));
    } catch (...) {
        Say("internal error of an unknown kind");
    }
    return Code(ExitCode::kInternal);
}

}  // namespace

void PrepareProcess() {
    if (!OpenStandardStreams()) {
        Say("a standard stream is closed, and /dev/null cannot be opened in its place");
        std::_Exit(Code(ExitCode::kFile));
    }
    HandleInterruptions(CleanUp);
    PrepareImageThreads();
    KeepStandardOutputForResults();
    // A limit on the size of files is a write that fails, like a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
}

void DeclareProgram(CLI::App& app, const std::vector<Command>& commands) {
    app.description(kDescription);
    app.name("umbrant");
    app.footer(kFooter);
    app.set_version_flag("--version", "umbrant " + ProgramVersion());
    app.require_subcommand(1);
    for (const Command& command : commands) {
        CLI::App* subcommand = app.add_subcommand(command.name, command.summary);
        subcommand->footer("\nExamples:\n" + command.examples);
        command.options(*subcommand);
    }
}

int RunProgram(int argc, const char* const* argv, const std::function<int(const Command&)>& instead) {
    if (!instead && argc > 1 && argv[1] == kCompletionRequest) {
        // No option of it is declared: the words that follow are another command line's.
        return Run(CompletionRequest({argv + 2, argv + argc}));
    }
    return RunProgram(AllCommands(), argc, argv, instead);
}

int RunProgram(const std::vector<Command>& commands, int argc, const char* const* argv,
               const std::function<int(const Command&)>& instead) {
    CLI::App app;
    DeclareProgram(app, commands);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& asked) {  // help or version
        std::ostringstream out, none;
        const int code = app.exit(asked, out, none);
        PrintResult(out.str());
        return Finish(code);
    } catch (const CLI::ParseError& problem) {
        return UsageError(app, commands, problem);
    }
    for (const Command& command : commands) {
        if (app.got_subcommand(command.name)) return instead ? instead(command) : Run(command);
    }
    return Code(ExitCode::kInternal);
}

}  // namespace umbrant::host
