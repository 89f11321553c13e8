// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Scenes that are hard for coarse grids, and how far their pictures are from the exact ones.

#include <cstddef>

#include "tests/cpu/processor_scene.h"

namespace umbrant::effect {

/// Scene `number`: hard edges, thin lines, noise and text at high opacities, few samples, all types and both depths.
/// Sets what the scene's `alphaOf` draws, until the next call.
RandomScene MakeHardScene(unsigned number);

/// A scene on coarse grids against the same drawn exactly.
struct SceneErrors {
    double worst = 0;    ///< in units of 1/255 or, in float, of 1/65535
    double allowed = 0;  ///< the most that it may be
    double share = 0;    ///< of the pixels of an 8-bit scene that differ, ties left out
    std::size_t ties = 0;
    bool isDecimated = false;  ///< whether any value differs
};

/// Draws the scene three times. The CPU renderer must be chosen; leaves drawing on coarse grids on.
SceneErrors MeasureErrors(SceneRenderer& renderer, RandomScene scene);

}  // namespace umbrant::effect
