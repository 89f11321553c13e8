// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant farm`: a set of frames as a job for a render farm's own engine. It prints the job, or hands it to Slurm.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <system_error>

#include "host/cli/farm/submit.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/render/render_options.h"
#include "host/cli/results.h"
#include "host/cli/run_program.h"
#include "host/farm/farm_job.h"
#include "host/module/module.h"
#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr int kMostTasks = 1'000'000;
constexpr int kFramesPerTask = 10;

constexpr char kFarmExamples[] =
    "  umbrant farm slurm shot.####.exr -o out/shot.####.exr --frames 1-240 > shot.sh; sbatch --wait shot.sh\n"
    "      an array of 24 tasks with 10 frames each\n"
    "  umbrant farm --submit slurm shot.####.exr -o out/shot.####.exr --frames 1-240\n"
    "      the same job, submitted after a question, with a time limit that was measured\n"
    "  umbrant farm --tasks 12 --name title parallel title.png -o out/title.####.png --preset moving.json --frames "
    "1-48 "
    "> title.sh\n"
    "      then: bash title.sh --sshlogin one,two\n"
    "  umbrant farm --frames-per-task 4 openjd shot.####.exr -o out/shot.####.exr > shot.json\n"
    "      a job template of Open Job Description; without --frames, all frames that the input has now";

struct FarmOptions {
    std::string engine;
    std::string name = "umbrant";
    int tasks = 0;
    int framesPerTask = kFramesPerTask;
    int retries = 2;
    std::string logs;
    std::string halt;
    std::string program;
    std::string folder;
    SubmitOptions submission;
    CLI::App* app = nullptr;  ///< has what follows the engine
};

/// The help of every command, with a usage that shows what follows the engine.
class FarmHelp : public CLI::Formatter {
 public:
    std::string make_usage(const CLI::App*, std::string name) const override {
        return fmt::format("Usage: {} [OPTIONS] slurm|openjd|parallel INPUT -o OUTPUT [RENDER'S OPTIONS]\n", name);
    }
};

std::string WhyNoName(const std::string& text) {
    const auto fits = [](unsigned char c) { return std::isalnum(c) || c == '-' || c == '_' || c == '.'; };
    const bool good = !text.empty() && text.size() <= 64 && text.front() != '-' && text.front() != '.' &&
                      std::all_of(text.begin(), text.end(), fits);
    if (good) return "";
    return fmt::format(
        "'{}' is not a valid job name: use up to 64 letters, digits, '-', '_' and '.', not beginning with "
        "'-' or '.'",
        text);
}

/// sbatch cannot represent these characters in the name of a log.
std::string WhyNoLogs(const std::string& text) {
    const auto wrong = [](unsigned char c) { return c < 0x20 || c == 0x7f || c == '"' || c == '\'' || c == '\\'; };
    if (!text.empty() && std::none_of(text.begin(), text.end(), wrong)) return "";
    return fmt::format(
        "'{}' cannot be the folder of the logs: quotes, backslashes and control characters are not allowed", text);
}

/// Engines differ in what can be chosen.
Result<Done> CheckChoices(const FarmOptions& options) {
    if (!options.halt.empty() && options.engine != "parallel") {
        return Failure{ErrorKind::kUsage,
                       fmt::format("--halt applies to parallel only; {} has its own setting for it", options.engine)};
    }
    if (!options.logs.empty() && options.engine == "openjd") {
        return Failure{ErrorKind::kUsage, "--logs does not apply to openjd, whose engine keeps the logs of its tasks"};
    }
    return CheckSubmission(options.submission, options.engine);
}

/// An option of farm among the arguments of render would be unknown there; a specific message is better.
Result<Done> CheckOrder(const FarmOptions& options, const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        const std::string name = argument.substr(0, argument.find('='));
        if (!name.starts_with("--") || name == "--help" || name == "--") continue;
        for (const CLI::Option* option : options.app->get_options()) {
            if (!option->check_lname(name.substr(2))) continue;
            return Failure{
                ErrorKind::kUsage,
                fmt::format("{} is an option of farm, not of render; write it before '{}'", name, options.engine)};
        }
    }
    return Done{};
}

