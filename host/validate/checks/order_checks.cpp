// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 3: commands in every legal order, suites by the book, and nothing touched that is not the effect's.

#include <fmt/format.h>
#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "host/accounting/ledger.h"
#include "host/session/error_names.h"
#include "host/validate/checks/display.h"
#include "host/validate/checks/module_file.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/checks/stage.h"
#include "host/validate/runner/processes.h"

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
std::string TakeStep(Trial& trial, Stage& stage, int step, const World& layer) {
    EffectSession& session = stage.Session();
    const auto judge = [&](const auto& result, const char* name) {
        if (!result) trial.Fail(fmt::format("{}: {}", name, result.Error().sentence));
        return std::string(name);
    };
    switch (step) {
        case 0:
            return judge(session.About(), "about");
        case 1:
            return judge(session.UpdateParamsUI(), "update of the panel");
        case 2: {
            const int row = trial.Draw(0, session.Params().Count() - 1);
            // A button may open a page in a browser: pressing it is left to people.
            if (KindOf(session.Params().Row(row).def) == ParamKind::kButton) return "nothing";
            return judge(session.UserChangedParam(row), "change of a row");
        }
        case 3:
            return judge(session.PreRender(SmallRequest(layer)), "pre-render");
        case 4:
            trial.Count("frames");
            return judge(session.Render(SmallRequest(layer)), "render");
        case 5:
            SendDrawEvents(trial, stage);
            return "draw events";
        default: {
            const CommandRecord record = session.Send(PF_Cmd_QUERY_DYNAMIC_FLAGS, nullptr, nullptr, nullptr);
            if (record.error) trial.Fail(fmt::format("query of dynamic flags: {}", ErrorName(record.error)));
            return "query of dynamic flags";
        }
    }
}

/// Sessions of random legal commands; the first walks through every pair of steps in some order.
void TakesEveryOrder(Trial& trial) {
    constexpr int kSteps = 7;
    constexpr int kSessions = 12;
    constexpr int kDepth = 6;
    const World layer = TestPicture(kSide, kSide, Depth::k8);
    const auto walk = [&](const std::vector<int>& steps) {
        Stage stage(trial);
        stage.Cheapen();
        std::string road = "set-up";
        for (const int step : steps) {
            const bool failedBefore = trial.Failed();
            road += ", " + TakeStep(trial, stage, step, layer);
            trial.Count("commands");
            if (trial.Failed() && !failedBefore) trial.Fail("the order was: " + road);
        }
        stage.EndEven("after " + road);
    };
    std::vector<int> pairs;
    for (int first = 0; first < kSteps; ++first) {
        for (int second = 0; second < kSteps; ++second) pairs.insert(pairs.end(), {first, second});
    }
    walk(pairs);
    for (int i = 0; i < kSessions && !trial.Failed(); ++i) {
        std::vector<int> steps;
        for (int depth = 0; depth < kDepth; ++depth) steps.push_back(trial.Draw(0, kSteps - 1));
        walk(steps);
    }
}

/// Hides every OpenGL of this system from whoever asks from now on.
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
void SendSetdown(Trial& trial, EffectSession& session, const char* when) {
    const CommandRecord record = session.Send(PF_Cmd_GLOBAL_SETDOWN, nullptr, nullptr, nullptr);
    if (!record.balance.Even()) trial.Fail(fmt::format("{} leaves {} open", when, record.balance.Text()));
}

void SetsUpAgainAndAgain(Trial& trial) {
    std::vector<Part> parts;
    parts.push_back({"set-up and set-down, 50 times",
                     [](Trial& part) {
                         Stage stage(part);
                         stage.EndEven("after the first set-down");
                         for (int i = 0; i < 49 && !part.Failed(); ++i) {
                             stage.Log().Clear();
                             if (const auto up = stage.Session().SetUp(); !up) part.FailAndEnd(up.Error().sentence);
                             stage.EndEven("after a later set-down");
                         }
                     },
                     {}});
    parts.push_back({"set-down twice",
                     [](Trial& part) {
                         Stage stage(part);
                         stage.EndEven("after set-down");
                         SendSetdown(part, stage.Session(), "a second set-down");
                     },
                     {}});
    parts.push_back({"set-down without set-up",
                     [](Trial& part) {
                         auto module = Module::Load(part.Options().module);
                         if (!module) part.FailAndEnd(module.Error().sentence);
                         EffectSession session = EffectSession::Create(*module);
                         SendSetdown(part, session, "a set-down without set-up");
                     },
                     {}});
    parts.push_back({"set-up without any OpenGL driver",
                     [](Trial& part) {
                         HideDrivers();
                         auto module = Module::Load(part.Options().module);
                         if (!module) part.FailAndEnd(module.Error().sentence);
                         // An error is an answer; a crash is none.
                         EffectSession session = EffectSession::Create(*module);
                         if (!session.SetUp()) return;
                         const World layer = TestPicture(kSide, kSide, Depth::k8);
                         const auto frame = session.Render(SmallRequest(layer));
                         if (frame && NotFinite(frame->output)) part.Fail("without a driver a frame is not finite");
                         if (const auto ended = session.End(); !ended) part.Fail(ended.Error().sentence);
                         if (!session.Open().Even()) {
                             part.Fail(fmt::format("without a driver {} are still open", session.Open().Text()));
                         }
                     },
                     {}});
    RunParts(trial, parts);
}

/// Draws the usual things with tables that are shut while they are not held.
void ActOnStrictHost(Trial& trial, Stage& stage) {
    stage.Cheapen();
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        const World layer = TestPicture(kSide, kSide, depth);
        for (const Variant& variant : StyleVariants(stage.Session().Params(), 4)) {
            ParamSet params = stage.Session().Params();
            variant.apply(params);
            FrameRequest request = SmallRequest(layer);
            request.params = &params;
            request.texture = &layer;
            stage.Draw(request, variant.name);
        }
    }
    stage.TouchPanel();
    SendDrawEvents(trial, stage);
}

