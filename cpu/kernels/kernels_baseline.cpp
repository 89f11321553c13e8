// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The kernels for whatever the compiler's target has.

#define UMBRANT_KERNELS kBaselineKernels
#if defined(__aarch64__)
#define UMBRANT_KERNELS_NAME "NEON"
#else
#define UMBRANT_KERNELS_NAME "baseline"
#endif
#include "cpu/kernels/kernel_loops.inc"
