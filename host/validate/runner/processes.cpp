// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/processes.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <filesystem>
#include <system_error>

#include "host/validate/runner/check_process.h"
#include "host/validate/runner/process_memory.h"

namespace umbrant::host {

namespace {

/// Gives threads of a fork's child larger stacks than the C library keeps from the parent's: the race checker takes the
/// parent's threads for alive, and one on the same stack for the same.
void UseFreshStacks() {
    pthread_attr_t attributes;
    if (!SanitizerRuntime() || pthread_getattr_default_np(&attributes) != 0) return;
    std::size_t size = 0;
    pthread_attr_getstacksize(&attributes, &size);
    pthread_attr_setstacksize(&attributes, size + size / 4);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
}

Child ForkPart(const SubCheck& part, const CheckRunOptions& options, const std::string& output) {
    Child child;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return child;
    child.results = ends[0];
    child.output = output;
    child.deadline = DeadlineIn(options.timeoutMilliseconds + part.moreMilliseconds);
    const pid_t process = fork();
    if (process == 0) {
        setpgid(0, 0);
        BecomeChild();
        UseFreshStacks();
        const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        if (file >= 0) {
            dup2(file, STDOUT_FILENO);
            dup2(file, STDERR_FILENO);
        }
        SendResult(ends[1], RunToEnd(part.run, options));
        // Like a crash, but silent: nothing of the copied process is to be torn down twice.
        _exit(0);
    }
    close(ends[1]);
    if (process > 0) {
        child.process = ChildProcess::OfFork(process);
    } else {
        close(ends[0]);
    }
    return child;
}

}  // namespace

void BecomeChild() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

int ProcessorCount() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof(set), &set) != 0) return 1;
    return std::max(1, CPU_COUNT(&set));
}

CheckResult RunToEnd(const std::function<void(CheckRun&)>& check, const CheckRunOptions& options) {
    CheckRun run(options);
    try {
        check(run);
    } catch (const CheckRunOver&) {
    } catch (const std::system_error& problem) {
        // A limit of this machine says nothing about the module.
        if (problem.code() == std::errc::resource_unavailable_try_again) {
            try {
                run.Skip("the system allows no thread");
            } catch (const CheckRunOver&) {
            }
        } else {
            run.Fail(fmt::format("the check itself failed: {}", problem.what()));
        }
    } catch (const std::exception& problem) {
        run.Fail(fmt::format("the check itself failed: {}", problem.what()));
    }
    return run.Result();
}

namespace {

std::string PartOutput(std::size_t number) {
    return fmt::format("{}/umbrant_part_{}_{}", std::filesystem::temp_directory_path().string(), getpid(), number);
}

/// A part's result with what the part says about its findings.
CheckResult Weighed(CheckResult result, const SubCheck& part) {
    for (Finding& finding : result.findings) {
        if (finding.repeat.empty()) finding.repeat = part.repeat;
        if (part.warnOnly) finding.weight = Verdict::kWarn;
    }
    return result;
}

}  // namespace

CheckResult RunSubCheck(const CheckRun& run, const SubCheck& part) {
    if (run.Options().inProcess) return Weighed(RunToEnd(part.run, run.Options()), part);
    std::vector<Child> children;
    const std::string output = PartOutput(0);
    children.push_back(ForkPart(part, run.Options(), output));
    CheckResult result;
    if (!children[0].process) return result;
    WaitForOne(children);
    result = Weighed(ResultOf(children[0], part.name), part);
    std::filesystem::remove(output);
    return result;
}

void RunSubChecks(CheckRun& run, const std::vector<SubCheck>& subChecks) {
    for (const CheckResult& result : RunSubChecksApart(run, subChecks)) run.Merge(result);
}

std::vector<CheckResult> RunSubChecksApart(const CheckRun& run, const std::vector<SubCheck>& subChecks) {
    std::vector<CheckResult> results(subChecks.size());
    if (run.Options().inProcess) {
        for (std::size_t i = 0; i < subChecks.size(); ++i) {
            results[i] = Weighed(RunToEnd(subChecks[i].run, run.Options()), subChecks[i]);
        }
        return results;
    }
    std::vector<Child> children;
    std::vector<std::size_t> running;
    std::size_t next = 0;
    const auto atOnce = static_cast<std::size_t>(ProcessorCount());
    while (next < subChecks.size() || !children.empty()) {
        while (next < subChecks.size() && children.size() < atOnce) {
            Child child = ForkPart(subChecks[next], run.Options(), PartOutput(next));
            if (!child.process) {
                results[next].verdict = Verdict::kFail;
                results[next].findings.push_back(
                    {"no process could be started for a part of the check", Verdict::kFail, {}, {}});
            } else {
                children.push_back(std::move(child));
                running.push_back(next);
            }
            ++next;
        }
        if (children.empty()) continue;
        const std::size_t ended = WaitForOne(children);
        const SubCheck& part = subChecks[running[ended]];
        results[running[ended]] = Weighed(ResultOf(children[ended], part.name), part);
        std::filesystem::remove(children[ended].output);
        children.erase(children.begin() + static_cast<std::ptrdiff_t>(ended));
        running.erase(running.begin() + static_cast<std::ptrdiff_t>(ended));
    }
    return results;
}

}  // namespace umbrant::host
