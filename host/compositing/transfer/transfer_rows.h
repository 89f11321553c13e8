// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The inner loops of the transfer modes: one function for each mode, pixel type and rgb-only setting, found once per
// call, so that no pixel asks which mode it is in.

#include <cstdint>

#include "hostapi/transfer.h"

namespace umbrant::host {

/// What a run of pixels needs to know besides its pixels.
struct RowPlace {
    int x;  ///< of the first pixel, in the destination (for DISSOLVE)
    int y;
    std::uint32_t seed;  ///< `rand_seed`
    float opacity;       ///< 0..1
};

/// Composites `count` source pixels onto as many destination pixels. `mask` is null for none, or `count` factors of the
/// source's alpha, 0..1. The two runs are the same memory or do not overlap.
template <typename Pixel>
using RowFunction = void (*)(const Pixel* source, Pixel* destination, const float* mask, int count, RowPlace place);

/// The loop of one mode; null for a mode that is not among the 39.
template <typename Pixel>
RowFunction<Pixel> FindRowFunction(PF_TransferMode mode, bool rgbOnly);

extern template RowFunction<PF_Pixel> FindRowFunction<PF_Pixel>(PF_TransferMode, bool);
extern template RowFunction<PF_Pixel16> FindRowFunction<PF_Pixel16>(PF_TransferMode, bool);
extern template RowFunction<PF_PixelFloat> FindRowFunction<PF_PixelFloat>(PF_TransferMode, bool);

}  // namespace umbrant::host
