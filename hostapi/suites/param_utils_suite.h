// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Changes to the parameter panel, and questions about parameters over time.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/params.h"

inline constexpr char kPFParamUtilsSuiteName[] = "PF Param Utils Suite";
inline constexpr int32_t kPFParamUtilsSuiteVersion3 = 3;

typedef A_long PF_TimeDir;

inline constexpr PF_TimeDir PF_TimeDir_GREATER_THAN = 0;
inline constexpr PF_TimeDir PF_TimeDir_LESS_THAN = 1;
inline constexpr PF_TimeDir PF_TimeDir_GREATER_THAN_OR_EQUAL = 4096;
inline constexpr PF_TimeDir PF_TimeDir_LESS_THAN_OR_EQUAL = 4097;

typedef A_long PF_KeyIndex;

inline constexpr PF_KeyIndex PF_KeyIndex_NONE = -1;

struct PF_ParamUtilsSuite3 {
    /// Shows a row as the definition says: name, ui flags, collapsed or open; values are not taken from it. The
    /// definition stays the caller's. [main]
    PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const PF_ParamDef* defP);
    /// A mark of a parameter's state over a span of time; null start and duration: for all time. The mark is a plain
    /// record, only good for PF_AreStatesIdentical. [main]
    PF_Err (*PF_GetCurrentState)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const A_Time* startPT0,
                                 const A_Time* durationPT0, PF_State* stateP);
    /// Whether two marks are of the same state. [main]
    PF_Err (*PF_AreStatesIdentical)(PF_ProgPtr effect_ref, const PF_State* state1P, const PF_State* state2P,
                                    A_Boolean* samePB);
    /// Whether checking a parameter out at two times would give the same value. Times are ticks over their scale, in
    /// seconds. [any]
    PF_Err (*PF_IsIdenticalCheckout)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time1,
                                     A_long time_step1, A_u_long time_scale1, A_long what_time2, A_long time_step2,
                                     A_u_long time_scale2, PF_Boolean* identicalPB);
    /// The nearest keyframe before or after a time; each pointer whose name ends in 0 may be null. `*foundPB` is 0 when
    /// there is none. [any]
    PF_Err (*PF_FindKeyframeTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time,
                                  A_u_long time_scale, PF_TimeDir time_dir, PF_Boolean* foundPB,
                                  PF_KeyIndex* key_indexP0, A_long* key_timeP0, A_u_long* key_timescaleP0);
    /// How many keyframes a parameter has, or PF_KeyIndex_NONE where it cannot have any. [any]
    PF_Err (*PF_GetKeyframeCount)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex* key_countP);
    /// The time and value of a keyframe by its 0-based position; each pointer may be null. A value checked out is given
    /// back with PF_CheckinKeyframe. [any]
    PF_Err (*PF_CheckoutKeyframe)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_index,
                                  A_long* key_timeP0, A_u_long* key_timescaleP0, PF_ParamDef* paramP0);
    /// Gives a keyframe's value back, exactly once per checkout. [any]
    PF_Err (*PF_CheckinKeyframe)(PF_ProgPtr effect_ref, PF_ParamDef* paramP);
    /// The time of a keyframe by its 0-based position, as ticks and ticks per second. [any]
    PF_Err (*PF_KeyIndexToTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_indexP,
                                A_long* key_timeP, A_u_long* key_timescaleP);
};
