// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The traffic of one channel between host worlds and packed buffers, a callback per pixel by the host's iterate suites,
// and the message for what a buffer refuses. No GL in here: the CPU renderer reports and moves pixels the same way.

#include <string>

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"

namespace umbrant::effect {

inline constexpr char kDepthRefused[] = "Init world called on PF_EffectWorld of incompatible depth, likely 16bpc";

/// What is said when a buffer of so many pixels cannot be had.
inline std::string BadBufferMessage(int32_t width, int32_t height) {
    return "FBO bad, res: " + std::to_string(width) + " " + std::to_string(height);
}

/// Bytes of one channel in a world of the depth: 1 or, for everything but 8, 4.
constexpr A_HandleSize ChannelBytes(int32_t bitDepth) {
    return bitDepth == 8 ? 1 : 4;
}

/// The alpha of `world`, which has 32 or 8 bits, into `buffer`. Returns the iteration's error.
PF_Err FillFromWorld(void* buffer, PF_LayerDef* world, int32_t bitDepth, PF_InData* in_data, AEGP_SuiteHandler& suites);

/// `buffer` into the alpha of `output`, the colour into the rest. Return the iteration's error.
PF_Err FillWorld8(void* buffer, PF_InData* in_data, AEGP_SuiteHandler& suites, PF_Pixel* colour, PF_LayerDef* output);
PF_Err FillWorld32(void* buffer, PF_InData* in_data, AEGP_SuiteHandler& suites, PF_PixelFloat* colour,
                   PF_LayerDef* output);

}  // namespace umbrant::effect
