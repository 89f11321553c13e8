// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The per-pixel functions that the host's iterate suites call to move one channel between a world and a tightly packed
// buffer, and to make a world opaque. They may run on several threads over different rows: each writes only the
// element or pixel of its own position, and the refcon is read only. All of them always return 0.

#include "hostapi/pixels.h"

/// What every transfer callback receives as its refcon.
struct PixelTransferRefcon {
    void* buffer;           ///< width x height elements, no padding: bytes for 8-bit worlds, floats for float worlds
    PF_EffectWorld* world;  ///< the world being iterated; only its width is read
    void* colour;           ///< shadow colour as a pixel of the world's depth; null for the "In" callbacks
};

// Into the buffer: the alpha of `in`. `out` is not touched. ("Red" is the one channel of the texture it goes to.)

PF_Err CopyRedPixel8In(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);
PF_Err CopyRedFloatIn(void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat* out);

// Out of the buffer: its element becomes the alpha of `out`, the colour's red, green and blue the rest. The colour's
// own alpha plays no part. `in` is not read.

PF_Err CopyPixel8Out(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);
PF_Err CopyPixelFloatOut(void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat* out);

// The alpha of `out` becomes full; its colour stays. Neither the refcon nor `in` is read.

PF_Err maxAlpha8(void* refcon, A_long x, A_long y, PF_Pixel* in, PF_Pixel* out);
PF_Err maxAlpha32(void* refcon, A_long x, A_long y, PF_PixelFloat* in, PF_PixelFloat* out);

/// The 8-bit pixel of `world` at (x, y). No bounds are checked.
PF_Pixel* sampleIntegral8(PF_EffectWorld& world, A_long x, A_long y);
/// The float pixel of `world` at (x, y). No bounds are checked.
PF_PixelFloat* sampleIntegral32(PF_EffectWorld& world, A_long x, A_long y);

/// Does nothing: a place to break on while debugging.
void Problem();