void HoldsSuitesByTheBook(Trial& trial) {
    SessionOptions options;
    options.strictLending = true;
    Stage stage(trial, options);
    ActOnStrictHost(trial, stage);
    // After every command, not only at the end: a suite that one command leaves and the next releases is a leak too.
    std::map<std::uint64_t, std::vector<Event>> commands;
    for (const Event& event : stage.Log().Events()) commands[event.command].push_back(event);
    for (const auto& [command, events] : commands) {
        for (const LedgerRow& row : UnevenRows(events)) {
            if (row.resource == Resource::kSuite) trial.Fail(row.sentence);
        }
    }
    stage.NoteMisbehaviour("");
    trial.Count("host calls", static_cast<double>(stage.Log().Size()));
}

void AsksForKnownSuites(Trial& trial) {
    Stage stage(trial);
    ActOnStrictHost(trial, stage);
    for (const std::string& suite : stage.Session().RefusedSuites()) {
        trial.Fail(fmt::format("the suite {} is requested, which the interface or this version does not have", suite));
    }
}

void LeavesTheContextAlone(Trial& trial) {
    const auto display = Display::Open();
    if (!display) trial.Skip("no OpenGL context can be made here");
    std::string at = "loading";
    const auto judge = [&](const std::string& after) {
        if (!display->IsCurrent()) {
            trial.Fail(fmt::format("{} leaves another OpenGL context current than the host's", after));
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
    Stage stage(trial, options);
    stage.TouchPanel();
    SendDrawEvents(trial, stage);
    stage.EndEven("after set-down");
}

/// The module's writable data at one moment. The bytes between its objects are read too, which a sanitizer would report
/// and a library's copy would be checked for. In this spelling the attribute is gcc's and clang's.
__attribute__((no_sanitize("address", "thread"))) std::vector<std::vector<std::byte>> CopyOf(
    const std::vector<WritableRange>& ranges) {
    std::vector<std::vector<std::byte>> copies;
    for (const WritableRange& range : ranges) {
        std::byte* to = copies.emplace_back(range.size).data();
        const volatile std::byte* from = range.begin;
        for (std::size_t i = 0; i < range.size; ++i) to[i] = from[i];
    }
    return copies;
}

/// The object that a byte belongs to; without a name in a stripped file.
ModuleFile::Object ObjectAt(const ModuleFile& file, std::size_t address) {
    for (const ModuleFile::Object& object : file.writable) {
        if (address >= object.address && address < object.address + object.size) return object;
    }
    return {"", address, 0};
}

/// Whether an object is too small to hold the lock that guards it. What is larger, a pool of threads for one, may well
/// be written by renders, each in its turn.
bool IsBare(const ModuleFile::Object& object) {
    return !object.name.empty() && object.size < sizeof(pthread_mutex_t);
}

void KeepsItsStaticsStill(Trial& trial) {
    const auto file = ModuleFile::Read(trial.Options().module);
    Stage stage(trial);
    stage.Cheapen();
    const std::vector<WritableRange> ranges = WritableRangesOf(stage.Loaded().File());
    if (!file || ranges.empty()) trial.Skip("the module's writable data cannot be found");
    const World layer = TestPicture(kSide, kSide, Depth::k8);
    for (int i = 0; i < 2; ++i) stage.Draw(SmallRequest(layer), "a first frame");
    const auto before = CopyOf(ranges);
    const World other = TestPicture(kSide + 5, kSide, Depth::k8);
    for (int i = 0; i < 3; ++i) stage.Draw(SmallRequest(other), "a later frame");
    const auto after = CopyOf(ranges);

    std::map<std::size_t, ModuleFile::Object> changed;
    double bytes = 0;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        bytes += static_cast<double>(ranges[i].size);
        for (std::size_t at = 0; at < ranges[i].size; ++at) {
            if (before[i][at] == after[i][at]) continue;
            const ModuleFile::Object object = ObjectAt(*file, ranges[i].address + at);
            changed[object.address] = object;
        }
    }
    trial.Count("bytes of static writable data", bytes);
    const bool threaded = stage.Session().OutFlags2() & PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
    for (const auto& [address, object] : changed) {
        const std::string text =
            fmt::format("a render changes static data: {}",
                        object.name.empty() ? fmt::format("the byte at {:#x}", address) : object.name);
        threaded&& IsBare(object) ? trial.Fail(text + ", although renders are announced for several threads")
                                  : trial.Warn(text);
    }
}

void TakesOnlyAnnouncedLayers(Trial& trial) {
    Stage stage(trial);
    stage.Cheapen();
    const World layer = TestPicture(kSide, kSide, Depth::k8);
    for (const Variant& variant : StyleVariants(stage.Session().Params(), 8)) {
        ParamSet params = stage.Session().Params();
        variant.apply(params);
        for (const World* texture : {static_cast<const World*>(nullptr), &layer}) {
            FrameRequest request = SmallRequest(layer);
            request.params = &params;
            request.texture = texture;
            stage.Log().Clear();
            stage.Draw(request, variant.name);
            std::set<std::uint64_t> announced;
            for (const Event& event : stage.Log().Events()) {
                if (event.callee == "pre-render.checkout_layer" && !event.Failed()) {
                    announced.insert(event.arguments.at(2).before);
                }
                if (event.callee != "smart-render.checkout_layer_pixels") continue;
                const std::uint64_t id = event.arguments.at(1).before;
                if (!announced.contains(id)) {
                    trial.Fail(fmt::format("{}: render takes the layer with id {}, which pre-render did not check out",
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
