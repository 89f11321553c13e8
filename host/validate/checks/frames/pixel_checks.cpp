// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 6, pixels: tiles that make up a frame, and inputs whose pixels are any bits.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "host/compositing/rectangles.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

/// Copies what a tile has into its place; what it lacks stays.
void Lay(const Frame& tile, const PF_LRect& region, World& whole, const PF_LRect& wholeRect) {
    const PF_LRect both = Intersection(Intersection(tile.rect, region), wholeRect);
    for (A_long y = both.top; y < both.bottom; ++y) {
        const auto* from = RowOf<PF_PixelFloat>(tile.output.Def(), y - tile.rect.top);
        auto* to = RowOf<PF_PixelFloat>(whole.Def(), y - wholeRect.top);
        for (A_long x = both.left; x < both.right; ++x) to[x - wholeRect.left] = from[x - tile.rect.left];
    }
}

void DrawsTilesAlike(CheckRun& run) {
    constexpr int kTile = 64;
    constexpr double kTolerance = 2.0 / 255;
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layer = TestPicture(120, 100, Depth::k32);
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        FrameRequest request = TexturedRequestOf(layer, params);
        request.canvas = Canvas::kGrow;
        const auto whole = fixture.Draw(request, variant.name);
        if (!whole || whole->output.Width() == 0) continue;
        World joined = World::Create(whole->output.Width(), whole->output.Height(), Depth::k32);
        for (A_long top = whole->rect.top; top < whole->rect.bottom; top += kTile) {
            for (A_long left = whole->rect.left; left < whole->rect.right; left += kTile) {
                request.region = PF_LRect{left, top, left + kTile, top + kTile};
                const auto tile = fixture.Draw(request, fmt::format("{}, a tile", variant.name));
                if (tile) Lay(*tile, *request.region, joined, whole->rect);
            }
        }
        const double difference = LargestDifference(whole->output, joined);
        if (difference > kTolerance) {
            run.Fail(fmt::format("{}: tiles of {} pixels differ from the whole frame by {:.3f}", variant.name, kTile,
                                 difference));
        }
    }
}

/// Whether a float pixel has a channel that is no finite number.
bool IsOdd(const PF_PixelFloat& p) {
    return !std::isfinite(p.alpha) || !std::isfinite(p.red) || !std::isfinite(p.green) || !std::isfinite(p.blue);
}

/// One pixel that is no number must not spoil pixels farther away than the effect reaches.
void JudgeSpread(CheckRun& part, CheckFixture& fixture, float bad, const std::string& name) {
    constexpr int kSide = 96, kPlace = 20;
    World layer = TestPicture(kSide, kSide, Depth::k32);
    RowOf<PF_PixelFloat>(layer.Def(), kPlace)[kPlace] = {bad, bad, bad, bad};
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        FrameRequest request;
        request.layer = &layer;
        request.params = &params;
        const auto frame = fixture.Draw(request, fmt::format("{}, with a pixel that is {}", variant.name, name));
        if (!frame) continue;
        const A_long reach = 2 + 2 * std::max({-frame->maxRect.left, -frame->maxRect.top, frame->maxRect.right - kSide,
                                               frame->maxRect.bottom - kSide, A_long{8}});
        for (int y = 0; y < frame->output.Height(); ++y) {
            const auto* row = RowOf<PF_PixelFloat>(frame->output.Def(), y);
            for (int x = 0; x < frame->output.Width(); ++x) {
                const A_long far =
                    std::max(std::abs(x + frame->rect.left - kPlace), std::abs(y + frame->rect.top - kPlace));
                if (far <= reach || !IsOdd(row[x])) continue;
                part.Fail(
                    fmt::format("{}: a pixel that is {} changes another one {} pixels away, although the effect "
                                "reaches {}",
                                variant.name, name, far, reach));
                x = frame->output.Width();
                y = frame->output.Height();
            }
        }
    }
}

void StandsAnyPixels(CheckRun& run) {
    RunSubChecks(run, {{"with pixels of random bits",
                        [](CheckRun& part) {
                            CheckFixture fixture(part);
                            fixture.Cheapen();
                            for (int i = 0; i < 6; ++i) {
                                World layer = World::Create(48, 40, Depth::k32);
                                for (int y = 0; y < 40; ++y) {
                                    auto* bits = reinterpret_cast<std::uint32_t*>(layer.Row(y));
                                    for (int x = 0; x < 48 * 4; ++x)
                                        bits[x] = static_cast<std::uint32_t>(part.Random()());
                                }
                                for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
                                    ParamSet params = fixture.Session().Params();
                                    variant.apply(params);
                                    fixture.Draw(TexturedRequestOf(layer, params),
                                                 fmt::format("{}, pixels of random bits", variant.name));
                                }
                            }
                            fixture.EndBalanced("after random bits");
                        }},
                       {"with pixels that are NaN or infinite", [](CheckRun& part) {
                            CheckFixture fixture(part);
                            fixture.Cheapen();
                            JudgeSpread(part, fixture, std::numeric_limits<float>::quiet_NaN(), "NaN");
                            JudgeSpread(part, fixture, std::numeric_limits<float>::infinity(), "infinite");
                            JudgeSpread(part, fixture, -std::numeric_limits<float>::infinity(), "negative infinity");
                        }}});
}

}  // namespace

std::vector<Check> PixelChecks() {
    return {
        {"6.6", "tiles are parts of the whole frame", DrawsTilesAlike},
        {"6.7", "it survives pixels of any bits, and they affect only what they reach", StandsAnyPixels,
         Needs::kNothing, 2},
    };
}

}  // namespace umbrant::host
