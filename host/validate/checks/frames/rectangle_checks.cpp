// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 5, places: what an effect answers to requests for any rectangle, and where it draws at other scales.

#include <fmt/format.h>

#include <cmath>
#include <optional>

#include "host/compositing/rectangles.h"
#include "host/validate/checks/check_fixture.h"

namespace umbrant::host {

namespace {

bool IsSound(const PF_LRect& rect) {
    return rect.left <= rect.right && rect.top <= rect.bottom;
}

bool Contains(const PF_LRect& outer, const PF_LRect& inner) {
    if (IsEmpty(inner)) return true;
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}

struct NamedRect {
    const char* name;
    PF_LRect rect;
};

constexpr int kLayerSide = 48;
constexpr NamedRect kRequests[] = {
    {"the whole layer", {0, 0, kLayerSide, kLayerSide}},
    {"a tile", {8, 8, 24, 24}},
    {"a tile at the corner", {40, 40, 56, 56}},
    {"one pixel", {20, 20, 21, 21}},
    {"nothing", {0, 0, 0, 0}},
    {"nothing, elsewhere", {30, 30, 30, 40}},
    {"a place outside", {200, 200, 220, 220}},
    {"a place before the layer", {-60, -60, -20, -20}},
    {"more than the layer", {-30, -30, 90, 90}},
    {"an inverted rectangle", {30, 30, 10, 10}},
    {"everything", {kLowest, kLowest, kHighest, kHighest}},
    {"the far corner", {kHighest - 10, kHighest - 10, kHighest, kHighest}},
    {"the near corner", {kLowest, kLowest, kLowest + 10, kLowest + 10}},
};

void AnswersEveryRequest(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const World layer = TestPicture(kLayerSide, kLayerSide, Depth::k8);
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 8)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        std::optional<PF_LRect> largest;
        for (const NamedRect& asked : kRequests) {
            FrameRequest request = RequestOf(layer);
            request.params = &params;
            request.region = asked.rect;
            const std::string what = fmt::format("{}, asked for {}", variant.name, asked.name);
            const auto answer = fixture.Ask(request, what);
            if (!answer) continue;
            if (!IsSound(answer->resultRect) || !IsSound(answer->maxRect)) {
                run.Fail(fmt::format("{}: the result is inverted", what));
            }
            if (!Contains(answer->maxRect, answer->resultRect)) {
                run.Fail(fmt::format("{}: the result {} reaches beyond the largest, {}", what,
                                     RectText(answer->resultRect), RectText(answer->maxRect)));
            }
            if (!largest) largest = answer->maxRect;
            if (!Same(*largest, answer->maxRect)) {
                run.Fail(fmt::format("{}: the largest rectangle is {}; for the whole layer it was {}", what,
                                     RectText(answer->maxRect), RectText(*largest)));
            }
        }
    }
    fixture.NoteMisbehaviour("");
}

/// The middle of a frame's alpha in pixels of the full-size layer; nothing when it is transparent.
std::optional<std::pair<double, double>> MiddleOf(const Frame& frame, double scaleX, double scaleY) {
    double sum = 0, sumX = 0, sumY = 0;
    for (int y = 0; y < frame.output.Height(); ++y) {
        const auto* row = RowOf<PF_PixelFloat>(frame.output.Def(), y);
        for (int x = 0; x < frame.output.Width(); ++x) {
            const double alpha = row[x].alpha;
            if (!std::isfinite(alpha)) return std::nullopt;
            sum += alpha;
            sumX += alpha * (frame.rect.left + x + 0.5);
            sumY += alpha * (frame.rect.top + y + 0.5);
        }
    }
    if (!(sum > 0)) return std::nullopt;
    return std::pair(sumX / sum / scaleX, sumY / sum / scaleY);
}

void FollowsDownsampling(CheckRun& run) {
    constexpr int kFull = 96;
    constexpr std::pair<int, int> kScales[] = {{1, 2}, {1, 3}, {2, 3}, {1, 8}};
    CheckFixture fixture(run);
    fixture.Cheapen();
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 3)) {
        ParamSet params = fixture.Session().Params();
        variant.apply(params);
        const auto draw = [&](std::pair<int, int> x, std::pair<int, int> y) {
            const World layer = TestPicture(kFull * x.first / x.second, kFull * y.first / y.second, Depth::k32);
            FrameRequest request = RequestOf(layer);
            request.params = &params;
            request.layerWidth = request.layerHeight = kFull;
            request.downsampleX = {x.first, static_cast<A_u_long>(x.second)};
            request.downsampleY = {y.first, static_cast<A_u_long>(y.second)};
            return fixture.Draw(
                request, fmt::format("{} at {}/{} by {}/{}", variant.name, x.first, x.second, y.first, y.second));
        };
        const auto full = draw({1, 1}, {1, 1});
        const auto middle = full ? MiddleOf(*full, 1, 1) : std::nullopt;
        std::vector<std::pair<std::pair<int, int>, std::pair<int, int>>> pairs{{{1, 2}, {1, 1}}, {{1, 1}, {1, 4}}};
        for (const auto& scale : kScales) pairs.emplace_back(scale, scale);
        for (const auto& [x, y] : pairs) {
            const auto frame = draw(x, y);
            if (!frame || !middle) continue;
            const double scaleX = static_cast<double>(x.first) / x.second;
            const double scaleY = static_cast<double>(y.first) / y.second;
            const auto found = MiddleOf(*frame, scaleX, scaleY);
            const std::string what =
                fmt::format("{} at {}/{} by {}/{}", variant.name, x.first, x.second, y.first, y.second);
            if (!found) {
                run.Fail(fmt::format("{}: nothing is drawn, although the full size shows something", what));
                continue;
            }
            const double dx = std::abs(found->first - middle->first) * scaleX;
            const double dy = std::abs(found->second - middle->second) * scaleY;
            if (dx > 1 || dy > 1) {
                run.Fail(
                    fmt::format("{}: the frame is displaced by {:.1f}, {:.1f} of its pixels from where the full "
                                "size has it",
                                what, dx, dy));
            }
        }
    }
}

}  // namespace

std::vector<Check> RectangleChecks() {
    return {
        {"5.5", "it answers every request, and its largest rectangle is constant", AnswersEveryRequest},
        {"5.7", "it draws the same frame at every scale", FollowsDownsampling},
    };
}

}  // namespace umbrant::host
