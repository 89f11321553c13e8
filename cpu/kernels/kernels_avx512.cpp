// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The kernels for AVX-512 (F, BW, DQ, VL).

#define UMBRANT_KERNELS kAvx512Kernels
#define UMBRANT_KERNELS_NAME "AVX-512"
#include "cpu/kernels/kernel_loops.inc"
