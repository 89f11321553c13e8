// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 3: commands in every legal order, suites by the book, and nothing touched that is not the effect's.

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "host/accounting/ledger.h"
#include "host/session/error_names.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/commands/static_data_check.h"
#include "host/validate/checks/display.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

constexpr int kSide = 24;

/// A cheap frame of a small picture.
FrameRequest SmallRequest(const World& layer) {
    FrameRequest request;
    request.layer = &layer;
    request.canvas = Canvas::kLayer;
    return request;
}

/// One step of a session that is set up, by number; its name for findings.
std::string TakeStep(CheckRun& run, CheckFixture& fixture, int step, const World& layer) {
    EffectSession& session = fixture.Session();
    const auto judge = [&](const auto& result, const char* name) {
        if (!result) run.Fail(fmt::format("{}: {}", name, result.error().sentence));
        return std::string(name);
    };
    switch (step) {
        case 0:
            return judge(session.About(), "about");
        case 1:
            return judge(session.UpdateParamsUI(), "update of the panel");
        case 2: {
            const int row = run.Draw(0, session.Params().Count() - 1);
            // A button may open a page in a browser: pressing it is left to people.
            if (KindOf(session.Params().Row(row).def) == ParamKind::kButton) return "nothing";
            return judge(session.UserChangedParam(row), "change of a row");
        }
        case 3:
            return judge(session.PreRender(SmallRequest(layer)), "pre-render");
        case 4:
            run.Count("frames");
            return judge(session.Render(SmallRequest(layer)), "render");
        case 5:
            SendDrawEvents(run, fixture);
            return "draw events";
        default: {
            const CommandRecord record = session.Send(PF_Cmd_QUERY_DYNAMIC_FLAGS, nullptr, nullptr, nullptr);
            if (record.error) run.Fail(fmt::format("query of dynamic flags: {}", ErrorName(record.error)));
            return "query of dynamic flags";
        }
    }
}

/// Sessions of random legal commands; the first walks through every pair of steps in some order.
void TakesEveryOrder(CheckRun& run) {
    constexpr int kSteps = 7;
    constexpr int kSessions = 12;
    constexpr int kDepth = 6;
    const World layer = TestPicture(kSide, kSide, Depth::k8);
    const auto walk = [&](const std::vector<int>& steps) {
        CheckFixture fixture(run);
        fixture.Cheapen();
        std::string order = "set-up";
        for (const int step : steps) {
            const bool failedBefore = run.Failed();
            order += ", " + TakeStep(run, fixture, step, layer);
            run.Count("commands");
            if (run.Failed() && !failedBefore) run.Fail("the order was: " + order);
        }
        fixture.EndBalanced("after " + order);
    };
    std::vector<int> pairs;
    for (int first = 0; first < kSteps; ++first) {
        for (int second = 0; second < kSteps; ++second) pairs.insert(pairs.end(), {first, second});
    }
    walk(pairs);
    for (int i = 0; i < kSessions && !run.Failed(); ++i) {
        std::vector<int> steps;
        for (int depth = 0; depth < kDepth; ++depth) steps.push_back(run.Draw(0, kSteps - 1));
        walk(steps);
    }
}

/// Hides every OpenGL of this system from now on.
void HideDrivers() {
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/nonexistent", 1);
    setenv("__EGL_VENDOR_LIBRARY_DIRS", "/nonexistent", 1);
    setenv("LIBGL_DRIVERS_PATH", "/nonexistent", 1);
    setenv("GBM_DRIVERS_PATH", "/nonexistent", 1);
    setenv("VK_DRIVER_FILES", "/nonexistent", 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
}

/// A set-down that no set-up went before, or that was sent already.
void SendSetdown(CheckRun& run, EffectSession& session, const char* when) {
    const CommandRecord record = session.Send(PF_Cmd_GLOBAL_SETDOWN, nullptr, nullptr, nullptr);
    if (!record.balance.IsBalanced()) run.Fail(fmt::format("{} leaves {} open", when, record.balance.Text()));
}

void SetsUpAgainAndAgain(CheckRun& run) {
    std::vector<SubCheck> subChecks;
    subChecks.push_back({"set-up and set-down, 50 times",
                         [](CheckRun& part) {
                             CheckFixture fixture(part);
                             fixture.EndBalanced("after the first set-down");
                             for (int i = 0; i < 49 && !part.Failed(); ++i) {
                                 fixture.Log().Clear();
                                 if (const auto up = fixture.Session().SetUp(); !up)
                                     part.FailAndEnd(up.error().sentence);
                                 fixture.EndBalanced("after a later set-down");
                             }
                         },
                         {}});
    subChecks.push_back({"set-down twice",
                         [](CheckRun& part) {
                             CheckFixture fixture(part);
                             fixture.EndBalanced("after set-down");
                             SendSetdown(part, fixture.Session(), "a second set-down");
                         },
                         {}});
    subChecks.push_back({"set-down without set-up",
                         [](CheckRun& part) {
                             auto module = Module::Load(part.Options().module);
                             if (!module) part.FailAndEnd(module.error().sentence);
                             EffectSession session = EffectSession::Create(*module);
                             SendSetdown(part, session, "a set-down without set-up");
                         },
                         {}});
    subChecks.push_back({"set-up without any OpenGL driver",
                         [](CheckRun& part) {
                             HideDrivers();
                             auto module = Module::Load(part.Options().module);
                             if (!module) part.FailAndEnd(module.error().sentence);
                             // An error is an answer; a crash is none.
                             EffectSession session = EffectSession::Create(*module);
                             if (!session.SetUp()) return;
                             const World layer = TestPicture(kSide, kSide, Depth::k8);
                             const auto frame = session.Render(SmallRequest(layer));
                             if (frame && NotFinite(frame->output)) part.Fail("without a driver a frame is not finite");
                             if (const auto ended = session.End(); !ended) part.Fail(ended.error().sentence);
                             if (!session.Open().IsBalanced()) {
                                 part.Fail(fmt::format("without a driver {} are still open", session.Open().Text()));
                             }
                         },
                         {}});
    RunSubChecks(run, subChecks);
}

/// Draws the usual things with tables that are guarded while they are not held.
void ActOnStrictHost(CheckRun& run, CheckFixture& fixture) {
    fixture.Cheapen();
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        const World layer = TestPicture(kSide, kSide, depth);
        for (const Variant& variant : StyleVariants(fixture.Session().Params(), 4)) {
            ParamSet params = fixture.Session().Params();
            variant.apply(params);
            FrameRequest request = SmallRequest(layer);
            request.params = &params;
            request.texture = &layer;
            fixture.Draw(request, variant.name);
        }
    }
    fixture.TouchPanel();
    SendDrawEvents(run, fixture);
}

