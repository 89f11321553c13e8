// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/scheduler.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

/// The libraries that come before all others: the judge's, but a sanitizer's runtime wants to be the first.
std::string Preloaded(const CheckRunOptions& options) {
    const auto runtime = SanitizerRuntime();
    const bool isOwnFile = runtime && runtime->string().find(".so") != std::string::npos;
    return (isOwnFile ? runtime->string() + ":" : "") + options.shim.string();
}

/// What the child's environment has besides ours. Software OpenGL draws some hundred times slower than the processor
/// path that a module may have; modules without one do not look at the variable.
std::vector<std::string> ChildEnvironment(const Check& check, const CheckRunOptions& options) {
    std::vector<std::string> environment;
    const bool aboutGl = check.needs == Needs::kOpenGl || check.needs == Needs::kShim;
    const char* asked = std::getenv("UMBRANT_RENDERER");
    if (options.softwareGl && !aboutGl && (!asked || !*asked)) {
        environment.emplace_back("UMBRANT_RENDERER=cpu");
    }
    if (check.needs == Needs::kStrictHeap) {
        environment.emplace_back("GLIBC_TUNABLES=glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0");
    }
    if (SanitizerRuntime()) {
        // The race checker ends a fork's child that starts threads, unless an option prevents it.
        const char* given = std::getenv("TSAN_OPTIONS");
        environment.push_back(fmt::format("TSAN_OPTIONS={}:die_after_fork=0", given ? given : ""));
    }
    if (check.needs == Needs::kShim && !options.shim.empty()) environment.push_back("LD_PRELOAD=" + Preloaded(options));
    return environment;
}

}  // namespace

std::vector<std::string> ChildArguments(const std::string& id, const CheckRunOptions& options) {
    std::vector<std::string> arguments{"validate",       options.module.string(),
                                       "--run-check",    id,
                                       "--seed",         std::to_string(options.seed),
                                       "--timeout-ms",   std::to_string(options.timeoutMilliseconds),
                                       "--soak-seconds", std::to_string(options.soakSeconds)};
    if (options.softwareGl) arguments.emplace_back("--software-gl");
    if (options.fault) arguments.insert(arguments.end(), {"--fault", options.fault->Text()});
    if (!options.trace.empty()) arguments.insert(arguments.end(), {"--trace", options.trace.string()});
    return arguments;
}

std::string OutputFile(int number) {
    return fmt::format("{}/umbrant_check_{}_{}", std::filesystem::temp_directory_path().string(), getpid(), number);
}

double MillisecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

void Take(CheckOutcome& outcome, const CheckResult& result, std::uint64_t seed, double milliseconds) {
    const auto heavy = [](const CheckResult& r) {
        return std::any_of(r.findings.begin(), r.findings.end(),
                           [](const Finding& finding) { return finding.weight != Verdict::kWarn; });
    };
    if (!heavy(outcome.result) && heavy(result)) outcome.seed = seed;
    CheckRunOptions any;
    CheckRun merged(any);
    merged.Merge(outcome.result);
    merged.Merge(result);
    outcome.result = merged.Result();
    outcome.milliseconds += milliseconds;
}

Scheduler::Scheduler(std::vector<CheckOutcome>& outcomes, std::function<void(std::size_t)> ended)
    : outcomes_(outcomes), ended_(std::move(ended)), atOnce_(static_cast<std::size_t>(ProcessorCount())) {}

void Scheduler::Run(const std::vector<Job>& jobs) {
    for (const Job& job : jobs) {
        const Check& check = *outcomes_[job.place].check;
        const bool alone = check.needs == Needs::kQuiet || check.needs == Needs::kSoakTime || check.patience > 1;
        while (children_.size() >= (alone ? 1 : atOnce_)) WaitForEnd();
        Start(job, check);
        while (alone && !children_.empty()) WaitForEnd();
    }
    while (!children_.empty()) WaitForEnd();
}

void Scheduler::Start(const Job& job, const Check& check) {
    int limit = job.options.timeoutMilliseconds * check.patience;
    if (check.needs == Needs::kSoakTime) limit += job.options.soakSeconds * 1000;
    Child child = StartCopy(ChildArguments(check.id, job.options), ChildEnvironment(check, job.options),
                            OutputFile(started_++), limit);
    if (!child.process) {
        CheckResult failed;
        failed.verdict = Verdict::kFail;
        failed.findings.push_back({"no process could be started for the check", Verdict::kFail, {}, {}});
        Take(outcomes_[job.place], failed, job.options.seed, 0);
        ended_(job.place);
        return;
    }
    children_.push_back(std::move(child));
    running_.push_back({job, std::chrono::steady_clock::now()});
}

void Scheduler::WaitForEnd() {
    const std::size_t i = WaitForOne(children_);
    const Running running = running_[i];
    CheckOutcome& outcome = outcomes_[running.job.place];
    Take(outcome, ResultOf(children_[i], fmt::format("check {}", outcome.check->id)), running.job.options.seed,
         MillisecondsSince(running.begin));
    std::filesystem::remove(children_[i].output);
    children_.erase(children_.begin() + static_cast<std::ptrdiff_t>(i));
    running_.erase(running_.begin() + static_cast<std::ptrdiff_t>(i));
    ended_(running.job.place);
}

}  // namespace umbrant::host
