// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Error values that cross the interface. Zero is success everywhere.

#include "hostapi/basic_types.h"

inline constexpr PF_Err PF_FIRST_ERR = 512;
inline constexpr PF_Err PF_Err_NONE = 0;
inline constexpr PF_Err PF_Err_OUT_OF_MEMORY = 4;
inline constexpr PF_Err PF_Err_INTERNAL_STRUCT_DAMAGED = 512;
inline constexpr PF_Err PF_Err_INVALID_INDEX = 513;
inline constexpr PF_Err PF_Err_UNRECOGNIZED_PARAM_TYPE = 514;
inline constexpr PF_Err PF_Err_INVALID_CALLBACK = 515;
inline constexpr PF_Err PF_Err_BAD_CALLBACK_PARAM = 516;
inline constexpr PF_Err PF_Interrupt_CANCEL = 517;
inline constexpr PF_Err PF_Err_CANNOT_PARSE_KEYFRAME_TEXT = 518;

inline constexpr A_Err A_Err_NONE = 0;
inline constexpr A_Err A_Err_GENERIC = 1;
inline constexpr A_Err A_Err_STRUCT = 2;
inline constexpr A_Err A_Err_PARAMETER = 3;
inline constexpr A_Err A_Err_ALLOC = 4;
inline constexpr A_Err A_Err_WRONG_THREAD = 5;
inline constexpr A_Err A_Err_CONST_PROJECT_MODIFICATION = 6;
inline constexpr A_Err A_Err_MISSING_SUITE = 13;
inline constexpr A_Err A_Err_NOT_IN_CACHE_OR_COMPUTE_PENDING = 22;
inline constexpr A_Err A_Err_PROJECT_LOAD_FATAL = 23;
inline constexpr A_Err A_Err_EFFECT_APPLY_FATAL = 24;
inline constexpr A_Err A_Err_LAST = 25;

inline constexpr SPErr kSPNoError = 0;
