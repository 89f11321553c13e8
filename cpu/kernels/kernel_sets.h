// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The kernels by instruction set. Only the baseline exists on processors other than x86-64.

#include "cpu/kernels/kernels.h"

namespace umbrant::effect {

extern const CpuKernels kBaselineKernels;
extern const CpuKernels kAvx2Kernels;
extern const CpuKernels kAvx512Kernels;
/// The same instructions on registers of 256 bits.
extern const CpuKernels kAvx512HalfKernels;

}  // namespace umbrant::effect
