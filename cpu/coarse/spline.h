// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// B-splines, by which blurred copies are kept on coarse grids: a signal without high frequencies is thinned, filtered
// and evaluated with a few weights each. After Unser, "Splines: a perfect fit for signal and image processing" (1999).

#include <array>
#include <vector>

#include "cpu/taps.h"

namespace umbrant::effect {

/// The B-spline of degree 3, of support -2..2 and sum 1 over whole numbers.
double CubicSpline(double x);
/// The B-spline of degree 5, of support -3..3.
double QuinticSpline(double x);

/// Weights of inputs -5 to 5 that make every second input a coefficient of the quintic spline. Sum 1.
std::array<float, 11> FirstThinning();
/// Weights of coefficients -3 to 3 that make every second one a coefficient of a grid twice as coarse.
inline constexpr std::array<float, 7> kNextThinning = {1 / 64.0f,  6 / 64.0f, 15 / 64.0f, 20 / 64.0f,
                                                       15 / 64.0f, 6 / 64.0f, 1 / 64.0f};

/// Weights -6 to 6 that make values at the grid's places the coefficients of the quintic spline through them. Right
/// where the values have no frequency above 0.3 cycles a place; sum 1.
const std::array<float, 13>& QuinticFilter();

/// A blur between two grids of every `grid`-th row: weights, about the middle one, that make coefficients of the
/// quintic spline those of the cubic spline of the blurred signal. Sum 1 whatever the kernel's gain.
std::vector<float> CoarseKernel(const Kernel& kernel, int grid);
/// Its weights on each side of the middle one.
int CoarseReach(const Kernel& kernel, int grid);

/// Creates the tables that QuinticFilter and CoarseKernel keep for good and create at their first use otherwise. To be
/// called when the module is loaded: a child of fork() would wait forever for a thread of its parent that was creating
/// them.
void CreateSplineTables();

}  // namespace umbrant::effect
