// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 4: what is taken is given back, and what belongs to others is not written.

#include <fmt/format.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <set>

#include "host/accounting/ledger.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

constexpr int kSmallSide = 32;

/// Everything that a session does, once: both depths, every style, the panel.
void ActAll(CheckRun& run, CheckFixture& fixture) {
    fixture.Cheapen();
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        const World layer = TestPicture(kSmallSide, kSmallSide, depth);
        for (const Variant& variant : StyleVariants(fixture.Session().Params(), 4)) {
            ParamSet params = fixture.Session().Params();
            variant.apply(params);
            FrameRequest request;
            request.layer = &layer;
            request.params = &params;
            request.texture = &layer;
            fixture.Draw(request, fmt::format("{} at {} bits", variant.name, static_cast<int>(depth)));
        }
    }
    fixture.TouchPanel();
    SendDrawEvents(run, fixture);
}

/// The findings of a ledger about some kinds of things.
void JudgeKinds(CheckRun& run, CheckFixture& fixture, const std::set<Resource>& kinds) {
    ActAll(run, fixture);
    if (const auto ended = fixture.Session().End(); !ended) run.Fail(ended.error().sentence);
    for (const LedgerRow& row : UnevenRows(fixture.Log().Events())) {
        if (kinds.contains(row.resource)) run.Fail(row.sentence);
    }
}

void UsesHandlesByTheBook(CheckRun& run) {
    for (const MemoryPlacement placement : {MemoryPlacement::kFlushRight, MemoryPlacement::kFlushLeft}) {
        const bool right = placement == MemoryPlacement::kFlushRight;
        RunSubChecks(run,
                     {{right ? "with handles' memory before a guard page" : "with handles' memory behind a guard page",
                       [placement](CheckRun& part) {
                           SetGuardRules({placement, {}});
                           CheckFixture fixture(part);
                           JudgeKinds(part, fixture, {Resource::kHandle, Resource::kLock});
                           fixture.NoteMisbehaviour("");
                       },
                       {}}});
    }
}

void ChecksParametersIn(CheckRun& run) {
    CheckFixture fixture(run);
    JudgeKinds(run, fixture, {Resource::kParam});
}

void ForgetsCheckedInParameters(CheckRun& run) {
    const auto digests = [&](bool strict) {
        std::vector<std::uint64_t> found;
        SessionOptions options;
        options.strictLending = strict;
        CheckFixture fixture(run, options);
        fixture.Cheapen();
        const World layer = TestPicture(kSmallSide, kSmallSide, Depth::k8);
        for (const Variant& variant : StyleVariants(fixture.Session().Params(), 4)) {
            ParamSet params = fixture.Session().Params();
            variant.apply(params);
            FrameRequest request;
            request.layer = &layer;
            request.params = &params;
            const auto frame = fixture.Draw(request, variant.name);
            found.push_back(frame ? DigestOf(frame->output) : 0);
        }
        return found;
    };
    if (digests(false) != digests(true)) {
        run.Fail("a frame differs when parameter definitions are overwritten after their check-in");
    }
}

void LetsPreRenderGo(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layer = TestPicture(kSmallSide, kSmallSide, Depth::k8);
    FrameRequest request;
    request.layer = &layer;
    // One frame first: data that render frees itself is freed again here, which the C library sees.
    fixture.Draw(request, "a frame");
    constexpr int kWarmUp = 100, kTimes = 1000;
    constexpr long kMostGrowth = 4L << 20;
    for (int i = 0; i < kWarmUp; ++i) fixture.Ask(request, "a pre-render");
    fixture.Log().Clear();
    const long before = ResidentBytes();
    for (int i = 0; i < kTimes && !run.Failed(); ++i) {
        fixture.Ask(request, "a pre-render");
        fixture.Log().Clear();
    }
    const long grown = ResidentBytes() - before;
    if (grown > kMostGrowth) {
        run.Fail(fmt::format("{} pre-renders without a render left {} KiB behind", kTimes, grown / 1024));
    }
    fixture.NoteMisbehaviour("pre-render without render");
}

