// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The kernels for whatever the compiler's target has.

#define UMBRANT_KERNELS kBaselineKernels
#define UMBRANT_KERNELS_NAME "baseline"
#include "cpu/kernel_loops.inc"
