// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/farm/submit.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>

#include "host/cli/render/outcome/frame_cost.h"
#include "host/cli/render/progress_text.h"
#include "host/cli/results.h"
#include "host/farm/slurm_submit.h"
#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

void Say(const std::string& sentence) {
    std::fputs(fmt::format("umbrant: {}\n", sentence).c_str(), stderr);
}

std::string Count(int number, const char* thing) {
    return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

int FramesOfTask(const FarmJob& job) {
    return (job.frames + job.tasks - 1) / job.tasks;
}

/// Draws a few frames and sets the limit of the tasks from what they take.
Result<Done> Measure(const RenderOptions& render, FarmJob& job) {
    RenderOptions options = render;
    options.sequence.skipExisting = false;
    // Files that do not exist yet may be created before they are needed.
    options.sequence.keepGoing = true;
    const auto help = [](const Failure& failure) {
        return Failure{failure.kind, fmt::format("the first frames cannot be drawn here, so that the time of a task is "
                                                 "not known: {}; --no-first-frame submits the job without a time limit",
                                                 failure.sentence)};
    };
    const auto cost = MeasureRender(std::move(options));
    if (!cost) return help(cost.error());
    if (cost->measured.empty()) return help({ErrorKind::kFile, "none of the input's frames can be read yet"});
    RenderCost task = *cost;
    task.frames = static_cast<std::size_t>(FramesOfTask(job));
    job.minutes = MinutesForTask(task.MostSeconds(), job.tries);
    std::vector<FrameNumber> numbers;
    for (const MeasuredFrame& frame : cost->measured) numbers.push_back(frame.number);
    Say(fmt::format("a task takes {} here, measured by drawing {} {}; its time limit is {}",
                    DurationText(task.MostSeconds()), numbers.size() == 1 ? "frame" : "frames", FramesText(numbers),
                    Count(job.minutes, "minute")));
    return Done{};
}

/// Asks on the terminal.
bool IsWanted(const FarmJob& job) {
    std::fputs(fmt::format("umbrant: submit {}? [y/N] ", Count(job.tasks, "task")).c_str(), stderr);
    std::fflush(stderr);
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

}  // namespace

Result<Done> CheckSubmission(const SubmitOptions& options, const std::string& engine) {
    if (!options.submits) return Done{};
    if (engine != "slurm") {
        return Failure{ErrorKind::kUsage,
                       fmt::format("--submit applies to slurm only; without it the job for {} is printed", engine)};
    }
    if (options.yes || isatty(STDIN_FILENO)) return Done{};
    return Failure{ErrorKind::kUsage,
                   "--submit asks before it submits, and standard input is not a terminal; add --yes to submit without "
                   "being asked"};
}

Result<ExitCode> Submit(FarmJob job, const SubmitOptions& options, const RenderOptions& render) {
    std::error_code error;
    if (!std::filesystem::is_directory(job.logs, error)) {
        return Failure{ErrorKind::kFile, fmt::format("the folder of the logs, '{}', does not exist; Slurm does not "
                                                     "create it, and tasks without a log fail",
                                                     job.logs)};
    }
    Say(fmt::format("the job '{}': {} in {} of up to {}", job.name, Count(job.frames, "frame"),
                    Count(job.tasks, "task"), Count(FramesOfTask(job), "frame")));
    if (options.noFirstFrame) {
        Say("nothing was drawn before, and the tasks have no time limit but that of Slurm's partition");
    } else {
        TRY(Measure(render, job));
    }
    const std::string script = SlurmJob(job);
    std::fputs(("\n" + script + "\n").c_str(), stderr);
    if (!options.yes && !IsWanted(job)) {
        Say("the job was not submitted");
        return ExitCode::kDone;
    }
    const auto submitted = TRY(SubmitToSlurm(script));
    if (!submitted.note.empty()) Say("sbatch says: " + submitted.note);
    const std::string id = submitted.id.substr(0, submitted.id.find(';'));
    Say(fmt::format("submitted as job {}; `squeue --job {}` shows it, `scancel {}` ends it", id, id, id));
    PrintResult(submitted.id + "\n");
    return ExitCode::kDone;
}

}  // namespace umbrant::host