/// The arguments of render, read by its own parser, which reports what is wrong with them. Returns done when they were
/// read and something else, said already, when not.
int ReadArguments(const std::vector<std::string>& arguments, const std::shared_ptr<RenderOptions>& render, bool& read) {
    std::vector<const char*> words = {"umbrant", "render"};
    for (const std::string& argument : arguments) words.push_back(argument.c_str());
    return RunProgram({RenderCommand(render)}, static_cast<int>(words.size()), words.data(), [&](const Command&) {
        read = true;
        return static_cast<int>(ExitCode::kDone);
    });
}

/// Removes an option with its value from arguments that were read without a mistake.
void DropOption(const std::string& name, std::vector<std::string>& words) {
    for (auto word = words.begin(); word != words.end();) {
        const bool isAlone = *word == name;
        if (!isAlone && !word->starts_with(name + "=")) {
            ++word;
            continue;
        }
        word = words.erase(word, word + (isAlone && word + 1 != words.end() ? 2 : 1));
    }
}

/// The folder in which the tasks begin; the program goes there, as names are relative to it.
Result<std::string> EnterFolder(const std::string& asked) {
    std::error_code error;
    const fs::path folder = fs::absolute(asked.empty() ? "." : asked, error).lexically_normal();
    if (!error) fs::current_path(folder, error);
    if (error) {
        return Failure{ErrorKind::kFile, fmt::format("cannot enter the folder '{}': {}", asked, error.message())};
    }
    const std::string text = folder.string();
    return text.size() > 1 && text.back() == '/' ? text.substr(0, text.size() - 1) : text;
}

/// The job. What `render` names by other names than files becomes a file of this machine, for what is done here.
Result<FarmJob> JobOf(const FarmOptions& options, const std::vector<std::string>& arguments, RenderOptions& render) {
    if (!render.sequence.chunk.empty()) {
        return Failure{ErrorKind::kUsage,
                       "--chunk is not allowed here, as each task of a job has its own chunk; leave it out"};
    }
    for (const auto& [isThere, option] : {std::pair(render.watch, "--watch"), {render.dryRun, "--dry-run"}}) {
        if (!isThere) continue;
        return Failure{ErrorKind::kUsage, fmt::format("{} is not for the tasks of a job; leave it out", option)};
    }
    const auto folder = TRY(EnterFolder(options.folder));
    render.preset = TRY(PresetFile(render.preset));
    render = TRY(WholeOptions(render));
    const auto many = TRY(MeansSequence(render));
    if (!many) {
        return Failure{
            ErrorKind::kUsage,
            fmt::format("'{}' is a single image, and a job has many frames; choose them with --frames, or draw "
                        "it with `umbrant render`",
                        render.input)};
    }
    const auto frames = TRY(FramesOf(render));

    FarmJob job;
    job.name = options.name;
    job.frames = static_cast<int>(frames.size());
    job.tasks = options.tasks > 0 ? std::min(options.tasks, job.frames)
                                  : (job.frames + options.framesPerTask - 1) / options.framesPerTask;
    job.tries = options.retries + 1;
    job.folder = folder;
    job.logs = options.logs.empty() ? "." : fs::path(options.logs).lexically_normal().string();
    if (job.logs.size() > 1 && job.logs.back() == '/') job.logs.pop_back();
    job.halt = options.halt.empty() ? "never" : options.halt;
    job.command = {options.program.empty() ? RunningProgram().string() : options.program, "render"};
    for (const std::string& argument : arguments) {
        if (argument != "--skip-existing") job.command.push_back(argument);
    }
    const auto canvas = CanvasOfSet(render);
    if (!canvas) return canvas.error();
    if (!canvas->empty()) {
        // A task knows only its own part, so the canvas of the whole set is determined once.
        DropOption("--canvas", job.command);
        job.command.push_back("--canvas=" + *canvas);
    }
    // Tasks that begin later must divide the same set, whatever files are there then.
    if (render.sequence.frames.empty()) job.command.push_back("--frames=" + FrameSetText(frames));
    return job;
}

