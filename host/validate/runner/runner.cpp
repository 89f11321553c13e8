// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/runner.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>

#include "host/drawing/new_drawing.h"
#include "host/session/effect_session.h"
#include "host/suites/offered_rows.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/faults/fault_fixture.h"
#include "host/validate/runner/check_process.h"
#include "host/validate/runner/pattern.h"
#include "host/validate/runner/processes.h"
#include "host/validate/runner/scheduler.h"
#include "host/validate/runner/trace.h"
#include "host/validate/runner/waivers.h"

namespace umbrant::host {

namespace {

constexpr char kProbe[] = "probe";

/// Looks once, before the checks, which renderer the module has. The checks will report what goes wrong here.
void Probe(CheckRun& run) {
    auto module = Module::Load(run.Options().module);
    if (!module) return;
    SessionOptions about;
    about.renderer = run.Options().rendererOfProbe;
    auto session = EffectSession::Start(*module, std::move(about));
    if (session && run.Options().isProcessorBetter(session->Params())) run.Count("software");
}

/// Prints outcomes in the checks' order, as soon as all before them are known.
class InOrder {
 public:
    InOrder(std::size_t count, int repeat, std::function<void(std::size_t)> print)
        : left_(count, repeat), print_(std::move(print)) {}
    void Ended(std::size_t place) {
        --left_[place];
        for (; next_ < left_.size() && left_[next_] == 0; ++next_) print_(next_);
    }

 private:
    std::vector<int> left_;
    std::size_t next_ = 0;
    std::function<void(std::size_t)> print_;
};

bool ProbeSoftware(const CheckRunOptions& options) {
    std::vector<Child> children;
    children.push_back(StartCopy(ChildArguments(kProbe, options), {}, OutputFile(-1), options.timeoutMilliseconds));
    if (!children[0].process) return false;
    WaitForOne(children);
    std::filesystem::remove(children[0].output);
    return ResultOf(children[0], kProbe).figures.contains("software");
}

/// What check 1.1 says about the file, chosen or not: without a module no other check has a subject.
CheckOutcome JudgeFile(const CheckRunOptions& options) {
    CheckOutcome outcome;
    outcome.check = &AllChecks().front();
    outcome.seed = options.seed;
    const auto begin = std::chrono::steady_clock::now();
    if (options.inProcess) {
        outcome.result = RunToEnd(outcome.check->run, options);
    } else {
        std::vector<Child> children;
        children.push_back(
            StartCopy(ChildArguments(outcome.check->id, options), {}, OutputFile(-2), options.timeoutMilliseconds));
        if (!children[0].process) return outcome;
        WaitForOne(children);
        std::filesystem::remove(children[0].output);
        outcome.result = ResultOf(children[0], outcome.check->id);
    }
    outcome.milliseconds = MillisecondsSince(begin);
    return outcome;
}

bool TakesFaults(const Check* check) {
    return check->takesFaults;
}

/// A check that had no use for the fault that was asked for did not pass.
void NoteUnused(const FaultPlan& fault, CheckOutcome& outcome) {
    const bool was = outcome.result.figures.contains("faults");
    if (!TakesFaults(outcome.check) || was || outcome.result.verdict != Verdict::kPass) return;
    outcome.result.verdict = Verdict::kSkip;
    outcome.result.skipReason = fmt::format("the fault '{}' was not reached", fault.Text());
}

/// What is wrong with a fault that no chosen check could reach.
Failure HasNoUse(const FaultPlan& fault) {
    return {ErrorKind::kUsage,
            fmt::format("--fault '{}': no check is chosen that refuses host calls (7.1, 7.2, 7.3 and 9.6); "
                        "--strictness 7 chooses three of them",
                        fault.Text())};
}

/// What is wrong with a fault that no check reached.
Failure Unreached(const FaultPlan& fault, const std::vector<CheckOutcome>& outcomes) {
    std::map<std::string, int> calls;
    for (const CheckOutcome& outcome : outcomes) {
        for (const auto& [callee, times] : outcome.result.calls) calls[callee] = std::max(calls[callee], times);
    }
    std::vector<std::string> names;
    for (const auto& [callee, times] : calls) names.push_back(callee);
    std::string reason = "the module makes no call that these checks let fail";
    if (const auto same = calls.find(fault.callee); same != calls.end()) {
        reason = fmt::format("that call came {} times at most; K from 1 to {} would work", same->second, same->second);
    } else if (const auto closest = ClosestCall(fault.callee, names); !closest.empty()) {
        reason =
            fmt::format("there was no such call; the closest is '{}', with K from 1 to {}", closest, calls[closest]);
    }
    return {ErrorKind::kUsage, fmt::format("--fault '{}': {}", fault.Text(), reason)};
}

/// What the runs of a check come to, with the waivers and the fault that were asked for.
void Conclude(CheckOutcome& outcome, const RunnerOptions& options, std::vector<Waiver>& waivers) {
    ApplyWaivers(*outcome.check, outcome.result, waivers);
    if (options.check.fault) NoteUnused(*options.check.fault, outcome);
    // One fault alone, or a check that was skipped, says nothing about what the others would have found.
    if (options.check.fault || outcome.result.verdict == Verdict::kSkip) return;
    for (const Finding& finding : UnusedWaivers(*outcome.check, waivers)) {
        outcome.result.findings.push_back(finding);
        outcome.result.verdict = Verdict::kFail;
    }
}

/// Every check as often as was asked for, each time with the next seed.
std::vector<Job> JobsOf(std::size_t checks, const RunnerOptions& options) {
    std::vector<Job> jobs;
    for (std::size_t place = 0; place < checks; ++place) {
        for (int i = 0; i < options.repeat; ++i) {
            Job job{place, options.check};
            job.options.seed += static_cast<std::uint64_t>(i);
            jobs.push_back(job);
        }
    }
    return jobs;
}

void RunJobs(const std::vector<Job>& jobs, const RunnerOptions& options, std::vector<CheckOutcome>& outcomes,
             InOrder& order) {
    if (!options.check.inProcess) {
        Scheduler(outcomes, [&](std::size_t place) { order.Ended(place); }).Run(jobs);
        return;
    }
    for (const Job& job : jobs) {
        const auto begin = std::chrono::steady_clock::now();
        const CheckResult result = RunToEnd(outcomes[job.place].check->run, job.options);
        Take(outcomes[job.place], result, job.options.seed, MillisecondsSince(begin));
        order.Ended(job.place);
    }
}

Result<Pattern> PatternOf(const std::string& text, const char* option) {
    const std::optional<Pattern> pattern = Pattern::Of(text);
    if (!pattern) return Failure{ErrorKind::kUsage, fmt::format("{} '{}' is not a regular expression", option, text)};
    return *pattern;
}

}  // namespace

Totals TotalsOf(const std::vector<CheckOutcome>& outcomes) {
    Totals totals;
    for (const CheckOutcome& outcome : outcomes) {
        switch (outcome.result.verdict) {
            case Verdict::kPass:
            case Verdict::kWarn:
                ++totals.passed;
                break;
            case Verdict::kSkip:
                ++totals.skipped;
                break;
            case Verdict::kWaived:
                ++totals.waived;
                break;
            default:
                ++totals.failed;
        }
    }
    return totals;
}

Result<std::vector<const Check*>> ChosenChecks(const RunnerOptions& options) {
    const auto include = TRY(PatternOf(options.include, "--include"));
    const auto exclude = TRY(PatternOf(options.exclude, "--exclude"));
    std::vector<const Check*> chosen;
    for (const Check& check : AllChecks()) {
        const std::string text = fmt::format("{} {}", check.id, check.title);
        if (check.Level() > options.strictness || !include.IsIn(text)) continue;
        if (!options.exclude.empty() && exclude.IsIn(text)) continue;
        chosen.push_back(&check);
    }
    if (chosen.empty()) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("no check of level {} or below is chosen; --list shows them", options.strictness)};
    }
    return chosen;
}