void GivesWorldsBack(CheckRun& run) {
    CheckFixture fixture(run);
    JudgeKinds(run, fixture,
               {Resource::kWorld, Resource::kLayerPixels, Resource::kBlock, Resource::kEffectRef, Resource::kStream,
                Resource::kDrawObject});
}

void LeavesInputsAlone(CheckRun& run) {
    const SubCheck part{
        "with read-only inputs",
        [](CheckRun& inside) {
            SetGuardRules({MemoryPlacement::kFlushRight, {}});
            SessionOptions options;
            options.worldWatch = [](World& world, WorldRole role, bool isHandedOut) {
                if (role == WorldRole::kInput || role == WorldRole::kTexture) {
                    world.Memory().SetReadOnly(isHandedOut);
                }
            };
            std::vector<PF_ParamDef> before;
            options.beforeCommand = [&](CommandArguments& sent) {
                before.clear();
                if (sent.command != PF_Cmd_UPDATE_PARAMS_UI && sent.command != PF_Cmd_EVENT) return;
                for (int i = 0; i < sent.in->num_params; ++i) before.push_back(*sent.params[i]);
            };
            options.afterCommand = [&](const CommandArguments& sent, PF_Err) {
                for (std::size_t i = 0; i < before.size(); ++i) {
                    const PF_ParamDef& now = *sent.params[i];
                    if (now.uu.change_flags & PF_ChangeFlag_CHANGED_VALUE) continue;
                    if (!SameBytes(now, before[i])) {
                        inside.Fail(fmt::format("command {} writes row #{} of the host's array", sent.command, i));
                    }
                }
            };
            CheckFixture fixture(inside, options);
            ActAll(inside, fixture);
        },
        {}};
    RunSubChecks(run, {part});
}

void LeavesGlobalDataAlone(CheckRun& run) {
    PF_Handle global = nullptr;
    std::vector<char> before;
    SessionOptions options;
    std::size_t size = 0;
    options.beforeCommand = [&](CommandArguments& sent) {
        global = sent.in->global_data;
        if (sent.command != PF_Cmd_SMART_RENDER && sent.command != PF_Cmd_SMART_PRE_RENDER) return;
        if (global) before.assign(*global, *global + size);
    };
    options.afterCommand = [&](const CommandArguments& sent, PF_Err) {
        if (sent.command == PF_Cmd_GLOBAL_SETUP && sent.out->global_data) {
            size = static_cast<std::size_t>(sent.in->utils->host_get_handle_size(sent.out->global_data));
        }
        if (sent.command != PF_Cmd_SMART_RENDER && sent.command != PF_Cmd_SMART_PRE_RENDER) return;
        if (global && std::memcmp(before.data(), *global, size) != 0) {
            run.Fail(fmt::format("{} writes the global data, which other threads read at the same time",
                                 sent.command == PF_Cmd_SMART_RENDER ? "a render" : "a pre-render"));
        }
    };
    CheckFixture fixture(run, options);
    if (size == 0) run.Skip("the effect keeps no global data");
    ActAll(run, fixture);
}

}  // namespace

std::vector<Check> MemoryChecks() {
    return {
        {"4.1", "handles are disposed of and unlocked, and no byte outside of them is touched", UsesHandlesByTheBook},
        {"4.2", "every parameter that is checked out is checked in once", ChecksParametersIn},
        {"4.3", "a parameter is not read after its check-in", ForgetsCheckedInParameters},
        {"4.4", "a thousand pre-renders without a render leave nothing behind", LetsPreRenderGo, Needs::kStrictHeap},
        {"4.5", "worlds, layers and references are released", GivesWorldsBack},
        {"4.6", "inputs, textures and the host's parameters are not written", LeavesInputsAlone},
        {"4.7", "global data is not written while rendering", LeavesGlobalDataAlone},
    };
}

}  // namespace umbrant::host
