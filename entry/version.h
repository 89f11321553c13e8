// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Who the effect is: the only place where its name, version and flag words are written. The registration, the about
// text, the panel and CMake read them from here.

#include "hostapi/commands.h"
#include "hostapi/version.h"

namespace umbrant::effect {

inline constexpr char kEffectName[] = "Umbrant 2";
inline constexpr char kEffectMatchName[] = "KAUM2";
inline constexpr char kEffectCategory[] = "Halvane";
inline constexpr char kEffectEntryPoint[] = "EffectMain";
inline constexpr char kEffectDescription[] = "Simulates a variety of shadow styles.";

/// The host interface that the effect registers for, and the reserved word that goes with it.
inline constexpr A_long kRegisteredApiMajor = 13;
inline constexpr A_long kRegisteredApiMinor = 28;
inline constexpr A_long kRegisteredReservedInfo = 8;

inline constexpr A_u_long kVersionMajor = 1;
inline constexpr A_u_long kVersionMinor = 3;
inline constexpr A_u_long kVersionBugFix = 3;
inline constexpr A_u_long kVersionPacked =
    PF_VERSION(kVersionMajor, kVersionMinor, kVersionBugFix, PF_Stage_DEVELOP, 1);
static_assert(kVersionPacked == 0x99801);

/// What the effect announces at global set-up; the property resource repeats both words.
inline constexpr PF_OutFlags kOutFlags = PF_OutFlag_CUSTOM_UI | PF_OutFlag_SEND_UPDATE_PARAMS_UI;
// Intended: float without PF_OutFlag_DEEP_COLOR_AWARE, so the host never asks for 16 bits.
inline constexpr PF_OutFlags2 kOutFlags2 =
    PF_OutFlag2_SUPPORTS_QUERY_DYNAMIC_FLAGS | PF_OutFlag2_PARAM_GROUP_START_COLLAPSED_FLAG |
    PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE | PF_OutFlag2_I_MIX_GUID_DEPENDENCIES |
    PF_OutFlag2_SUPPORTS_THREADED_RENDERING;
static_assert(kOutFlags == 0x04008000);
static_assert(kOutFlags2 == 0x08201409);

}  // namespace umbrant::effect