Result<std::vector<CheckOutcome>> RunChecks(const RunnerOptions& asked, void (*print)(const std::string&)) {
    const WithoutRows asOtherHosts;
    RunnerOptions options = asked;
    const auto chosen = TRY(ChosenChecks(options));
    std::vector<Waiver> waivers;
    if (!options.waivers.empty()) {
        auto read = TRY(ReadWaivers(options.waivers));
        waivers = std::move(read);
    }
    if (options.check.fault && std::none_of(chosen.begin(), chosen.end(), TakesFaults)) {
        return HasNoUse(*options.check.fault);
    }
    if (!options.check.trace.empty() && !BeginTrace(options.check.trace)) {
        return Failure{ErrorKind::kFile, fmt::format("cannot write the trace '{}'", options.check.trace.string())};
    }

    std::vector<CheckOutcome> outcomes;
    const auto report = [&] {
        if (!options.check.trace.empty()) EndTrace(options.check.trace);
        if (options.report == "text") print(TextSummary(outcomes));
        if (options.report == "json") print(JsonOf(options, outcomes));
        if (options.report == "junit") print(JunitOf(options, outcomes));
    };
    if (const CheckOutcome file = JudgeFile(options.check); file.result.isNoModule) {
        outcomes.push_back(file);
        if (options.report == "text") print(TextOf(options, file));
        report();
        return outcomes;
    }
    // What is wrong with this program is not the module's failure.
    const auto draws = [](const Check* check) { return check->Level() >= kFirstDrawingLevel; };
    if (std::any_of(chosen.begin(), chosen.end(), draws)) {
        TRY(CheckCanDraw(kCanvasName));
    }
    for (const Check* check : chosen) {
        CheckOutcome outcome;
        outcome.check = check;
        outcome.seed = options.check.seed;
        outcomes.push_back(outcome);
    }
    InOrder order(outcomes.size(), options.repeat, [&](std::size_t place) {
        Conclude(outcomes[place], options, waivers);
        if (options.report == "text") print(TextOf(options, outcomes[place]));
    });
    const bool canProbe = !options.check.inProcess && options.check.isProcessorBetter;
    if (canProbe) options.check.softwareGl = ProbeSoftware(options.check);
    RunJobs(JobsOf(outcomes.size(), options), options, outcomes, order);
    report();
    const auto reached = [](const CheckOutcome& outcome) { return outcome.result.figures.contains("faults"); };
    if (options.check.fault && TotalsOf(outcomes).failed == 0 &&
        std::none_of(outcomes.begin(), outcomes.end(), reached)) {
        return Unreached(*options.check.fault, outcomes);
    }
    return outcomes;
}

Result<Done> RunOneCheck(const std::string& id, const CheckRunOptions& options, int resultDescriptor) {
    const WithoutRows asOtherHosts;
    BecomeChild();
    if (id == kProbe) {
        SendResult(resultDescriptor, RunToEnd(Probe, options));
        return Done{};
    }
    for (const Check& check : AllChecks()) {
        if (id != check.id) continue;
        if (!options.trace.empty()) NameTraceProcess(options.trace, fmt::format("{} {}", check.id, check.title));
        SendResult(resultDescriptor, RunToEnd(check.run, options));
        return Done{};
    }
    return Failure{ErrorKind::kUsage, fmt::format("there is no check '{}'; --list shows them", id)};
}

}  // namespace umbrant::host
