// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 7: host calls that are refused, suites that are missing, memory that cannot be had, and a second module of the
// same kind with the first.

#include <dlfcn.h>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "host/session/error_names.h"
#include "host/validate/faults/fault_fixture.h"

namespace umbrant::host {

namespace {

/// An error that nobody has a name for, so that no effect can give it by chance.
constexpr PF_Err kNamelessError = 1001;

std::string Where(const FaultOutcome& outcome) {
    return fmt::format("{}: with {} refused, ", outcome.scenario, outcome.plan.Text());
}

/// Whether a thing can only be given back through the suite that was refused.
bool NeedsRefusedSuite(const FaultOutcome& outcome, Resource resource) {
    const std::pair<const char*, Resource> kWays[] = {
        {"PF Handle Suite", Resource::kHandle},   {"PF Handle Suite", Resource::kLock},
        {"PF World Suite", Resource::kWorld},     {"AEGP Effect Suite", Resource::kEffectRef},
        {"AEGP Stream Suite", Resource::kStream}, {"DRAWBOT Supplier Suite", Resource::kDrawObject}};
    return std::any_of(std::begin(kWays), std::end(kWays), [&](const auto& way) {
        return resource == way.second && outcome.plan.callee == std::string("AcquireSuite:") + way.first;
    });
}

void JudgeBalance(CheckRun& run, const FaultOutcome& outcome) {
    for (const LedgerRow& row : outcome.uneven) {
        if (!NeedsRefusedSuite(outcome, row.resource)) run.Fail(Where(outcome) + row.sentence);
    }
    for (const std::string& sentence : outcome.misbehaviour) {
        // The host itself says so when a global set-down was cut short by the refusal.
        if (sentence.starts_with("still open after ")) continue;
        run.Fail(Where(outcome) + sentence);
    }
}

std::string CodeText(PF_Err error) {
    return fmt::format("{} ({})", error, ErrorName(error));
}

void JudgeRefusal(CheckRun& run, const FaultOutcome& outcome) {
    const bool mayIgnore = GivesBack(outcome.plan.callee);
    const bool returned = outcome.error == outcome.plan.error;
    if (!returned && !(mayIgnore && outcome.error == PF_Err_NONE)) {
        run.Fail(fmt::format("{}{} returns {} instead of {}", Where(outcome), outcome.command, CodeText(outcome.error),
                             CodeText(outcome.plan.error)));
    }
    if (!mayIgnore && !outcome.laterCall.empty()) {
        run.Fail(fmt::format("{}{} continues to call {}", Where(outcome), outcome.command, outcome.laterCall));
    }
    JudgeBalance(run, outcome);
}

void HandsErrorsBack(CheckRun& run) {
    InjectFaults(run, {[](const std::string& callee) {
                           return callee.find("Acquire") == std::string::npos &&
                                  callee != "SP Basic Suite.ReleaseSuite" && !ReturnsNoError(callee);
                       },
                       {kNamelessError, PF_Interrupt_CANCEL},
                       JudgeRefusal});
}

/// Where no code is required: an error, a message, or the image as it would have been.
void JudgeLoss(CheckRun& run, const FaultOutcome& outcome) {
    if (outcome.error == PF_Err_NONE && outcome.message.empty() && !outcome.samePixels) {
        run.Fail(fmt::format("{}{} returns no error and no message, but the frame differs", Where(outcome),
                             outcome.command));
    }
}

void StandsMissingSuites(CheckRun& run) {
    const auto isSuite = [](const std::string& callee) { return callee.starts_with("AcquireSuite:"); };
    InjectFaults(run, {isSuite, {A_Err_MISSING_SUITE}, [](CheckRun& judged, const FaultOutcome& outcome) {
                           JudgeLoss(judged, outcome);
                           if (!outcome.laterCall.empty() && outcome.error != PF_Err_NONE) {
                               judged.Fail(fmt::format("{}{} continues to call {}", Where(outcome), outcome.command,
                                                       outcome.laterCall));
                           }
                           JudgeBalance(judged, outcome);
                       }});
    InjectFaults(run, {isSuite, {kLendNothing}, JudgeLoss});
}

void StandsWantOfMemory(CheckRun& run) {
    InjectFaults(run, {[](const std::string& callee) {
                           for (const char* word : {"host_new_handle", "host_lock_handle", "NewWorld", "new_world",
                                                    "AllocateBlock", "host_resize_handle"}) {
                               if (callee.find(word) != std::string::npos) return true;
                           }
                           return false;
                       },
                       {PF_Err_OUT_OF_MEMORY},
                       [](CheckRun& judged, const FaultOutcome& outcome) {
                           JudgeLoss(judged, outcome);
                           JudgeBalance(judged, outcome);
                       }});
}

/// The digests of a few frames.
std::vector<std::uint64_t> Frames(EffectSession& session, CheckRun& run) {
    std::vector<std::uint64_t> digests;
    const World layer = TestPicture(40, 30, Depth::k8);
    for (int i = 0; i < 3; ++i) {
        FrameRequest request;
        request.layer = &layer;
        run.Count("frames");
        const auto frame = session.Render(request);
        digests.push_back(frame ? DigestOf(frame->output) : 0);
    }
    return digests;
}

/// A copy of the module's file that is gone at the end of the scope.
class SecondFile {
 public:
    explicit SecondFile(const std::filesystem::path& original)
        : path(std::filesystem::temp_directory_path() / fmt::format("umbrant_second_{}.so", getpid())) {
        std::error_code error;
        std::filesystem::copy_file(original, path, std::filesystem::copy_options::overwrite_existing, error);
        copied = !error;
    }
    ~SecondFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    SecondFile(const SecondFile&) = delete;
    SecondFile& operator=(const SecondFile&) = delete;
    const std::filesystem::path path;
    bool copied = false;
};

void LivesBesideAnother(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const auto alone = Frames(fixture.Session(), run);
    const SecondFile second(run.Options().module);
    if (!second.copied) run.Skip("the module's file cannot be copied");
    auto other = Module::Load(second.path);
    if (!other) run.FailAndEnd(fmt::format("a second copy: {}", other.error().sentence));
    auto session = EffectSession::Start(*other);
    if (!session) run.FailAndEnd(fmt::format("a second copy: {}", session.error().sentence));
    for (const int row : SettableRows(fixture.Session().Params())) {
        session->Params().RawRow(row).def.u = fixture.Session().Params().Row(row).def.u;
        session->Params().RawRow(row).point = fixture.Session().Params().Row(row).point;
    }
    if (Frames(*session, run) != alone) run.Fail("a second copy of the module draws another frame than the first");
    if (Frames(fixture.Session(), run) != alone)
        run.Fail("the module draws another frame while a second copy is loaded");
    const auto ended = session->End();
    if (!ended) run.Fail(fmt::format("a second copy: {}", ended.error().sentence));
    if (Frames(fixture.Session(), run) != alone) {
        run.Fail("the module draws another frame after a second copy was set down");
    }
}

}  // namespace

std::vector<Check> FaultChecks() {
    return {
        {"7.1", "an error or interrupt of the host is returned, and everything is released", HandsErrorsBack,
         Needs::kNothing, 10, true},
        {"7.2", "it survives any missing suite", StandsMissingSuites, Needs::kNothing, 4, true},
        {"7.3", "it survives a host that runs out of memory", StandsWantOfMemory, Needs::kNothing, 2, true},
        {"7.6", "a second copy of the module in the process changes nothing", LivesBesideAnother},
    };
}

}  // namespace umbrant::host
