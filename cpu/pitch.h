// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How rows of floats lie in memory.

#include <cstddef>

#include "cpu/kernels/kernels.h"

namespace umbrant::effect {

inline int DivideUp(int count, int by) {
    return (count + by - 1) / by;
}

/// Floats from row to row: whole cache lines, an odd number of pairs of them, so that the rows of a narrow strip spread
/// over the cache's sets.
inline ptrdiff_t PitchFor(int columns) {
    const int chunks = DivideUp(columns, kColumnChunk) | 1;
    return ptrdiff_t{chunks} * kColumnChunk;
}

}  // namespace umbrant::effect
