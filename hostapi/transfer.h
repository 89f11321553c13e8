// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Transfer modes and the records of the host's compositing calls.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/pixels.h"

typedef A_long PF_TransferMode;
typedef PF_TransferMode PF_XferMode;

inline constexpr PF_TransferMode PF_Xfer_NONE = -1;
inline constexpr PF_TransferMode PF_Xfer_COPY = 0;
inline constexpr PF_TransferMode PF_Xfer_BEHIND = 1;
inline constexpr PF_TransferMode PF_Xfer_IN_FRONT = 2;
inline constexpr PF_TransferMode PF_Xfer_DISSOLVE = 3;
inline constexpr PF_TransferMode PF_Xfer_ADD = 4;
inline constexpr PF_TransferMode PF_Xfer_MULTIPLY = 5;
inline constexpr PF_TransferMode PF_Xfer_SCREEN = 6;
inline constexpr PF_TransferMode PF_Xfer_OVERLAY = 7;
inline constexpr PF_TransferMode PF_Xfer_SOFT_LIGHT = 8;
inline constexpr PF_TransferMode PF_Xfer_HARD_LIGHT = 9;
inline constexpr PF_TransferMode PF_Xfer_DARKEN = 10;
inline constexpr PF_TransferMode PF_Xfer_LIGHTEN = 11;
inline constexpr PF_TransferMode PF_Xfer_DIFFERENCE = 12;
inline constexpr PF_TransferMode PF_Xfer_HUE = 13;
inline constexpr PF_TransferMode PF_Xfer_SATURATION = 14;
inline constexpr PF_TransferMode PF_Xfer_COLOR = 15;
inline constexpr PF_TransferMode PF_Xfer_LUMINOSITY = 16;
inline constexpr PF_TransferMode PF_Xfer_MULTIPLY_ALPHA = 17;
inline constexpr PF_TransferMode PF_Xfer_MULTIPLY_ALPHA_LUMA = 18;
inline constexpr PF_TransferMode PF_Xfer_MULTIPLY_NOT_ALPHA = 19;
inline constexpr PF_TransferMode PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA = 20;
inline constexpr PF_TransferMode PF_Xfer_ADDITIVE_PREMUL = 21;
inline constexpr PF_TransferMode PF_Xfer_ALPHA_ADD = 22;
inline constexpr PF_TransferMode PF_Xfer_COLOR_DODGE = 23;
inline constexpr PF_TransferMode PF_Xfer_COLOR_BURN = 24;
inline constexpr PF_TransferMode PF_Xfer_EXCLUSION = 25;
inline constexpr PF_TransferMode PF_Xfer_DIFFERENCE2 = 26;
inline constexpr PF_TransferMode PF_Xfer_COLOR_DODGE2 = 27;
inline constexpr PF_TransferMode PF_Xfer_COLOR_BURN2 = 28;
inline constexpr PF_TransferMode PF_Xfer_LINEAR_DODGE = 29;
inline constexpr PF_TransferMode PF_Xfer_LINEAR_BURN = 30;
inline constexpr PF_TransferMode PF_Xfer_LINEAR_LIGHT = 31;
inline constexpr PF_TransferMode PF_Xfer_VIVID_LIGHT = 32;
inline constexpr PF_TransferMode PF_Xfer_PIN_LIGHT = 33;
inline constexpr PF_TransferMode PF_Xfer_HARD_MIX = 34;
inline constexpr PF_TransferMode PF_Xfer_LIGHTER_COLOR = 35;
inline constexpr PF_TransferMode PF_Xfer_DARKER_COLOR = 36;
inline constexpr PF_TransferMode PF_Xfer_SUBTRACT = 37;
inline constexpr PF_TransferMode PF_Xfer_DIVIDE = 38;
inline constexpr PF_TransferMode PF_Xfer_RESERVED0 = 39;
inline constexpr PF_TransferMode PF_Xfer_RESERVED1 = 40;
inline constexpr PF_TransferMode PF_Xfer_NUM_MODES = 41;
inline constexpr PF_TransferMode PF_Xfer_TINT = 29;
inline constexpr PF_TransferMode PF_Xfer_SHADE = 30;
inline constexpr PF_TransferMode PF_Xfer_INTENSE_LIGHT = 32;

/// How one picture is laid over another.
struct PF_CompositeMode {
    PF_TransferMode xfer;
    /// For the dissolve modes.
    A_long rand_seed;
    /// 0 to 255, for 8-bit and float worlds.
    A_u_char opacity;
    /// Not 0: the destination's alpha stays.
    PF_Boolean rgb_only;
    /// 0 to PF_MAX_CHAN16, for 16-bit worlds.
    A_u_short opacitySu;
};

typedef A_long PF_MaskFlags;

inline constexpr PF_MaskFlags PF_MaskFlag_NONE = 0;
inline constexpr PF_MaskFlags PF_MaskFlag_INVERTED = 1;
inline constexpr PF_MaskFlags PF_MaskFlag_LUMINANCE = 2;

/// A matte over a composite.
struct PF_MaskWorld {
    PF_EffectWorld mask;
    /// Where the mask's top-left lies against the source's, in pixels.
    PF_Point offset;
    /// Which channel cuts, and whether inverted.
    PF_MaskFlags what_is_mask;
};

/// How worlds carry alpha. The straight flag is a bit, the premultiplied one the absence of it.
inline constexpr PF_ModeFlags PF_MF_Alpha_PREMUL = 0;
inline constexpr PF_ModeFlags PF_MF_Alpha_STRAIGHT = 1;

inline constexpr PF_Quality PF_Quality_DRAWING_AUDIO = -1;
inline constexpr PF_Quality PF_Quality_LO = 0;
inline constexpr PF_Quality PF_Quality_HI = 1;

inline constexpr PF_Field PF_Field_FRAME = 0;
inline constexpr PF_Field PF_Field_UPPER = 1;
inline constexpr PF_Field PF_Field_LOWER = 2;

typedef A_u_long PF_KernelFlags;

inline constexpr PF_KernelFlags PF_KernelFlag_2D = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_1D = 1u;
inline constexpr PF_KernelFlags PF_KernelFlag_UNNORMALIZED = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_NORMALIZED = 2u;
inline constexpr PF_KernelFlags PF_KernelFlag_CLAMP = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_NO_CLAMP = 4u;
inline constexpr PF_KernelFlags PF_KernelFlag_USE_LONG = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_USE_CHAR = 8u;
inline constexpr PF_KernelFlags PF_KernelFlag_USE_FIXED = 16u;
inline constexpr PF_KernelFlags PF_KernelFlag_USE_UNDEFINED = 24u;
inline constexpr PF_KernelFlags PF_KernelFlag_HORIZONTAL = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_VERTICAL = 32u;
inline constexpr PF_KernelFlags PF_KernelFlag_TRANSPARENT_BORDERS = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_REPLICATE_BORDERS = 64u;
inline constexpr PF_KernelFlags PF_KernelFlag_STRAIGHT_CONVOLVE = 0u;
inline constexpr PF_KernelFlags PF_KernelFlag_ALPHA_WEIGHT_CONVOLVE = 128u;

typedef A_u_long PF_SampleEdgeBehav;

inline constexpr PF_SampleEdgeBehav PF_SampleEdgeBehav_ZERO = 0;
