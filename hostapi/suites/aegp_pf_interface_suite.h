// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From an effect reference to its layer and effect handle.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPPFInterfaceSuiteName[] = "AEGP PF Interface Suite";
inline constexpr int32_t kAEGPPFInterfaceSuiteVersion1 = 1;

struct AEGP_PFInterfaceSuite1 {
    A_Err (*AEGP_GetEffectLayer)(PF_ProgPtr effect_pp_ref, AEGP_LayerH* layerPH);
    A_Err (*AEGP_GetNewEffectForEffect)(AEGP_PluginID aegp_plugin_id, PF_ProgPtr effect_pp_ref,
                                        AEGP_EffectRefH* effect_refPH);
    A_Err (*AEGP_ConvertEffectToCompTime)(PF_ProgPtr effect_pp_ref, A_long what_timeL, A_u_long time_scaleLu,
                                          A_Time* comp_timePT);
    A_Err (*AEGP_GetEffectCamera)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT, AEGP_LayerH* camera_layerPH);
    A_Err (*AEGP_GetEffectCameraMatrix)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT, A_Matrix4* camera_matrixP,
                                        A_FpLong* dist_to_image_planePF, A_short* image_plane_widthPL,
                                        A_short* image_plane_heightPL);
};
