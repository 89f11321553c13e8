// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/faults/fault_fixture.h"

#include <fmt/format.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <new>
#include <utility>

#include "host/accounting/ledger.h"
#include "host/parameters/param_path.h"
#include "host/session/error_names.h"
#include "host/validate/checks/panel_events.h"

namespace umbrant::host {

namespace {

constexpr char kCounted[] = "call ";
constexpr std::size_t kBatch = 80;

/// Counts the calls of the host that it is asked about, and refuses one of them.
class FaultSwitch {
 public:
    PF_Err Ask(std::string_view call) {
        if (!armed_) return PF_Err_NONE;
        int& count = counts[std::string(call)];
        ++count;
        if (call != plan_.callee || count != plan_.call) return PF_Err_NONE;
        reached = true;
        return plan_.error;
    }
    void Arm(const FaultPlan& plan) {
        plan_ = plan;
        counts.clear();
        reached = false;
        armed_ = true;
    }
    void Disarm() { armed_ = false; }

    std::map<std::string, int> counts;
    bool reached = false;

 private:
    bool armed_ = false;
    FaultPlan plan_;
};

/// A session in which faults happen.
class FaultFixture {
 public:
    explicit FaultFixture(CheckRun& run) : fixture(run, Options()) { fixture.Cheapen(); }

    SessionOptions Options() {
        SessionOptions options;
        options.fault = [this](std::string_view call) { return faults.Ask(call); };
        options.afterCommand = [this](const CommandArguments& sent, PF_Err error) {
            if (!error && !sent.out->return_msg[0]) return;
            const char* text = sent.out->return_msg;
            const void* end = std::memchr(text, '\0', sizeof(sent.out->return_msg));
            if (!end) messageEnded = false;
            lastMessage.assign(text, end ? static_cast<const char*>(end) : text + sizeof(sent.out->return_msg));
        };
        return options;
    }

    FaultSwitch faults;
    bool messageEnded = true;
    std::string lastMessage;
    CheckFixture fixture;
};

/// Something that a session does; gives the digest of what was drawn.
struct Scenario {
    std::string name;
    std::function<std::uint64_t(FaultFixture&)> run;
    bool fromDown = false;  ///< begins with a session that is not set up, and ends with one
};

std::uint64_t DrawVariant(FaultFixture& fixture, const Variant& variant, Depth depth) {
    const World layer = TestPicture(24, 20, depth);
    ParamSet params = fixture.fixture.Session().Params();
    variant.apply(params);
    FrameRequest request;
    request.layer = &layer;
    request.params = &params;
    request.texture = &layer;
    request.canvas = Canvas::kLayer;
    const auto frame = fixture.fixture.Session().Render(request);
    return frame ? DigestOf(frame->output) : 0;
}

std::vector<Scenario> ScenariosOf(FaultFixture& fixture) {
    std::vector<Scenario> scenarios;
    bool first = true;
    for (const Variant& variant : StyleVariants(fixture.fixture.Session().Params(), 3)) {
        scenarios.push_back({"a frame with " + variant.name,
                             [variant](FaultFixture& l) { return DrawVariant(l, variant, Depth::k8); }});
        if (std::exchange(first, false)) {
            scenarios.push_back(
                {"a frame at 32 bits", [variant](FaultFixture& l) { return DrawVariant(l, variant, Depth::k32); }});
        }
    }
    scenarios.push_back({"an update of the panel", [](FaultFixture& l) {
                             const auto updated = l.fixture.Session().UpdateParamsUI();
                             return std::uint64_t{updated ? 1u : 0u};
                         }});
    scenarios.push_back({"about", [](FaultFixture& l) {
                             const auto about = l.fixture.Session().About();
                             return std::uint64_t{about ? 1u : 0u};
                         }});
    scenarios.push_back({"draw events", [](FaultFixture& l) {
                             bool well = true;
                             for (const int row : SelfDrawnRows(l.fixture.Session())) {
                                 UnseenCanvas canvas;
                                 PF_EventExtra event = canvas.Event(PF_Event_DRAW, row, {100, 0, 300, 120});
                                 well = bool(l.fixture.Session().SendEvent(&event)) && well;
                             }
                             return std::uint64_t{well ? 1u : 0u};
                         }});
    scenarios.push_back({"set-up and set-down",
                         [](FaultFixture& l) {
                             const auto up = l.fixture.Session().SetUp();
                             if (!up) return std::uint64_t{0};
                             return std::uint64_t{l.fixture.Session().End() ? 2u : 1u};
                         },
                         true});
    return scenarios;
}

/// Whether the event is the one that was made to fail: a suite is refused behind the fault hook's own name for it.
bool IsRefused(const Event& event, const FaultPlan& plan) {
    if (event.faulted) return true;
    if (event.callee != "SP Basic Suite.AcquireSuite" || !plan.callee.starts_with("AcquireSuite:")) return false;
    return plan.callee.substr(std::strlen("AcquireSuite:")) == event.arguments.at(0).text &&
           (event.Failed() || event.arguments.at(2).after == 0);
}

/// Runs a scenario with a fault, or with none, and writes down what came of it.
FaultOutcome RunScenario(FaultFixture& fixture, const Scenario& scenario, const FaultPlan& plan,
                         std::uint64_t* digest) {
    EffectSession& session = fixture.fixture.Session();
    if (scenario.fromDown) static_cast<void>(bool(session.End()));
    const std::size_t seen = session.Misbehaviour().size();
    fixture.fixture.Log().Clear();
    fixture.messageEnded = true;
    fixture.lastMessage.clear();
    fixture.faults.Arm(plan);
    *digest = scenario.run(fixture);
    fixture.faults.Disarm();

    FaultOutcome outcome;
    outcome.plan = plan;
    outcome.scenario = scenario.name;
    outcome.reached = fixture.faults.reached;
    outcome.messageEnded = fixture.messageEnded;
    outcome.message = fixture.lastMessage;
    const std::vector<Event> events = fixture.fixture.Log().Events();
    std::uint64_t command = 0;
    bool refused = false;
    for (const Event& event : events) {
        if (IsRefused(event, plan) && !refused) {
            refused = true;
            command = event.command;
            continue;
        }
        if (refused && event.command == command && !event.isCommand && outcome.laterCall.empty() &&
            !GivesBack(event.callee)) {
            outcome.laterCall = event.callee;
        }
    }
    for (const Event& event : events) {
        if (!event.isCommand || event.sequence != command) continue;
        outcome.command = event.callee;
        outcome.error = static_cast<PF_Err>(event.result);
    }
    // A world or a suite that stays open after a refusal stays open for good; global data of a session that is up is
    // not among these events.
    outcome.uneven = UnevenRows(events);
    const std::vector<std::string> misbehaviour = session.Misbehaviour();
    outcome.misbehaviour.assign(misbehaviour.begin() + static_cast<std::ptrdiff_t>(seen), misbehaviour.end());
    if (scenario.fromDown) static_cast<void>(bool(session.SetUp()));
    return outcome;
}

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
                              const std::vector<Scenario> scenarios = ScenariosOf(fixture);
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
    const std::vector<Scenario> scenarios = ScenariosOf(fixture);
    std::map<std::size_t, std::uint64_t> usual;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        const Job& job = jobs[i];
        if (job.scenario >= scenarios.size()) continue;
        const Scenario& scenario = scenarios[job.scenario];
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
