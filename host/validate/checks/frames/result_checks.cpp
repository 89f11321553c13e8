// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 9: the same input gives the same picture, whenever, wherever and in whatever order.

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <thread>

#include "host/compositing/rectangles.h"
#include "host/compositing/row_pool.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/faults/fault_fixture.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

/// The digests of every style and depth, as figures of a part.
void FigureDigests(CheckRun& part, CheckFixture& fixture) {
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        const World layer = TestPicture(50, 41, depth);
        for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
            ParamSet params = fixture.Session().Params();
            variant.apply(params);
            const auto frame = fixture.Draw(RequestOf(layer, params), variant.name);
            // 53 bits of the digest are a number that every format holds.
            part.Count(fmt::format("{} at {} bits", variant.name, static_cast<int>(depth)),
                       static_cast<double>((frame ? DigestOf(frame->output) : 0) >> 11));
        }
    }
}

void DrawsTheSameAgain(CheckRun& run) {
    const auto figuresOf = [&](const char* name, const std::function<void(CheckRun&)>& work) {
        CheckResult result = RunSubCheck(run, {name, work});
        for (const Finding& finding : result.findings) run.Note(finding);
        result.figures.erase("frames");
        return result.figures;
    };
    const auto plain = [](CheckRun& part) {
        CheckFixture fixture(part);
        fixture.Cheapen();
        FigureDigests(part, fixture);
    };
    const auto usual = figuresOf("a first process", plain);
    const std::pair<const char*, std::function<void(CheckRun&)>> others[] = {
        {"another process", plain},
        {"another thread",
         [](CheckRun& part) {
             CheckFixture fixture(part);
             fixture.Cheapen();
             std::thread([&] { FigureDigests(part, fixture); }).join();
         }},
        {"a session after 100 other frames",
         [](CheckRun& part) {
             CheckFixture fixture(part);
             fixture.Cheapen();
             const World other = TestPicture(23, 19, Depth::k8);
             for (int i = 0; i < 100; ++i) fixture.Draw(RequestOf(other, fixture.Session().Params()), "another frame");
             FigureDigests(part, fixture);
         }},
        {"a host with other numbers of threads",
         [](CheckRun& part) {
             SetRowThreads(5);
             CheckFixture fixture(part);
             fixture.Cheapen();
             FigureDigests(part, fixture);
         }},
    };
    for (const auto& [name, work] : others) {
        for (const auto& [frame, digest] : figuresOf(name, work)) {
            const auto found = usual.find(frame);
            if (found != usual.end() && found->second == digest) continue;
            run.Fail(fmt::format("{}: {} draws another frame than a first process", frame, name));
        }
    }
}

void DrawsInAnyOrder(CheckRun& run) {
    constexpr int kFrames = 20;
    CheckFixture fixture(run);
    fixture.Cheapen();
    // Each frame has values of its own, so that one that is remembered shows in the next.
    std::vector<ParamSet> values;
    const std::vector<Variant> variants = StyleVariants(fixture.Session().Params(), 3);
    for (int i = 0; i < kFrames; ++i) {
        ParamSet params = fixture.Session().Params();
        variants[static_cast<std::size_t>(i) % variants.size()].apply(params);
        for (const int index : SettableRows(params)) {
            ParamRow& row = params.RawRow(index);
            const auto range = RangeOf(row);
            if (!range || KindOf(row.def) == ParamKind::kAngle || range->validMax > 100) continue;
            SetNumberUnchecked(row,
                               range->validMin + (range->validMax - range->validMin) * ((i * 7) % kFrames) / kFrames);
        }
        values.push_back(params);
    }
    const World layer = TestPicture(30, 26, Depth::k8);
    const auto draw = [&](const std::vector<int>& order) {
        std::map<int, std::uint64_t> digests;
        for (const int i : order) {
            FrameRequest request = RequestOf(layer, values[static_cast<std::size_t>(i)]);
            request.time = i;
            request.totalTime = kFrames;
            const auto frame = fixture.Draw(request, fmt::format("frame {}", i));
            digests[i] = frame ? DigestOf(frame->output) : 0;
        }
        return digests;
    };
    std::vector<int> order(kFrames);
    std::iota(order.begin(), order.end(), 0);
    const auto forwards = draw(order);
    std::reverse(order.begin(), order.end());
    if (draw(order) != forwards) run.Fail("frames drawn backwards differ from those drawn forwards");
    for (int i = kFrames - 1; i > 0; --i)
        std::swap(order[static_cast<std::size_t>(i)], order[static_cast<std::size_t>(run.Draw(0, i))]);
    if (draw(order) != forwards) run.Fail("frames drawn in random order differ from those drawn forwards");
}

