// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The heart of the CPU renderer: every sample of a stack blurred across, blurred down, stretched into place and added
// to the output, with a rounding to 16 bits after each of the passes, as the GPU's buffers round.

#include <cstdint>
#include <memory>
#include <vector>

#include "cpu/coarse/wide_sample.h"
#include "cpu/column_tiles.h"
#include "render/pass_plan.h"

namespace umbrant::effect {

/// One sample whose planned regions are not empty and of which the source stores rows.
struct StackSample {
    const ColumnTiles* source = nullptr;
    const SamplePlan* plan = nullptr;  ///< only its regions are drawn
    Kernel acrossKernel;               ///< with the sample's opacity, and the source's scale to 0..65535, as its gain
    Kernel downKernel;                 ///< in rows of the copy, with a gain of 1
    Decimation decimation;
    const PyramidLevel* level = nullptr;  ///< of a wide sample: the source's rows on its grid
};

/// Draws stacks; keeps its memory from one to the next. Used by one thread at a time.
class StackDrawer {
 public:
    StackDrawer();
    ~StackDrawer();
    StackDrawer(const StackDrawer&) = delete;
    StackDrawer& operator=(const StackDrawer&) = delete;

    /// The union of the samples' alphas, in order: `width` x `height` values of 0..65535 that last until the next draw.
    /// Throws std::bad_alloc.
    const uint16_t* Draw(const std::vector<StackSample>& samples, int width, int height);

 private:
    struct Memory;
    std::unique_ptr<Memory> memory_;
};

}  // namespace umbrant::effect
