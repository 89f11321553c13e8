// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The easing curves, written in the order of operations that fixes their last bit.

#include "pixel/easing.h"

#include <cmath>

double easeIn(double t, double b, double c, double d) {
    // Intended: only t = 0 is special, so the curve jumps from b to about b + c/1024 just above it.
    if (t == 0.0) return b;
    return b + c * std::exp2(((t / d) + -1.0) * 10.0);
}

double easeInOut(double t, double b, double c, double d) {
    if (t == 0.0) return b;
    if (t == d) return b + c;
    const double u = t / (d * 0.5);
    const double h = c * 0.5;
    if (1.0 > u) return b + h * std::exp2(10.0 * (u - 1.0));
    return b + h * (2.0 - std::exp2(-10.0 * (u - 1.0)));
}

double weightFloat(double a, double b, double w) {
    return a - (a - b) * w;
}
