// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The two blend-mode popups and what they mean to the host, and the per-channel blend functions, whose arithmetic is
// fixed to the last rounding step: which part of a term is single and which double precision is part of the result.

#include <cstdint>

#include "hostapi/transfer.h"

namespace umbrant::effect {

/// The items of the shadow's "Blend Mode" popup; "(-" is a separator that takes a number.
inline constexpr char kShadowBlendModeItems[] =
    "Normal|(-|Add|Screen|(-|Overlay|Soft Light|Hard Light|(-|Darken|Multiply|Color Burn|Classic Color Burn|"
    "Linear Burn|Darker Color";
/// The items of the texture's "Blend Mode" popup. Their numbers are the modes of `blend8` and `blend32`.
inline constexpr char kTextureBlendModeItems[] =
    "Normal|(-|Multiply|Color Burn|(-|Add|Screen|(-|Overlay|Soft Light|(-|Stencil Alpha|Stencil Luma|"
    "Silhouette Alpha|Silhouette Luma";

/// Host transfer mode of an item (1-based) of the shadow's popup; separators and any other number give
/// `PF_Xfer_IN_FRONT`.
PF_TransferMode ShadowTransferMode(int32_t item);

/// Writes the host transfer mode of an item (1-based) of the texture's popup to `mode->xfer`. Separators and any other
/// number leave `mode` as it was.
void ApplyTextureTransferMode(int32_t item, PF_CompositeMode* mode);

// Per-channel blending of one scalar. `a` is the layer being laid on, `b` the value underneath, `opacity` 0..1, `mode`
// an item number of the texture's popup; a number without a blend of its own (separators, stencils, silhouettes,
// anything outside) blends with 0, so it fades `b` towards black. Alpha is never read.

}  // namespace umbrant::effect

/// The blended channel, not clamped. Mode 4 writes the clamped `b` back through its pointer.
float blend32(float* a, float* b, float* opacity, int mode);

/// The blended channel of 0..255 values, clamped and truncated. Writes nothing back.
unsigned char blend8(unsigned char* a, unsigned char* b, float* opacity, int mode);

/// b (1 - t) + a t, the last step of every blend: a t in single precision, the rest in double, narrowed at the end.
float mix32(float* a, float* b, float* t);

/// The term of mode 9. The branch depends on the source `a`, not on `b`.
float overlay(float* a, float* b);

/// The term of mode 10.
float softLight(float* a, float* b);

/// The term of mode 4. A `b` not above 0.001 becomes 0.001 in the caller's storage.
float colorBurn(float* a, float* b);
