// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// From the effect reference that a command carries to the application's own handles: the layer, the applied effect, the
// camera.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error of hostapi/errors.h, and only after a zero may an out-parameter be read.

#include "hostapi/aegp_types.h"

inline constexpr char kAEGPPFInterfaceSuiteName[] = "AEGP PF Interface Suite";
inline constexpr int32_t kAEGPPFInterfaceSuiteVersion1 = 1;

struct AEGP_PFInterfaceSuite1 {
    /// The layer that this effect instance is applied to. The handle stays the host's. [main]
    A_Err (*AEGP_GetEffectLayer)(PF_ProgPtr effect_pp_ref, AEGP_LayerH* layerPH);
    /// A reference to this effect instance for the effect and stream suites. The caller disposes of it with
    /// AEGP_DisposeEffect. [main]
    A_Err (*AEGP_GetNewEffectForEffect)(AEGP_PluginID aegp_plugin_id, PF_ProgPtr effect_pp_ref,
                                        AEGP_EffectRefH* effect_refPH);
    /// A time of the command record, `what_timeL` over `time_scaleLu` seconds, as the composition counts it. [main]
    A_Err (*AEGP_ConvertEffectToCompTime)(PF_ProgPtr effect_pp_ref, A_long what_timeL, A_u_long time_scaleLu,
                                          A_Time* comp_timePT);
    /// The camera that looks at the effect's layer at a time, or null when there is none. [main]
    A_Err (*AEGP_GetEffectCamera)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT, AEGP_LayerH* camera_layerPH);
    /// That camera's matrix, the distance to its image plane and the plane's size in pixels. [main]
    A_Err (*AEGP_GetEffectCameraMatrix)(PF_ProgPtr effect_pp_ref, const A_Time* comp_timePT, A_Matrix4* camera_matrixP,
                                        A_FpLong* dist_to_image_planePF, A_short* image_plane_widthPL,
                                        A_short* image_plane_heightPL);
};
