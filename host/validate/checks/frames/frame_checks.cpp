// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 5: frames of every size, depth, row length, rectangle, scale and time, between pages that nobody may touch.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "host/compositing/rectangles.h"
#include "host/session/error_names.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/processes.h"

namespace {

constexpr std::byte kCanary{0xE3};
constexpr A_long kLowest = std::numeric_limits<A_long>::min();
constexpr A_long kHighest = std::numeric_limits<A_long>::max();

FrameRequest RequestOf(const World& layer) {
    FrameRequest request;
    request.layer = &layer;
    return request;
}

std::size_t PixelBytes(const World& world) {
    return static_cast<std::size_t>(world.Width()) * static_cast<std::size_t>(BytesPerPixel(world.PixelDepth()));
}

/// The bytes of a row beyond its last pixel.
std::pair<std::byte*, std::byte*> PaddingOf(World& world, int y) {
    std::byte* row = world.Row(y);
    return {row + PixelBytes(world), row + std::max<A_long>(world.Def().rowbytes, 0)};
}

void FillPadding(World& world) {
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) {
        const auto [begin, end] = PaddingOf(world, y);
        if (begin < end) std::fill(begin, end, kCanary);
    }
}

bool PaddingIsWhole(World& world) {
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) {
        const auto [begin, end] = PaddingOf(world, y);
        if (begin < end && std::any_of(begin, end, [](std::byte byte) { return byte != kCanary; })) return false;
    }
    return true;
}

/// Watches the paddings of everything that the effect writes to.
WorldWatch PaddingWatch(CheckRun& run) {
    return [&run](World& world, WorldRole role, bool isHandedOut) {
        const bool written = role == WorldRole::kOutput || role == WorldRole::kTemporary;
        if (!written) return;
        if (isHandedOut) return FillPadding(world);
        const char* what = role == WorldRole::kOutput ? "the output" : "a temporary world";
        if (!PaddingIsWhole(world)) run.Fail(fmt::format("bytes between the rows of {} were written", what));
        if (!world.Memory().SlackIsWhole()) run.Fail(fmt::format("bytes outside of {} were written", what));
    };
}

/// Draws every style at the depths that the effect knows; gives the digests.
std::vector<std::uint64_t> DrawStyles(CheckFixture& fixture, int width, int height, const std::vector<Depth>& depths) {
    std::vector<std::uint64_t> digests;
    fixture.Cheapen();
    for (const Depth depth : depths) {
        if (depth == Depth::k16 && !(fixture.Session().OutFlags() & PF_OutFlag_DEEP_COLOR_AWARE)) continue;
        const World layer = TestPicture(width, height, depth);
        for (const Variant& variant : StyleVariants(fixture.Session().Params(), 4)) {
            ParamSet params = fixture.Session().Params();
            variant.apply(params);
            FrameRequest request = RequestOf(layer);
            request.params = &params;
            request.texture = &layer;
            const auto frame =
                fixture.Draw(request, fmt::format("{} at {} bits", variant.name, static_cast<int>(depth)));
            digests.push_back(frame ? DigestOf(frame->output) : 0);
        }
    }
    return digests;
}

/// Draws one size; every outcome but a frame or want of memory fails.
void DrawSize(CheckRun& run, CheckFixture& fixture, int width, int height, Depth depth) {
    const World layer = TestPicture(width, height, depth);
    if (layer.IsNull()) return;
    run.Count("frames");
    const auto frame = fixture.Session().Render(RequestOf(layer));
    const std::string what = fmt::format("a layer of {} x {} at {} bits", width, height, static_cast<int>(depth));
    if (!frame) {
        const std::string& sentence = frame.Error().sentence;
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
                       if (!frame && deep) part.Fail(fmt::format("at 16 bits: {}", frame.Error().sentence));
                   },
                   {}}});
}

