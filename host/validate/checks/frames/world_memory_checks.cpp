// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/frames/world_memory_checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "host/compositing/guarded_memory.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

constexpr std::byte kCanary{0xE3};

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

}  // namespace

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

}  // namespace umbrant::host
