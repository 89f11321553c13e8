// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The curves along which distance, softness and opacity progress over the length of the shadow. Double precision
// throughout; arguments as in the classic easing equations.

/// Exponential ease-in at position `t` of a run of length `d` that starts at `b` and changes by `c`. Exactly `b` at
/// t = 0; just above it the curve begins at about b + c/1024.
double easeIn(double t, double b, double c, double d);

/// Exponential ease-in and ease-out; exactly `b` at t = 0 and b + c at t = d, b + c/2 in the middle.
double easeInOut(double t, double b, double c, double d);

/// a - (a - b) w: `a` at weight 0, `b` at weight 1.
double weightFloat(double a, double b, double w);
