// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Bounding what a world's alpha holds.

#include "render/passes/alpha_regions.h"

#include <algorithm>
#include <limits>

#include "render/passes/work_extent.h"

namespace umbrant::effect {

namespace {

struct IsSomething {
    bool operator()(uint8_t alpha) const { return alpha != 0; }
    // Not-a-number counts, and spreads as far as its neighbours do.
    bool operator()(float alpha) const { return alpha != 0; }
};

struct IsHole {
    bool operator()(uint8_t alpha) const { return alpha != 255; }
    bool operator()(float alpha) const { return !(alpha >= 1 && alpha <= std::numeric_limits<float>::max()); }
};

template <typename Pixel>
const Pixel* RowOf(const PF_LayerDef& world, int32_t y) {
    return reinterpret_cast<const Pixel*>(reinterpret_cast<const char*>(world.data) +
                                          static_cast<ptrdiff_t>(y) * world.rowbytes);
}

template <typename Pixel, typename Test>
bool AnyIn(const Pixel* row, int32_t width, Test test) {
    // In blocks, without a branch a pixel.
    constexpr int32_t kBlock = 32;
    int32_t x = 0;
    for (; x + kBlock <= width; x += kBlock) {
        int found = 0;
        for (int32_t i = 0; i < kBlock; ++i) found |= test(row[x + i].alpha) ? 1 : 0;
        if (found) return true;
    }
    return std::any_of(row + x, row + width, [&](const Pixel& pixel) { return test(pixel.alpha); });
}

template <typename Pixel, typename Test>
Region FindIn(const PF_LayerDef& world, Test test) {
    Region found{{world.width, 0}, {0, world.height}};
    const auto any = [&](int32_t y) { return AnyIn(RowOf<Pixel>(world, y), world.width, test); };
    while (!found.y.Empty() && !any(found.y.begin)) ++found.y.begin;
    while (!found.y.Empty() && !any(found.y.end - 1)) --found.y.end;
    for (int32_t y = found.y.begin; y < found.y.end; ++y) {
        const Pixel* row = RowOf<Pixel>(world, y);
        // Only what is outside the columns that are known is looked at.
        int32_t x = 0;
        while (x < found.x.begin && !test(row[x].alpha)) ++x;
        found.x.begin = x;
        x = world.width;
        while (x > found.x.end && !test(row[x - 1].alpha)) --x;
        found.x.end = x;
    }
    return found;
}

template <typename Test>
Region Find(const PF_LayerDef& world, int32_t bitDepth, Test test) {
    if (WorksEverywhere()) return WholeRegion(world.width, world.height);
    return bitDepth == 8 ? FindIn<PF_Pixel>(world, test) : FindIn<PF_PixelFloat>(world, test);
}

}  // namespace

Region FindAlpha(const PF_LayerDef& world, int32_t bitDepth) {
    return Find(world, bitDepth, IsSomething{});
}

Region FindHoles(const PF_LayerDef& world, int32_t bitDepth) {
    return Find(world, bitDepth, IsHole{});
}

}  // namespace umbrant::effect
