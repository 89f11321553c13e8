// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Worlds made from worlds: smaller, in another depth, cut to a frame.

#include "host/compositing/world.h"

namespace umbrant::host {

/// The size of a layer's side at one n-th of its resolution: a part of a pixel is a pixel.
int DownsampledSize(int size, int n);

/// The world at one n-th of its resolution: each pixel is the mean of the n x n pixels below it (fewer at the right and
/// bottom edges), weighted by alpha; a pixel of no alpha has the plain mean of the colours. `n` at least 1. Null when
/// memory cannot be had.
World Downsample(const World& world, int n);

/// The world in another depth: 8 bits to 0..1 exactly; to 8 and 16 bits clamped and rounded to nearest. Null when
/// memory cannot be had.
World ConvertDepth(const World& world, Depth depth);

/// The part of a world that a frame of `width` x `height` shows when the world's top-left is at (x, y) in it;
/// transparent black elsewhere. Null when memory cannot be had.
World CutToFrame(const World& world, int x, int y, int width, int height);

}  // namespace umbrant::host