void HoldsSuitesByTheBook(CheckRun& run) {
    SessionOptions options;
    options.strictLending = true;
    CheckFixture fixture(run, options);
    ActOnStrictHost(run, fixture);
    // After every command, not only at the end: a suite that one command leaves and the next releases is a leak too.
    std::map<std::uint64_t, std::vector<Event>> commands;
    for (const Event& event : fixture.Log().Events()) commands[event.command].push_back(event);
    for (const auto& [command, events] : commands) {
        for (const LedgerRow& row : UnevenRows(events)) {
            if (row.resource == Resource::kSuite) run.Fail(row.sentence);
        }
    }
    fixture.NoteMisbehaviour("");
    run.Count("host calls", static_cast<double>(fixture.Log().Size()));
}

void AsksForKnownSuites(CheckRun& run) {
    CheckFixture fixture(run);
    ActOnStrictHost(run, fixture);
    for (const std::string& suite : fixture.Session().RefusedSuites()) {
        run.Fail(fmt::format("the suite {} is requested, which the interface or this version does not have", suite));
    }
}

void LeavesTheContextAlone(CheckRun& run) {
    const auto display = Display::Open();
    if (!display) run.Skip("no OpenGL context can be made here");
    std::string at = "loading";
    const auto judge = [&](const std::string& after) {
        if (!display->IsCurrent()) {
            run.Fail(fmt::format("{} leaves another OpenGL context current than the host's", after));
            display->MakeCurrent();
        }
    };
    display->MakeCurrent();
    SessionOptions options;
    options.afterCommand = [&](const CommandArguments& sent, PF_Err) {
        // Renders come on the host's render threads, where no context of the host is.
        if (sent.command == PF_Cmd_SMART_RENDER) return display->MakeCurrent();
        judge(CommandName(sent.command));
    };
    CheckFixture fixture(run, options);
    fixture.TouchPanel();
    SendDrawEvents(run, fixture);
    fixture.EndBalanced("after set-down");
}

void TakesOnlyAnnouncedLayers(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layer = TestPicture(kSide, kSide, Depth::k8);
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 8)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        for (const World* texture : {static_cast<const World*>(nullptr), &layer}) {
            FrameRequest request = SmallRequest(layer);
            request.params = &params;
            request.texture = texture;
            fixture.Log().Clear();
            fixture.Draw(request, variant.name);
            std::set<std::uint64_t> announced;
            for (const Event& event : fixture.Log().Events()) {
                if (event.callee == "pre-render.checkout_layer" && !event.Failed()) {
                    announced.insert(event.arguments.at(2).before);
                }
                if (event.callee != "smart-render.checkout_layer_pixels") continue;
                const std::uint64_t id = event.arguments.at(1).before;
                if (!announced.contains(id)) {
                    run.Fail(fmt::format("{}: render takes the layer with id {}, which pre-render did not check out",
                                         variant.name, static_cast<A_long>(id)));
                }
            }
        }
    }
}

}  // namespace

std::vector<Check> OrderChecks() {
    return {
        {"3.1", "it takes its commands in every legal order", TakesEveryOrder},
        {"3.2", "it can be set up repeatedly, set down twice, and run without a driver", SetsUpAgainAndAgain,
         Needs::kNothing, 2},
        {"3.3", "every suite that a command acquires is released, and not used afterwards", HoldsSuitesByTheBook},
        {"3.4", "it requests only suites that exist", AsksForKnownSuites},
        {"3.5", "set-up, set-down and the panel leave the thread's OpenGL context alone", LeavesTheContextAlone,
         Needs::kOpenGl},
        {"3.6", "rendering does not write static data", KeepsItsStaticsStill},
        {"3.7", "it draws from the layers that it announced", TakesOnlyAnnouncedLayers},
    };
}

}  // namespace umbrant::host
