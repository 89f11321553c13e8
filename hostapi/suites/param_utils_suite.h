// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Changes to the parameter panel, and questions about parameter state.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

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
    PF_Err (*PF_UpdateParamUI)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const PF_ParamDef* defP);
    PF_Err (*PF_GetCurrentState)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, const A_Time* startPT0,
                                 const A_Time* durationPT0, PF_State* stateP);
    PF_Err (*PF_AreStatesIdentical)(PF_ProgPtr effect_ref, const PF_State* state1P, const PF_State* state2P,
                                    A_Boolean* samePB);
    PF_Err (*PF_IsIdenticalCheckout)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time1,
                                     A_long time_step1, A_u_long time_scale1, A_long what_time2, A_long time_step2,
                                     A_u_long time_scale2, PF_Boolean* identicalPB);
    PF_Err (*PF_FindKeyframeTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, A_long what_time,
                                  A_u_long time_scale, PF_TimeDir time_dir, PF_Boolean* foundPB,
                                  PF_KeyIndex* key_indexP0, A_long* key_timeP0, A_u_long* key_timescaleP0);
    PF_Err (*PF_GetKeyframeCount)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex* key_countP);
    PF_Err (*PF_CheckoutKeyframe)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_index,
                                  A_long* key_timeP0, A_u_long* key_timescaleP0, PF_ParamDef* paramP0);
    PF_Err (*PF_CheckinKeyframe)(PF_ProgPtr effect_ref, PF_ParamDef* paramP);
    PF_Err (*PF_KeyIndexToTime)(PF_ProgPtr effect_ref, PF_ParamIndex param_index, PF_KeyIndex key_indexP,
                                A_long* key_timeP, A_u_long* key_timescaleP);
};
