// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/test_world.h"

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
        uint8_t* row = Address(0, y);
        for (size_t i = 0; i < static_cast<size_t>(width) * pixelBytes; ++i) row[i] = 0;
    }
}

bool TestWorld::PaddingIntact() const {
    const size_t rowBytes = static_cast<size_t>(world.rowbytes);
    for (size_t i = 0; i < bytes_.size(); ++i) {
        const bool isPixel = i / rowBytes < static_cast<size_t>(world.height) &&
                             i % rowBytes < static_cast<size_t>(world.width) * pixelBytes_;
        if (!isPixel && bytes_[i] != kPadding) return false;
    }
    return true;
}
