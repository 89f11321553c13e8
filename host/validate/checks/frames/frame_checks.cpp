// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 5: frames of every size, depth, row length, rectangle, scale and time, between pages that nobody may touch.

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "host/session/error_names.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/frames/world_memory_checks.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

/// Draws one size; every outcome but a frame or want of memory fails.
void DrawSize(CheckRun& run, CheckFixture& fixture, int width, int height, Depth depth) {
    const World layer = TestPicture(width, height, depth);
    if (layer.IsNull()) return;
    run.Count("frames");
    const auto frame = fixture.Session().Render(RequestOf(layer));
    const std::string what = fmt::format("a layer of {} x {} at {} bits", width, height, static_cast<int>(depth));
    if (!frame) {
        const std::string& sentence = frame.error().sentence;
        if (sentence.find(ErrorName(PF_Err_OUT_OF_MEMORY)) == std::string::npos) {
            run.Fail(fmt::format("{}: {}", what, sentence));
        }
        return;
    }
    if (const auto place = NotFinite(frame->output)) {
        run.Fail(fmt::format("{}: the channel at {} is not finite", what, *place));
    }
}

void DrawsEverySize(CheckRun& run) {
    constexpr int kSizes[] = {0, 1, 2, 3, 7, 8, 15, 16, 17, 63, 64, 65, 127, 719, 1920};
    constexpr std::size_t kCount = std::size(kSizes);
    std::vector<SubCheck> subChecks;
    subChecks.push_back({"with layers of common sizes",
                         [&](CheckRun& part) {
                             CheckFixture fixture(part);
                             fixture.Cheapen();
                             for (std::size_t i = 0; i < kCount; ++i) {
                                 // Every size with itself up to 127, and with another one across.
                                 if (kSizes[i] <= 127) DrawSize(part, fixture, kSizes[i], kSizes[i], Depth::k8);
                                 DrawSize(part, fixture, kSizes[i], kSizes[(i * 7 + 3) % kCount], Depth::k32);
                                 DrawSize(part, fixture, kSizes[(i * 11 + 5) % kCount], kSizes[i], Depth::k8);
                             }
                             fixture.EndBalanced("after all sizes");
                         },
                         {}});
    for (const auto& [width, height] :
         {std::pair(8191, 3), std::pair(3, 8191), std::pair(16384, 2), std::pair(2, 16385), std::pair(29000, 1)}) {
        subChecks.push_back({fmt::format("with a layer of {} x {}", width, height),
                             [width = width, height = height](CheckRun& part) {
                                 CheckFixture fixture(part);
                                 fixture.Cheapen();
                                 DrawSize(part, fixture, width, height, Depth::k8);
                                 fixture.EndBalanced("after a large layer");
                             },
                             {}});
    }
    RunSubChecks(run, subChecks);
}

void DrawsEveryDepth(CheckRun& run) {
    RunSubChecks(run,
                 {{"at 8 and 32 bits",
                   [](CheckRun& part) {
                       CheckFixture fixture(part);
                       fixture.Cheapen();
                       for (const Depth depth : {Depth::k8, Depth::k32}) {
                           const World layer = TestPicture(40, 30, depth);
                           for (const Variant& variant : StyleVariants(fixture.Session().Params(), 20)) {
                               ParamSet params = fixture.Session().Params();
                               variant.apply(params);
                               FrameRequest request = RequestOf(layer);
                               request.params = &params;
                               request.texture = &layer;
                               const auto frame = fixture.Draw(request, variant.name);
                               if (!frame) continue;
                               if (const auto place = NotFinite(frame->output)) {
                                   part.Fail(fmt::format("{}: the channel at {} is not finite", variant.name, *place));
                               }
                           }
                       }
                   },
                   {}},
                  {"at 16 bits",
                   [](CheckRun& part) {
                       CheckFixture fixture(part);
                       const bool deep = fixture.Session().OutFlags() & PF_OutFlag_DEEP_COLOR_AWARE;
                       fixture.Cheapen();
                       const World layer = TestPicture(40, 30, Depth::k16);
                       // An effect that does not announce 16 bits may refuse them, but not crash.
                       part.Count("frames");
                       const auto frame = fixture.Session().Render(RequestOf(layer));
                       if (!frame && deep) part.Fail(fmt::format("at 16 bits: {}", frame.error().sentence));
                   },
                   {}}});
}

void StandsEveryTime(CheckRun& run) {
    struct Moment {
        const char* name;
        A_long time, step, total;
        A_u_long scale;
    };
    const Moment moments[] = {{"time 0", 0, 1, 100, 24},
                              {"a negative time", -1000, 1, 100, 24},
                              {"the latest time", kHighest, 1, kHighest, 24},
                              {"the earliest time", kLowest, 1, 100, 24},
                              {"a step of 0", 10, 0, 100, 24},
                              {"a negative step", 10, -1, 100, 24},
                              {"the lowest step and length", 10, kLowest, kLowest, 24},
                              {"no length", 10, 1, 0, 24},
                              {"a scale of 1", 10, 1, 100, 1},
                              {"the largest scale", 10, 1, 100, std::numeric_limits<A_u_long>::max()}};
    std::vector<SubCheck> subChecks;
    for (const Moment& moment : moments) {
        subChecks.push_back({fmt::format("at {}", moment.name),
                             [moment](CheckRun& part) {
                                 CheckFixture fixture(part);
                                 fixture.Cheapen();
                                 const World layer = TestPicture(24, 24, Depth::k8);
                                 FrameRequest request = RequestOf(layer);
                                 request.time = moment.time;
                                 request.timeStep = moment.step;
                                 request.totalTime = moment.total;
                                 request.timeScale = moment.scale;
                                 fixture.Draw(request, moment.name);
                             },
                             {}});
    }
    subChecks.push_back({"at a scale of 0",
                         [](CheckRun& part) {
                             SessionOptions options;
                             options.beforeCommand = [](CommandArguments& sent) { sent.in->time_scale = 0; };
                             CheckFixture fixture(part, options);
                             const World layer = TestPicture(24, 24, Depth::k8);
                             part.Count("frames");
                             // No host should send it; an error is an answer.
                             const auto frame = fixture.Session().Render(RequestOf(layer));
                             static_cast<void>(frame);
                         },
                         {}});
    RunSubChecks(run, subChecks);
}

}  // namespace

std::vector<Check> FrameChecks() {
    return {
        {"5.1", "it draws layers of every size, or reports that they are too large", DrawsEverySize, Needs::kNothing,
         2},
        {"5.2", "it draws at every depth and in every style", DrawsEveryDepth},
        {"5.3", "it uses the rows' length and does not write between rows", FollowsRowLengths},
        {"5.4", "it writes no byte outside of its worlds", StaysInside},
        {"5.6", "it does not trust extent hints", DistrustsExtents},
        {"5.8", "it accepts every time and step", StandsEveryTime, Needs::kNothing, 2},
    };
}

}  // namespace umbrant::host
