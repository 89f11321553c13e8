// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The flags of parameter definitions: how a row behaves, how it is shown, and what happened to its value.

#include "hostapi/basic_types.h"

typedef A_long PF_ParamFlags;

inline constexpr PF_ParamFlags PF_ParamFlag_NONE = 0;
inline constexpr PF_ParamFlags PF_ParamFlag_RESERVED1 = 1;
inline constexpr PF_ParamFlags PF_ParamFlag_CANNOT_TIME_VARY = 2;
inline constexpr PF_ParamFlags PF_ParamFlag_CANNOT_INTERP = 4;
inline constexpr PF_ParamFlags PF_ParamFlag_RESERVED2 = 8;
inline constexpr PF_ParamFlags PF_ParamFlag_RESERVED3 = 16;
inline constexpr PF_ParamFlags PF_ParamFlag_COLLAPSE_TWIRLY = 32;
inline constexpr PF_ParamFlags PF_ParamFlag_SUPERVISE = 64;
inline constexpr PF_ParamFlags PF_ParamFlag_START_COLLAPSED = 32;
inline constexpr PF_ParamFlags PF_ParamFlag_USE_VALUE_FOR_OLD_PROJECTS = 128;
inline constexpr PF_ParamFlags PF_ParamFlag_LAYER_PARAM_IS_TRACKMATTE = 128;
inline constexpr PF_ParamFlags PF_ParamFlag_EXCLUDE_FROM_HAVE_INPUTS_CHANGED = 256;
inline constexpr PF_ParamFlags PF_ParamFlag_SKIP_REVEAL_WHEN_UNHIDDEN = 512;
inline constexpr PF_ParamFlags PF_ParamFlag_unused1 = 1024;
inline constexpr PF_ParamFlags PF_ParamFlag_RESERVED4 = 2048;
inline constexpr PF_ParamFlags PF_ParamFlags_ALL = static_cast<PF_ParamFlags>(0xFFFFFFFFu);

typedef A_long PF_ParamUIFlags;

inline constexpr PF_ParamUIFlags PF_PUI_NONE = 0;
inline constexpr PF_ParamUIFlags PF_PUI_TOPIC = 1;
inline constexpr PF_ParamUIFlags PF_PUI_CONTROL = 2;
inline constexpr PF_ParamUIFlags PF_PUI_STD_CONTROL_ONLY = 4;
inline constexpr PF_ParamUIFlags PF_PUI_NO_ECW_UI = 8;
inline constexpr PF_ParamUIFlags PF_PUI_ECW_SEPARATOR = 16;
inline constexpr PF_ParamUIFlags PF_PUI_DISABLED = 32;
inline constexpr PF_ParamUIFlags PF_PUI_DONT_ERASE_TOPIC = 64;
inline constexpr PF_ParamUIFlags PF_PUI_DONT_ERASE_CONTROL = 128;
inline constexpr PF_ParamUIFlags PF_PUI_RADIO_BUTTON = 256;
inline constexpr PF_ParamUIFlags PF_PUI_INVISIBLE = 512;
inline constexpr PF_ParamUIFlags PF_PUI_RESERVED = 1024;

typedef A_long PF_ChangeFlags;

inline constexpr PF_ChangeFlags PF_ChangeFlag_NONE = 0;
inline constexpr PF_ChangeFlags PF_ChangeFlag_CHANGED_VALUE = 1;
inline constexpr PF_ChangeFlags PF_ChangeFlag_RESERVED = 2;
inline constexpr PF_ChangeFlags PF_ChangeFlag_SET_TO_VARY = 4;
inline constexpr PF_ChangeFlags PF_ChangeFlag_SET_TO_CONSTANT = 8;

typedef A_short PF_ValueDisplayFlags;

inline constexpr PF_ValueDisplayFlags PF_ValueDisplayFlag_NONE = 0;
inline constexpr PF_ValueDisplayFlags PF_ValueDisplayFlag_PERCENT = 1;
inline constexpr PF_ValueDisplayFlags PF_ValueDisplayFlag_PIXEL = 2;
inline constexpr PF_ValueDisplayFlags PF_ValueDisplayFlag_RESERVED1 = 4;
inline constexpr PF_ValueDisplayFlags PF_ValueDisplayFlag_REVERSE = 8;

typedef A_u_long PF_FSliderFlags;

inline constexpr PF_FSliderFlags PF_FSliderFlag_NONE = 0;
inline constexpr PF_FSliderFlags PF_FSliderFlag_WANT_PHASE = 1;