void FollowsRowLengths(CheckRun& run) {
    const auto digestsWith = [&](CheckRun& part, const GuardRules& rules) {
        SetGuardRules(rules);
        SessionOptions options;
        options.worldWatch = PaddingWatch(part);
        CheckFixture fixture(part, options);
        return DrawStyles(fixture, 33, 21, {Depth::k8, Depth::k32});
    };
    const SubCheck rows{"with rows of other lengths",
                        [&](CheckRun& part) {
                            const auto usual = digestsWith(part, {});
                            for (const int padding : {0, 4, 16, 3 * 16, 4096 - 33 * 4}) {
                                if (digestsWith(part, {MemoryPlacement::kPlain, padding}) != usual) {
                                    part.Fail(
                                        fmt::format("the frame changes when rows are {} bytes longer than their "
                                                    "pixels",
                                                    padding));
                                }
                            }
                        },
                        {}};
    const SubCheck bottomUp{"with rows from the bottom up",
                            [](CheckRun& part) {
                                SessionOptions options;
                                options.worldWatch = [](World& world, WorldRole role, bool) {
                                    if (role == WorldRole::kTemporary || world.Height() < 1 || world.Width() < 1)
                                        return;
                                    PF_EffectWorld& def = world.Def();
                                    auto* bytes = reinterpret_cast<std::byte*>(def.data);
                                    bytes += std::ptrdiff_t{def.rowbytes} * (def.height - 1);
                                    def.data = reinterpret_cast<PF_PixelPtr>(bytes);
                                    def.rowbytes = -def.rowbytes;
                                };
                                CheckFixture fixture(part, options);
                                fixture.Cheapen();
                                const World layer = TestPicture(33, 21, Depth::k8);
                                fixture.Draw(RequestOf(layer), "rows from the bottom up");
                            },
                            {},
                            0,
                            true};
    RunSubChecks(run, {rows, bottomUp});
}

void StaysInside(CheckRun& run) {
    std::vector<SubCheck> subChecks;
    for (const MemoryPlacement placement : {MemoryPlacement::kFlushRight, MemoryPlacement::kFlushLeft}) {
        const bool right = placement == MemoryPlacement::kFlushRight;
        subChecks.push_back({right ? "with worlds before a guard page" : "with worlds behind a guard page",
                             [placement](CheckRun& part) {
                                 SetGuardRules({placement, 16});
                                 SessionOptions options;
                                 options.worldWatch = PaddingWatch(part);
                                 CheckFixture fixture(part, options);
                                 DrawStyles(fixture, 32, 24, {Depth::k8, Depth::k16, Depth::k32});
                                 DrawStyles(fixture, 31, 17, {Depth::k8, Depth::k32});
                                 fixture.NoteMisbehaviour("");
                             },
                             {}});
    }
    RunSubChecks(run, subChecks);
}

void DistrustsExtents(CheckRun& run) {
    struct Hint {
        const char* name;
        PF_LRect rect;
    };
    const Hint hints[] = {{"empty", {0, 0, 0, 0}},
                          {"smaller than the world", {4, 4, 9, 9}},
                          {"larger than the world", {-5, -5, 500, 500}},
                          {"all of the numbers", {kLowest, kLowest, kHighest, kHighest}},
                          {"inverted", {20, 20, 4, 4}}};
    std::vector<SubCheck> subChecks;
    for (const Hint& hint : hints) {
        subChecks.push_back({fmt::format("with an extent hint that is {}", hint.name),
                             [hint](CheckRun& part) {
                                 SetGuardRules({MemoryPlacement::kFlushRight, {}});
                                 SessionOptions options;
                                 const WorldWatch padding = PaddingWatch(part);
                                 options.worldWatch = [&](World& world, WorldRole role, bool isHandedOut) {
                                     padding(world, role, isHandedOut);
                                     if (isHandedOut) world.Def().extent_hint = hint.rect;
                                 };
                                 CheckFixture fixture(part, options);
                                 DrawStyles(fixture, 40, 32, {Depth::k8});
                             },
                             {}});
    }
    RunSubChecks(run, subChecks);
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
