// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/canvas_choice.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "host/compositing/rectangles.h"
#include "host/parameters/echo_text.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

/// Beyond it no image could meet a layer. Times the largest downsampling it is far from the end of 32 bits.
constexpr int kFarthest = 1'000'000;

std::optional<PF_LRect> RectangleOf(std::string_view text) {
    std::array<A_long, 4> sides{};
    for (std::size_t i = 0; i < sides.size(); ++i) {
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), sides[i]);
        if (error != std::errc() || sides[i] < -kFarthest || sides[i] > kFarthest) return std::nullopt;
        text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
        if (i + 1 == sides.size() ? !text.empty() : !text.starts_with(',')) return std::nullopt;
        if (i + 1 < sides.size()) text.remove_prefix(1);
    }
    return PF_LRect{sides[0], sides[1], sides[2], sides[3]};
}

A_long FloorDivided(A_long value, A_long n) {
    return value / n - (value % n < 0 ? 1 : 0);
}

}  // namespace

Result<CanvasChoice> ParseCanvas(const std::string& text) {
    if (text == "grow") return CanvasChoice{CanvasChoice::Kind::kGrow};
    if (text == "frame") return CanvasChoice{CanvasChoice::Kind::kFrame};
    if (text == "layer") return CanvasChoice{CanvasChoice::Kind::kLayer};
    if (text == "tight") return CanvasChoice{CanvasChoice::Kind::kTight};
    const auto rectangle = RectangleOf(text);
    if (!rectangle) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' is neither grow, frame, layer, tight nor a rectangle LEFT,TOP,RIGHT,BOTTOM of "
                                   "whole numbers from -{} to {}",
                                   EchoText(text), kFarthest, kFarthest)};
    }
    if (IsEmpty(*rectangle)) {
        return Failure{ErrorKind::kUsage,
                       fmt::format("'{}' covers nothing; LEFT must be less than RIGHT and TOP less than BOTTOM", text)};
    }
    return CanvasChoice{CanvasChoice::Kind::kRectangle, *rectangle};
}

Result<CanvasChoice> ParseUndrawnCanvas(const std::string& text) {
    const auto choice = TRY(ParseCanvas(text));
    if (choice.kind != CanvasChoice::Kind::kTight) return choice;
    return Failure{ErrorKind::kUsage,
                   "'tight' is for `umbrant render`, which finds the canvas in drawn frames; here use grow, frame, "
                   "layer or a rectangle LEFT,TOP,RIGHT,BOTTOM"};
}

std::string CanvasText(const PF_LRect& rectangle) {
    return fmt::format("{},{},{},{}", rectangle.left, rectangle.top, rectangle.right, rectangle.bottom);
}

PF_LRect DrawnCanvas(const PF_LRect& rectangle, int downsample) {
    return {FloorDivided(rectangle.left, downsample), FloorDivided(rectangle.top, downsample),
            FloorDivided(rectangle.right + downsample - 1, downsample),
            FloorDivided(rectangle.bottom + downsample - 1, downsample)};
}

PF_LRect FullSizeCanvas(const PF_LRect& drawn, int downsample) {
    return {drawn.left * downsample, drawn.top * downsample, drawn.right * downsample, drawn.bottom * downsample};
}

Result<Done> CheckCanvas(const PF_LRect& drawn, int downsample) {
    const std::int64_t width = std::int64_t{drawn.right} - drawn.left;
    const std::int64_t height = std::int64_t{drawn.bottom} - drawn.top;
    if (width <= PF_MAX_WORLD_WIDTH && height <= PF_MAX_WORLD_HEIGHT) return Done{};
    return Failure{ErrorKind::kUsage,
                   fmt::format("--canvas {} has {} x {} pixels; no side may be longer than {}; give --canvas a smaller "
                               "rectangle, or draw at a lower resolution with --downsample",
                               CanvasText(FullSizeCanvas(drawn, downsample)), width, height, PF_MAX_WORLD_WIDTH)};
}

}  // namespace umbrant::host
