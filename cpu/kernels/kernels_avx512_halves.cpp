// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The kernels for AVX-512 on registers of 256 bits.

#define UMBRANT_KERNELS kAvx512HalfKernels
#define UMBRANT_KERNELS_NAME "AVX-512/256"
#if defined(__AVX512VL__)
#define UMBRANT_LANES 8
#endif
#include "cpu/kernels/kernel_loops.inc"
