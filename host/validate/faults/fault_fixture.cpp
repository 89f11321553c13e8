// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/faults/fault_fixture.h"

#include <fmt/format.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "host/parameters/param_path.h"
#include "host/validate/faults/fault_scenarios.h"

namespace umbrant::host {

namespace {

constexpr char kCounted[] = "call ";
constexpr std::size_t kBatch = 80;

/// One fault in one scenario.
struct Job {
    std::size_t scenario;
    FaultPlan plan;
};

/// The calls of every scenario, counted in a fork: the names of figures carry them.
std::vector<Job> CountCalls(CheckRun& run, const FaultRules& rules) {
    const CheckResult counted =
        RunSubCheck(run, {"counting the calls", [&](CheckRun& part) {
                              FaultFixture fixture(part);
                              const std::vector<FaultScenario> scenarios = ScenariosOf(fixture);
                              for (std::size_t i = 0; i < scenarios.size(); ++i) {
                                  std::uint64_t digest = 0;
                                  RunScenario(fixture, scenarios[i], {}, &digest);
                                  for (const auto& [callee, count] : fixture.faults.counts) {
                                      part.Count(fmt::format("{}{} {}", kCounted, i, callee), count);
                                  }
                              }
                          }});
    std::vector<Job> jobs;
    for (const Finding& finding : counted.findings) run.Note(finding);
    for (const auto& [name, count] : counted.figures) {
        if (!name.starts_with(kCounted)) continue;
        const std::string rest = name.substr(std::strlen(kCounted));
        const std::size_t space = rest.find(' ');
        const auto scenario = static_cast<std::size_t>(std::stoul(rest.substr(0, space)));
        const std::string callee = rest.substr(space + 1);
        if (!rules.isMeant(callee)) continue;
        if (run.Options().fault) run.NoteCall(callee, static_cast<int>(count));
        for (const PF_Err error : rules.errors) {
            for (int call = 1; call <= static_cast<int>(count); ++call)
                jobs.push_back({scenario, {callee, call, error}});
        }
    }
    return jobs;
}

/// How far a batch has come, seen from outside of its process.
class FaultProgress {
 public:
    FaultProgress() {
        void* page =
            mmap(nullptr, sizeof(std::atomic<std::size_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (page != MAP_FAILED) begun_ = new (page) std::atomic<std::size_t>(0);
    }
    ~FaultProgress() { munmap(begun_, sizeof(std::atomic<std::size_t>)); }
    FaultProgress(const FaultProgress&) = delete;
    FaultProgress& operator=(const FaultProgress&) = delete;
    std::atomic<std::size_t>& Begun() { return *begun_; }

 private:
    std::atomic<std::size_t>* begun_ = nullptr;
};

std::string OptionFor(const FaultPlan& plan) {
    return fmt::format("--fault '{}'", plan.Text());
}

/// Runs jobs in one process; the caller reports a crash, and the job from how far the process came.
void RunBatch(CheckRun& part, const FaultRules& rules, const std::vector<Job>& jobs, std::atomic<std::size_t>& begun) {
    FaultFixture fixture(part);
    const std::vector<FaultScenario> scenarios = ScenariosOf(fixture);
    std::map<std::size_t, std::uint64_t> usual;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        const Job& job = jobs[i];
        if (job.scenario >= scenarios.size()) continue;
        const FaultScenario& scenario = scenarios[job.scenario];
        if (!usual.contains(job.scenario)) RunScenario(fixture, scenario, {}, &usual[job.scenario]);
        begun = i + 1;
        std::uint64_t digest = 0;
        FaultOutcome outcome = RunScenario(fixture, scenario, job.plan, &digest);
        outcome.samePixels = digest == usual[job.scenario];
        if (!outcome.reached) continue;
        part.Count("faults");
        CheckRun judged(part.Options());
        rules.judge(judged, outcome);
        CheckResult result = judged.Result();
        for (Finding& finding : result.findings) finding.repeat = OptionFor(job.plan);
        part.Merge(result);
    }
    // What a fault left open is reported above; the session's own balance would report it again.
    fixture.fixture.Forget();
}

}  // namespace

bool GivesBack(const std::string& callee) {
    for (const char* word : {"checkin", "Release", "ispose", "nlock", "Free", "sprintf", "AcquireSuite"}) {
        if (callee.find(word) != std::string::npos) return true;
    }
    return false;
}

std::string ClosestCall(const std::string& name, const std::vector<std::string>& callees) {
    const auto distance = [&](const std::string& callee) {
        return std::min(EditDistance(name, callee), EditDistance(name, callee.substr(callee.find_last_of(".:") + 1)));
    };
    const auto closest = std::min_element(callees.begin(), callees.end(),
                                          [&](const auto& a, const auto& b) { return distance(a) < distance(b); });
    return closest == callees.end() ? std::string() : *closest;
}

bool ReturnsNoError(const std::string& callee) {
    for (const char* word : {"host_", "ANSI", "ansi", "IsEqual"}) {
        if (callee.find(word) != std::string::npos) return true;
    }
    return false;
}

/// Leaves the jobs of one fault, with the error that it asks for. A suite handed out as null has no error code.
void KeepOnly(const FaultPlan& one, const FaultRules& rules, std::vector<Job>& jobs) {
    const bool isUsual = std::find(rules.errors.begin(), rules.errors.end(), one.error) != rules.errors.end();
    const bool isSpecial = one.error == kLendNothing || rules.errors.front() == kLendNothing;
    const PF_Err replaced = isUsual || isSpecial ? one.error : rules.errors.front();
    std::erase_if(jobs, [&](const Job& job) {
        return job.plan.callee != one.callee || job.plan.call != one.call || job.plan.error != replaced;
    });
    for (Job& job : jobs) job.plan.error = one.error;
}

void InjectFaults(CheckRun& run, const FaultRules& rules) {
    std::vector<Job> jobs = CountCalls(run, rules);
    if (const auto& one = run.Options().fault) KeepOnly(*one, rules, jobs);
    // Batches side by side; a batch that ends early hands its rest to a new one.
    std::deque<std::vector<Job>> waiting;
    for (std::size_t first = 0; first < jobs.size(); first += kBatch) {
        waiting.emplace_back(jobs.begin() + static_cast<std::ptrdiff_t>(first),
                             jobs.begin() + static_cast<std::ptrdiff_t>(std::min(first + kBatch, jobs.size())));
    }
    while (!waiting.empty()) {
        std::vector<std::vector<Job>> round(waiting.begin(), waiting.end());
        waiting.clear();
        std::vector<std::unique_ptr<FaultProgress>> progress;
        std::vector<SubCheck> subChecks;
        for (const std::vector<Job>& batch : round) {
            progress.push_back(std::make_unique<FaultProgress>());
            subChecks.push_back({"a fault", [&rules, &batch, &begun = progress.back()->Begun()](CheckRun& part) {
                                     RunBatch(part, rules, batch, begun);
                                     begun = batch.size() + 1;
                                 }});
        }
        const std::vector<CheckResult> results = RunSubChecksApart(run, subChecks);
        for (std::size_t i = 0; i < round.size(); ++i) {
            const std::size_t begun = progress[i]->Begun();
            CheckResult result = results[i];
            if (begun > 0 && begun <= round[i].size()) {
                const Job& culprit = round[i][begun - 1];
                for (Finding& finding : result.findings) {
                    if (finding.weight != Verdict::kCrash && finding.weight != Verdict::kTimeout) continue;
                    finding.text = fmt::format("with {} refused: {}", culprit.plan.Text(), finding.text);
                    finding.repeat = OptionFor(culprit.plan);
                }
                waiting.emplace_back(round[i].begin() + static_cast<std::ptrdiff_t>(begun), round[i].end());
                if (waiting.back().empty()) waiting.pop_back();
            }
            run.Merge(result);
        }
    }
}

}  // namespace umbrant::host
