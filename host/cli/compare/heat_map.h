// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The differences of two images as a heat map: from black, where there is none, over violet and orange to a pale
// yellow.

#include "host/image/compare.h"
#include "host/result.h"

namespace umbrant::host {

/// An opaque picture of 8 bits: a pixel for each of the comparison's window, and a key below, which needs 360 pixels of
/// width. The scale is logarithmic, from a quarter of 1/255 to 1. Fails with `ErrorKind::kInternal` when the drawing
/// library cannot be loaded or there is no memory.
Result<World> DrawHeatMap(const Comparison& comparison);

/// The colour of a difference from 0 to 1 or beyond.
PF_Pixel HeatColor(double difference);

}  // namespace umbrant::host
