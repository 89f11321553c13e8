// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A world at any other size.

#include "host/compositing/world.h"

namespace umbrant::host {

/// A rectangle in the pixels of a world, whole or not.
struct WorldPart {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};

/// A part of a world as a world of `width` x `height`, in the world's depth: interpolated between pixels where it is
/// enlarged, the mean of the pixels below a tent where it is reduced. Colours are weighted by alpha; a pixel without
/// alpha becomes transparent black. Beyond its edges a world continues with its outermost pixels. No side may be 0.
/// Null when memory cannot be had.
World Resize(const World& world, const WorldPart& part, int width, int height);

}  // namespace umbrant::host
