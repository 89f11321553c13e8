// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How many frames may be under way at once: what they cost in memory, and what the machine has.

#include <cstdint>

#include "host/sequence/pipeline.h"

/// Bytes of one frame's pictures. See docs/sequences.md for the formula that is made of them.
struct FrameFootprint {
    std::uint64_t file = 0;          ///< the input's pixels at full size, at the depth of its file
    std::uint64_t layer = 0;         ///< the layer as it is drawn
    std::uint64_t texture = 0;       ///< the texture as it is drawn
    std::uint64_t output = 0;        ///< the drawn picture
    std::uint64_t outputPixels = 0;  ///< its pixels
};

/// What a machine lends.
struct MachineLimits {
    int cores = 1;
    std::uint64_t memory = 0;  ///< bytes that can be had; 0 when nobody knows
    int mostDrawers = 64;      ///< beyond it the renderer gains nothing
};

/// The machine that this runs on.
MachineLimits ThisMachine();

/// The threads beside `drawers` drawing ones: readers, writers, and the frames under way.
PipelineShape ShapeFor(int drawers);

/// The most memory that frames take at once, beside what the program has anyhow.
std::uint64_t MostBytes(const PipelineShape& shape, const FrameFootprint& frame);

/// Drawing threads that suit the machine: one a core, as far as the renderer gains, and as half of its free memory has
/// room for; at least 1.
int DrawersFor(const MachineLimits& machine, const FrameFootprint& frame);