void ObeysLaws(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const bool varies = fixture.Session().OutFlags() & (PF_OutFlag_NON_PARAM_VARY | PF_OutFlag_WIDE_TIME_INPUT);
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        const World layer = TestPicture(30, 26, Depth::k8);
        const auto at = [&](A_long time) {
            FrameRequest request = RequestOf(layer, params);
            request.time = time;
            request.totalTime = 100;
            return fixture.Draw(request, fmt::format("{} at time {}", variant.name, time));
        };
        const auto first = at(0);
        const auto later = at(37);
        if (first && later && !varies && !SamePixels(first->output, later->output)) {
            run.Fail(
                fmt::format("{}: the frame changes with time, which the effect does not announce, so hosts show "
                            "an old frame",
                            variant.name));
        }
        // The same picture at two depths: what rounding makes of it, and no more.
        const World deep = TestPicture(30, 26, Depth::k32);
        const auto floats = fixture.Draw(RequestOf(deep, params), fmt::format("{} at 32 bits", variant.name));
        if (!first || !floats) continue;
        if (first->output.Width() != floats->output.Width() || first->output.Height() != floats->output.Height()) {
            run.Fail(fmt::format("{}: the frame has another size at 32 bits than at 8", variant.name));
        }
    }
}

void ClaimsWhatItDraws(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layer = TestPicture(60, 60, Depth::k32);
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        FrameRequest request = RequestOf(layer, params);
        const auto whole = fixture.Draw(request, variant.name);
        if (!whole) continue;
        for (const PF_LRect& asked : {PF_LRect{10, 10, 40, 40}, PF_LRect{20, 0, 60, 60}, PF_LRect{-9, 30, 20, 55}}) {
            request.region = asked;
            const auto answer = fixture.Ask(request, variant.name);
            if (!answer) continue;
            const PF_LRect inside = Intersection(asked, whole->rect);
            for (A_long y = inside.top; y < inside.bottom; ++y) {
                const auto* row = RowOf<PF_PixelFloat>(whole->output.Def(), y - whole->rect.top);
                for (A_long x = inside.left; x < inside.right; ++x) {
                    const PF_LRect& claimed = answer->resultRect;
                    const bool isClaimed =
                        x >= claimed.left && x < claimed.right && y >= claimed.top && y < claimed.bottom;
                    if (isClaimed || row[x - whole->rect.left].alpha == 0) continue;
                    run.Fail(
                        fmt::format("{}, asked for {}: the result {} excludes the pixel {}, {}, where the whole "
                                    "frame shows something",
                                    variant.name, RectText(asked), RectText(claimed), x, y));
                    x = inside.right;
                    y = inside.bottom;
                }
            }
        }
    }
}

void EndsItsMessages(CheckRun& run) {
    // One refusal of each kind is enough to make the effect speak.
    InjectFaults(run, {[](const std::string& callee) {
                           return callee.starts_with("AcquireSuite:") || callee.find("checkout") != std::string::npos;
                       },
                       {PF_Err_OUT_OF_MEMORY},
                       [](CheckRun& judged, const FaultOutcome& outcome) {
                           if (outcome.messageEnded) return;
                           judged.Fail(
                               fmt::format("{}: with {} refused, the message of {} has no end within its 256 "
                                           "bytes",
                                           outcome.scenario, outcome.plan.Text(), outcome.command));
                       }});
}

}  // namespace

std::vector<Check> ResultChecks() {
    return {
        {"9.1", "the same input gives the same bytes in any process, on any thread, at any moment", DrawsTheSameAgain,
         Needs::kNothing, 2},
        {"9.2", "the order of frames does not matter", DrawsInAnyOrder},
        {"9.4", "the frame changes with time only when that is announced, and its size does not depend on the depth",
         ObeysLaws},
        {"9.5", "the result rectangle holds everything that is drawn", ClaimsWhatItDraws},
        {"9.6", "every message ends within its 256 bytes", EndsItsMessages, Needs::kNothing, 2, true},
    };
}

}  // namespace umbrant::host