Result<ExitCode> Farm(const FarmOptions& options) {
    TRY(CheckChoices(options));
    const std::vector<std::string> arguments = options.app->remaining();
    TRY(CheckOrder(options, arguments));
    const auto render = std::make_shared<RenderOptions>();
    bool read = false;
    const int code = ReadArguments(arguments, render, read);
    if (!read) return static_cast<ExitCode>(code);
    const auto job = TRY(JobOf(options, arguments, *render));
    if (options.submission.submits) return Submit(job, options.submission, *render);
    PrintResult(options.engine == "slurm"      ? SlurmJob(job)
                : options.engine == "parallel" ? ParallelJob(job)
                                               : OpenJdJob(job));
    return ExitCode::kDone;
}

void AddSubmitOptions(CLI::App& app, SubmitOptions& options) {
    CLI::Option* submit = app.add_flag("--submit", options.submits,
                                       "For slurm: draw up to three frames, set the tasks' time limit by them, "
                                       "show the job, ask, and submit it; prints its number");
    app.add_flag("--yes", options.yes, "Submit without asking")->needs(submit);
    app.add_flag("--no-first-frame", options.noFirstFrame,
                 "Submit without drawing a frame before; the tasks have no time limit then")
        ->needs(submit);
}

}  // namespace

Command FarmCommand() {
    const auto options = std::make_shared<FarmOptions>();
    Command command;
    command.name = "farm";
    command.summary =
        "Print or submit a set of frames as a job for a render farm: Slurm, Open Job Description or GNU parallel";
    command.examples = kFarmExamples;
    command.options = [options](CLI::App& app) {
        options->app = &app;
        app.formatter(std::make_shared<FarmHelp>());
        app.prefix_command();
        app.add_option("ENGINE", options->engine,
                       "The engine that runs the job; the arguments of `umbrant render` follow")
            ->required()
            ->check(CLI::IsMember({"slurm", "openjd", "parallel"}))
            ->type_name("slurm|openjd|parallel");
        app.add_option("--name", options->name, "The name of the job and of its logs")
            ->check(WhyNoName)
            ->capture_default_str()
            ->type_name("NAME");
        CLI::Option* tasks = app.add_option("--tasks", options->tasks, "Number of tasks, at most one per frame")
                                 ->check(CLI::Range(1, kMostTasks))
                                 ->type_name("N");
        app.add_option("--frames-per-task", options->framesPerTask, "Largest number of frames in a task")
            ->check(CLI::Range(1, kMostTasks))
            ->capture_default_str()
            ->excludes(tasks)
            ->type_name("N");
        app.add_option("--retries", options->retries, "How often a failed task is tried again")
            ->check(CLI::Range(0, 100))
            ->capture_default_str()
            ->type_name("N");
        app.add_option("--logs", options->logs,
                       "The folder of the logs, for slurm and parallel (default: the folder of the job)")
            ->check(WhyNoLogs)
            ->type_name("FOLDER");
        app.add_option("--halt", options->halt,
                       "For parallel, when a task has failed after its retries: never (default), the others continue; "
                       "soon, no other starts; now, all are ended")
            ->check(CLI::IsMember({"never", "soon", "now"}))
            ->type_name("never|soon|now");
        app.add_option("--folder", options->folder,
                       "The working folder of the tasks, which names are relative to (default: the current folder)")
            ->type_name("FOLDER");
        app.add_option("--program", options->program,
                       "The program on the farm's machines (default: the path of this program)")
            ->type_name("FILE");
        AddSubmitOptions(app, options->submission);
    };
    command.run = [options] { return Farm(*options); };
    return command;
}

}  // namespace umbrant::host
