// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Laying one world over another in any transfer mode: the arithmetic behind the host's transfer_rect service.

#include "hostapi/transfer.h"

namespace umbrant::host {

/// Composites a rectangle of `source` onto `destination` with its top-left at (destinationX, destinationY), which may
/// be negative; what falls outside either world is left out. `sourceRect` null: the whole source. `mask` null: none;
/// otherwise its pixels, moved by its offset over the source, weigh the source's alpha (its alpha or luminance,
/// inverted when so flagged, 0 outside the mask world). `field` UPPER touches the destination's even rows, LOWER the
/// odd ones.
///
/// The stencil modes (MULTIPLY_ALPHA, MULTIPLY_ALPHA_LUMA) act on the whole destination: where the source does not
/// reach, its alpha counts as 0. Both worlds are straight for any `modeFlags`, and `quality` changes nothing.
///
/// Worlds must be ones that this host made, in the same format, otherwise, and for an unknown mode or a null pointer,
/// PF_Err_BAD_CALLBACK_PARAM is returned and nothing is written. PF_Err_OUT_OF_MEMORY when a copy for a world laid over
/// itself cannot be had. Rows are spread over the processor's cores; the result does not depend on their number.
PF_Err TransferRect(PF_Quality quality, PF_ModeFlags modeFlags, PF_Field field, const PF_Rect* sourceRect,
                    const PF_EffectWorld* source, const PF_CompositeMode* mode, const PF_MaskWorld* mask,
                    A_long destinationX, A_long destinationY, PF_EffectWorld* destination);

}  // namespace umbrant::host
