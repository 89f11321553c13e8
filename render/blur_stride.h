// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How many taps a blur takes and how far apart they are. A stride is rounded to single precision, as a uniform is: a
// blur of a hundred taps multiplies what is rounded in another way. Strides are in widths or heights of what a pass
// reads.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "pixel/saturate.h"

namespace umbrant::effect {

/// Pixels that a blur reaches each way.
inline double BlurAmount(double softness) {
    return std::max(softness, 1.0);
}

/// Taps each side; at least one.
inline int32_t BlurSteps(double resolutionScale, double amount) {
    return std::max(ToInt32(std::ceil(resolutionScale * amount)), 1);
}

/// Of a normal or inner shadow's blur across.
inline float StrideAcross(double amount, int32_t steps, int32_t width) {
    return static_cast<float>((amount / steps) * (1.0 / width));
}

/// Of a normal or inner shadow's blur down. It reads the amount that the blur across has left in the settings record,
/// which keeps it in single precision; a float divided by a number of steps is a float again.
inline float StrideDown(float amount, int32_t steps, int32_t height) {
    return static_cast<float>(static_cast<double>(amount / static_cast<float>(steps)) * (1.0 / height));
}

/// Of both blurs of a radial shadow, whose samples keep their softness in double precision.
inline float StrideRadial(double softness, int32_t steps, int32_t size) {
    return static_cast<float>((softness / steps) / size);
}

}  // namespace umbrant::effect
