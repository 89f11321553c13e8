// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the stack drawer divides the output.

namespace umbrant::effect {

/// The part of the output that one task draws: what it is made of fits the second-level cache, 290 KiB of sums, and as
/// much of the source and of each blur.
struct PatchSize {
    int width = 768;
    int height = 192;
};

/// The size of patches in the draws that follow, at least 1 x 1. For tests and measurements.
void SetPatchSize(PatchSize size);
PatchSize CurrentPatchSize();

}  // namespace umbrant::effect
