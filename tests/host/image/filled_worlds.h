// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Worlds of one pixel value, and single pixels of a world.

#include "host/compositing/world.h"

namespace umbrant::host {

inline PF_Pixel& Pixel8(World& world, int x, int y) {
    return static_cast<PF_Pixel*>(static_cast<void*>(world.Row(y)))[x];
}

inline PF_PixelFloat& PixelFloat(World& world, int x, int y) {
    return static_cast<PF_PixelFloat*>(static_cast<void*>(world.Row(y)))[x];
}

inline World Filled8(int width, int height, PF_Pixel pixel) {
    World world = World::Create(width, height, Depth::k8);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) Pixel8(world, x, y) = pixel;
    }
    return world;
}

inline World FilledFloat(int width, int height, PF_PixelFloat pixel) {
    World world = World::Create(width, height, Depth::k32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) PixelFloat(world, x, y) = pixel;
    }
    return world;
}

}  // namespace umbrant::host
