// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/compare/heat_map.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "host/compositing/memory_shortage.h"
#include "host/drawing/new_drawing.h"
#include "host/suites/drawbot/text.h"

namespace umbrant::host {

namespace {

constexpr char kPicture[] = "an image of the differences";

constexpr int kKeyHeight = 56;
constexpr int kKeyWidth = 360;  ///< at least
constexpr double kMargin = 16;
constexpr double kBar = 12;
constexpr double kTypeSize = 11;
constexpr double kGround = 0.11;
constexpr double kText = 0.86;

/// Differences in steps of 8 bits are shown from 1/4 on, two octaves a fifth of the scale.
constexpr double kLeastSteps = 0.25;
constexpr double kOctaves = 10;

struct Stop {
    double red, green, blue;
};
/// Of even steps in lightness, so that a larger difference looks larger also to people who do not see every colour.
constexpr std::array<Stop, 6> kStops = {
    {{28, 16, 68}, {87, 15, 109}, {151, 39, 102}, {212, 72, 66}, {245, 139, 22}, {252, 255, 164}}};

/// From 0 to 1 along the scale.
double PlaceOf(double difference) {
    return std::clamp(std::log2(difference * 255 / kLeastSteps) / kOctaves, 0.0, 1.0);
}

PF_Pixel ColorAt(double place) {
    const double at = place * (kStops.size() - 1);
    const auto from = std::min(static_cast<std::size_t>(at), kStops.size() - 2);
    const double part = at - static_cast<double>(from);
    const auto mix = [&](double a, double b) { return static_cast<A_u_char>(std::lround(a + part * (b - a))); };
    const Stop &a = kStops[from], &b = kStops[from + 1];
    return {255, mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
}

Result<World> DrawKey(int width) {
    const auto made = TRY(NewDrawing(kPicture, width, kKeyHeight));
    Drawing& drawing = *made;
    drawing.SetColor(kGround, kGround, kGround);
    drawing.AddRect(0, 0, width, kKeyHeight);
    drawing.Fill();
    const double length = std::min(width, 2 * kKeyWidth) - 2 * kMargin;
    for (int x = 0; x < static_cast<int>(length); ++x) {
        const PF_Pixel color = ColorAt(x / (length - 1));
        drawing.SetColor(color.red / 255.0, color.green / 255.0, color.blue / 255.0);
        drawing.AddRect(kMargin + x, 24, 1, kBar);
        drawing.Fill();
    }
    drawing.SetFont(kPanelTypeface, kTypeSize);
    drawing.SetColor(kText, kText, kText);
    drawing.DrawText("Largest difference of a channel, in 255ths; black: none", kMargin, 17);
    for (const auto& [steps, text] :
         {std::pair(0.25, "1/4"), {1.0, "1"}, {4.0, "4"}, {16.0, "16"}, {64.0, "64"}, {255.0, "255"}}) {
        const double x = kMargin + PlaceOf(steps / 255) * length;
        drawing.DrawText(
            text, std::clamp(x - drawing.TextWidth(text) / 2, kMargin, kMargin + length - drawing.TextWidth(text)), 49);
    }
    return WorldOf(kPicture, drawing);
}

}  // namespace

PF_Pixel HeatColor(double difference) {
    if (difference == 0) return {255, 0, 0, 0};
    return ColorAt(PlaceOf(difference));
}

Result<World> DrawHeatMap(const Comparison& comparison) {
    const int width = comparison.window.right - comparison.window.left;
    const int height = comparison.window.bottom - comparison.window.top;
    const World key = TRY(DrawKey(std::max(width, kKeyWidth)));
    World map = World::Create(key.Width(), height + kKeyHeight, Depth::k8);
    if (map.IsNull() || comparison.differences.empty()) return NotEnoughMemory(kPicture);
    const auto* difference = comparison.differences.data();
    const auto ground = static_cast<A_u_char>(std::lround(kGround * 255));
    for (int y = 0; y < height; ++y) {
        auto* row = static_cast<PF_Pixel*>(static_cast<void*>(map.Row(y)));
        for (int x = 0; x < width; ++x) row[x] = HeatColor(static_cast<double>(*difference++));
        std::fill(row + width, row + key.Width(), PF_Pixel{255, ground, ground, ground});
    }
    for (int y = 0; y < kKeyHeight; ++y) {
        std::memcpy(map.Row(height + y), key.Row(y), static_cast<std::size_t>(key.Width()) * sizeof(PF_Pixel));
    }
    return map;
}

}  // namespace umbrant::host
