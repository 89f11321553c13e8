// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/test_world.h"

#include <algorithm>
#include <cstddef>

TestWorld::TestWorld(int width, int height, size_t pixelBytes, int padPixels) : pixelBytes_(pixelBytes) {
    const size_t rowBytes = static_cast<size_t>(width + padPixels) * pixelBytes;
    // One row more than needed, so that a world without rows has an address too.
    bytes_.assign(rowBytes * static_cast<size_t>(height + 1), kPadding);
    world.width = width;
    world.height = height;
    world.rowbytes = static_cast<A_long>(rowBytes);
    world.extent_hint = {0, 0, width, height};
    world.data = reinterpret_cast<PF_Pixel*>(bytes_.data());
    for (int y = 0; y < height; ++y) {
        std::fill_n(Address(0, y), static_cast<size_t>(width) * pixelBytes, uint8_t{0});
    }
}

bool TestWorld::PaddingIntact() const {
    const auto begin = bytes_.begin();
    const auto rowBytes = static_cast<std::ptrdiff_t>(world.rowbytes);
    const auto pixels = static_cast<std::ptrdiff_t>(world.width) * static_cast<std::ptrdiff_t>(pixelBytes_);
    const auto isPadding = [](uint8_t byte) { return byte == kPadding; };
    for (std::ptrdiff_t y = 0; y < world.height; ++y) {
        if (!std::all_of(begin + y * rowBytes + pixels, begin + (y + 1) * rowBytes, isPadding)) return false;
    }
    return std::all_of(begin + world.height * rowBytes, bytes_.end(), isPadding);
}
