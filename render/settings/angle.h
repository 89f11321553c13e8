// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Degrees to radians the way the whole effect does it: the factor and the product are single precision, sine and cosine
// double. Rectangles and samples must agree to the pixel, so both take the angle from here.

namespace umbrant::effect {

/// Radians of `degrees`, formed in single precision and widened.
inline double RadiansOf(double degrees) {
    return static_cast<double>(static_cast<float>(degrees) * 0.0174533f);
}

}  // namespace umbrant::effect
