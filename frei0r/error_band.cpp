// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "frei0r/error_band.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

std::uint32_t PixelOf(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const std::uint8_t channels[] = {red, green, blue, 255};
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, channels, sizeof pixel);
    return pixel;
}

}  // namespace

void DrawErrorBand(std::uint32_t* pixels, int width, int height) {
    if (width <= 0 || height <= 0) return;
    const std::uint32_t colors[] = {PixelOf(255, 0, 255), PixelOf(0, 0, 0)};
    const int rows = std::max(1, height / 4);
    const int top = (height - rows) / 2;
    // Half of the band's height: stripes are wide enough to survive scaling, and several fit into any frame.
    const int stripe = std::max(1, rows / 2);
    for (int y = top; y < top + rows; ++y) {
        std::uint32_t* row = pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        for (int x = 0; x < width; ++x) row[x] = colors[(x + y - top) / stripe % 2];
    }
}
