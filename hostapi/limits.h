// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Lengths and ranges that the host promises or enforces.

#include "hostapi/basic_types.h"

inline constexpr A_long PF_MAX_EFFECT_NAME_LEN = 31;
inline constexpr A_long PF_MAX_EFFECT_CATEGORY_NAME_LEN = 31;
inline constexpr A_long PF_MAX_EFFECT_PARAM_NAME_LEN = 31;
inline constexpr A_long PF_MAX_PARAM_DESCRIPTION_LEN = 31;
inline constexpr A_long PF_MAX_PARAM_VALUE_LEN = 31;
inline constexpr A_long PF_MAX_EFFECT_MSG_LEN = 255;
inline constexpr A_long PF_AE65_AND_EARLIER_MAX_NUM_EFFECT_PARAMS = 127;
inline constexpr A_long PF_MAX_WORLD_WIDTH = 30000;
inline constexpr A_long PF_MAX_WORLD_HEIGHT = 30000;
inline constexpr A_long PF_MAX_CHAN8 = 255;
inline constexpr A_long PF_HALF_CHAN8 = 128;
inline constexpr A_long PF_MAX_CHAN16 = 32768;
inline constexpr A_long PF_HALF_CHAN16 = 16384;
inline constexpr A_long PF_CHANNEL_NAME_LEN = 63;
inline constexpr A_long AEGP_MAX_PATH_SIZE = 260;
inline constexpr A_long AEGP_MAX_ABOUT_STRING_SIZE = 256;
inline constexpr A_long AEGP_MAX_RQITEM_COMMENT_SIZE = 256;
inline constexpr A_long AEGP_MAX_TYPE_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_ITEM_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_LAYER_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_MASK_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_EFFECT_NAME_SIZE = 48;
inline constexpr A_long AEGP_MAX_EFFECT_MATCH_NAME_SIZE = 48;
inline constexpr A_long AEGP_MAX_EFFECT_CATEGORY_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_STREAM_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_STREAM_UNITS_SIZE = 32;
inline constexpr A_long AEGP_MAX_PROJ_NAME_SIZE = 48;
inline constexpr A_long AEGP_MAX_PLUGIN_NAME_SIZE = 32;
inline constexpr A_long AEGP_MAX_MARKER_NAME_SIZE = 64;
inline constexpr A_long AEGP_MAX_MARKER_URL_SIZE = 1024;
inline constexpr A_long AEGP_MAX_MARKER_TARGET_SIZE = 128;
inline constexpr A_long AEGP_MAX_MARKER_CHAPTER_SIZE = 128;
inline constexpr A_long AEGP_MAX_STREAM_MATCH_NAME_SIZE = 40;

inline constexpr A_u_long PF_HUE_UNDEFINED = 0x80000000u;
