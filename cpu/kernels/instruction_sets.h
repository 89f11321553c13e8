// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What this processor and its operating system run. Asked of the processor itself: compilers have a function for it,
// but not each has what that function needs at run time.

namespace umbrant::effect {

struct InstructionSets {
    bool avx2 = false;    ///< AVX2 and FMA, and registers of 256 bits are kept
    bool avx512 = false;  ///< AVX-512 F, BW, DQ and VL, and registers of 512 bits are kept
    bool halves = false;  ///< its arithmetic units have 256 bits
};

InstructionSets ReadInstructionSets();

}  // namespace umbrant::effect
