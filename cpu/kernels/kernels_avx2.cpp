// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The kernels for AVX2 and FMA.

#define UMBRANT_KERNELS kAvx2Kernels
#define UMBRANT_KERNELS_NAME "AVX2"
#include "cpu/kernels/kernel_loops.inc"
