// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An animation as a picture: a plot for each row that moves, its value over the frames, its keys as diamonds.

#include "host/animation/animation.h"
#include "host/compositing/world.h"
#include "host/result.h"

namespace umbrant::host {

struct CurvesOptions {
    double firstFrame = 0;
    double lastFrame = 1;  ///< later than the first
    int width = 960;       ///< pixels
};

/// Pixels that a row's plot is high, and the picture's head.
inline constexpr int kPlotHeight = 150;
inline constexpr int kCurvesHead = 30;

/// 8 bits, opaque; as high as the head and all plots. Points have a curve for each coordinate, colours one for each
/// channel and a strip of the colour itself. Fails with `ErrorKind::kInternal` when there is no memory.
Result<World> DrawCurves(const ParamSet& values, const Animation& animation, const AnimationClock& clock,
                         const CurvesOptions& options);

}  // namespace umbrant::host
