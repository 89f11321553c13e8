// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Colours as floating-point numbers. A definition has 8 bits for each channel of a colour; the numbers travel in the
// same definition, behind the member for colours, where the interface has room for other kinds of rows. So they go
// wherever an effect copies the definition, until it asks the colour parameter suite for them.

#include <optional>

#include "hostapi/params.h"

namespace umbrant::host {

/// 1 is what 255 is in 8 bits. Without alpha: a row's colour is opaque.
struct FloatColor {
    float red = 0;
    float green = 0;
    float blue = 0;
};

/// Channels are from minus this to this: what a half float holds.
inline constexpr float kColorLimit = 65504;

/// Sets a colour's value to the numbers, and to the nearest that 8 bits hold.
void SetFloatColor(PF_ParamDef& def, const FloatColor& color);

/// Sets a colour's value to 8 bits per channel, without other numbers.
void SetByteColor(PF_ParamDef& def, const PF_Pixel& color);

/// A colour's value: the numbers that SetFloatColor gave it, unless its 8 bits have been changed since, else those of
/// its 8 bits.
FloatColor FloatColorOf(const PF_ParamDef& def);

}  // namespace umbrant::host
