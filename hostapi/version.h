// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How an effect's version is packed, and the host interface versions this project knows.

#include "hostapi/basic_types.h"

inline constexpr A_u_long PF_Vers_BUILD_BITS = 511u;
inline constexpr A_u_long PF_Vers_BUILD_SHIFT = 0u;
inline constexpr A_u_long PF_Vers_STAGE_BITS = 3u;
inline constexpr A_u_long PF_Vers_STAGE_SHIFT = 9u;
inline constexpr A_u_long PF_Vers_BUGFIX_BITS = 15u;
inline constexpr A_u_long PF_Vers_BUGFIX_SHIFT = 11u;
inline constexpr A_u_long PF_Vers_SUBVERS_BITS = 15u;
inline constexpr A_u_long PF_Vers_SUBVERS_SHIFT = 15u;
inline constexpr A_u_long PF_Vers_VERS_BITS = 7u;
inline constexpr A_u_long PF_Vers_VERS_SHIFT = 19u;
inline constexpr A_u_long PF_Vers_VERS_HIGH_BITS = 15u;
inline constexpr A_u_long PF_Vers_VERS_HIGH_SHIFT = 26u;
inline constexpr A_u_long PF_Vers_VERS_LOW_SHIFT = 3u;

inline constexpr PF_Stage PF_Stage_DEVELOP = 0;
inline constexpr PF_Stage PF_Stage_ALPHA = 1;
inline constexpr PF_Stage PF_Stage_BETA = 2;
inline constexpr PF_Stage PF_Stage_RELEASE = 3;

/// Packs a version as the host stores it: `(v>>3 & 15) << 26 | (v & 7) << 19 | (s & 15) << 15 | (b & 15) << 11 |
/// (stage & 3) << 9 | (build & 511)`.
constexpr A_u_long PF_VERSION(A_u_long version, A_u_long subversion, A_u_long bugFix, A_u_long stage, A_u_long build) {
    return ((version >> PF_Vers_VERS_LOW_SHIFT) & PF_Vers_VERS_HIGH_BITS) << PF_Vers_VERS_HIGH_SHIFT |
           (version & PF_Vers_VERS_BITS) << PF_Vers_VERS_SHIFT |
           (subversion & PF_Vers_SUBVERS_BITS) << PF_Vers_SUBVERS_SHIFT |
           (bugFix & PF_Vers_BUGFIX_BITS) << PF_Vers_BUGFIX_SHIFT |
           (stage & PF_Vers_STAGE_BITS) << PF_Vers_STAGE_SHIFT | (build & PF_Vers_BUILD_BITS) << PF_Vers_BUILD_SHIFT;
}

inline constexpr A_short PF_AE234_PLUG_IN_VERSION = 13;
inline constexpr A_short PF_AE234_PLUG_IN_SUBVERS = 28;
inline constexpr A_short PF_AE135_PLUG_IN_VERSION = 13;
inline constexpr A_short PF_AE135_PLUG_IN_SUBVERS = 9;
