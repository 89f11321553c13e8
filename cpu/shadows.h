// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A shadow's alpha, drawn by the CPU renderer as it was planned: the same sampling positions, edges and 16-bit
// roundings as the GPU passes. Pixels in, pixels out; host and messages are render/'s.

#include <cstdint>

#include "cpu/column_tiles.h"
#include "render/pass_plan.h"

namespace umbrant::effect {

// All results last until the calling thread's next draw; all throw std::bad_alloc. The layer is not empty of pixels.

/// The source of an inner shadow's samples. `layer` is the alpha of the padded layer.
AlphaPlane InvertAlpha(const InversionPlan& plan, const AlphaPlane& layer);

/// The source of a radial shadow's samples: the layer in 16 bits, in its border.
AlphaPlane PadAlpha(const PaddingPlan& plan, const AlphaPlane& layer);

/// Draws all samples of `plan`: the plan's width x height values of 0..65535. A normal shadow's source is its layer.
const uint16_t* DrawStack(const StackPlan& plan, const AlphaPlane& source);

/// Gives the calling thread's memory back before the thread ends.
void ReleaseStackMemory();

}  // namespace umbrant::effect
