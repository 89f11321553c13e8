// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Each shadow type's alpha, drawn by the processor: the same samples, buffer sizes, sampling places, edges and 16-bit
// roundings as the GPU passes. Pixels in, pixels out; host and messages are render/'s.

#include <cstdint>

#include "cpu/column_tiles.h"
#include "render/render_settings.h"

/// How much of a shadow is worked on.
enum class Extent {
    kWhereSomething,  ///< where the layer, grown by the passes' reach, is not empty
    kEverywhere,      ///< everything; the result is the same to the bit
};

/// A radial shadow's border around the layer, and the size with it, pixels.
struct RadialPadding {
    int pad = 0;
    int width = 0;
    int height = 0;
};

// All return output width x height values of 0..65535 that last until the calling thread's next draw, and throw
// std::bad_alloc. The settings have at least one sample, and the records of their buffers; the layer is not empty of
// pixels.

/// `layer` is the input world's alpha. A sample whose buffer is zero-sized is left out.
const uint16_t* DrawNormalStack(const myParams& settings, const AlphaPlane& layer, Extent extent);

/// `layer` is the alpha of `innerSourceWorld`.
const uint16_t* DrawInnerStack(const myParams& settings, const AlphaPlane& layer, Extent extent);

/// `layer` is the input world's alpha.
const uint16_t* DrawRadialStack(const myParams& settings, const RadialPadding& padding, const AlphaPlane& layer,
                                Extent extent);

/// Gives the calling thread's memory back before the thread ends.
void ReleaseStackMemory();
