// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A world with pixels for tests. Its rows are padded, and the padding carries a pattern, so that code which takes rows
// for tightly packed, or writes beside them, is caught.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "hostapi/pixels.h"

class TestWorld {
 public:
    static constexpr uint8_t kPadding = 0xA5;

    /// A zeroed world of `width` x `height` pixels of `sizeof(PF_Pixel)`, `sizeof(PF_Pixel16)` or
    /// `sizeof(PF_PixelFloat)` bytes, with `padPixels` more per row.
    TestWorld(int width, int height, size_t pixelBytes, int padPixels = 3);

    PF_EffectWorld world{};

    PF_Pixel& At8(int x, int y) { return *reinterpret_cast<PF_Pixel*>(Address(x, y)); }
    PF_PixelFloat& AtFloat(int x, int y) { return *reinterpret_cast<PF_PixelFloat*>(Address(x, y)); }
    /// Whether no byte beside the rows has changed.
    bool PaddingIntact() const;

 private:
    uint8_t* Address(int x, int y) {
        return bytes_.data() + static_cast<size_t>(y) * world.rowbytes + static_cast<size_t>(x) * pixelBytes_;
    }
    size_t pixelBytes_;
    std::vector<uint8_t> bytes_;
};
