// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The tables of functions that this host hands to effects. Each is filled in the file of its name; which suites are
// offered, and under which versions, is in basic_suite.cpp.

#include "hostapi/callbacks.h"
#include "hostapi/suites/aegp_dynamic_stream_suite.h"
#include "hostapi/suites/aegp_effect_suite.h"
#include "hostapi/suites/aegp_layer_suite.h"
#include "hostapi/suites/aegp_pf_interface_suite.h"
#include "hostapi/suites/aegp_stream_suite.h"
#include "hostapi/suites/ansi_suite.h"
#include "hostapi/suites/basic_suite.h"
#include "hostapi/suites/color_param_suite.h"
#include "hostapi/suites/drawbot_draw_suite.h"
#include "hostapi/suites/drawbot_path_suite.h"
#include "hostapi/suites/drawbot_supplier_suite.h"
#include "hostapi/suites/drawbot_surface_suite.h"
#include "hostapi/suites/effect_custom_ui_suite.h"
#include "hostapi/suites/effect_ui_suite.h"
#include "hostapi/suites/handle_suite.h"
#include "hostapi/suites/iterate16_suite.h"
#include "hostapi/suites/iterate8_suite.h"
#include "hostapi/suites/iterate_float_suite.h"
#include "hostapi/suites/param_utils_suite.h"
#include "hostapi/suites/umbrant_host_suite.h"
#include "hostapi/suites/world_suite.h"
#include "hostapi/suites/world_transform_suite.h"

namespace umbrant::host {

extern const PF_HandleSuite1 kHandleSuite;
extern const PF_ANSICallbacksSuite1 kANSISuite;
extern const PF_WorldSuite2 kWorldSuite;
extern const PF_Iterate8Suite1 kIterate8Suite;
extern const PF_iterate16Suite1 kIterate16Suite;
extern const PF_iterateFloatSuite1 kIterateFloatSuite;
extern const PF_WorldTransformSuite1 kWorldTransformSuite;
extern const PF_ColorParamSuite1 kColorParamSuite;
extern const PF_ParamUtilsSuite3 kParamUtilsSuite;
extern const PF_EffectUISuite1 kEffectUISuite;
extern const PF_EffectCustomUISuite1 kEffectCustomUISuite;
extern const DRAWBOT_DrawbotSuite1 kDrawbotDrawSuite;
extern const DRAWBOT_SupplierSuite1 kDrawbotSupplierSuite;
extern const DRAWBOT_SurfaceSuite1 kDrawbotSurfaceSuite;
extern const DRAWBOT_PathSuite1 kDrawbotPathSuite;
extern const AEGP_PFInterfaceSuite1 kPFInterfaceSuite;
extern const AEGP_LayerSuite7 kLayerSuite;
extern const AEGP_EffectSuite2 kEffectSuite;
extern const AEGP_StreamSuite2 kStreamSuite;
extern const AEGP_DynamicStreamSuite2 kDynamicStreamSuite;
extern const UMBRANT_HostSuite1 kUmbrantHostSuite;
extern const UMBRANT_HostSuite2 kUmbrantHostSuite2;

/// The suite of suites. The pointer that effects get is not const; none writes through it.
extern SPBasicSuite basicSuite;
/// What `in_data->utils` points to; likewise.
extern PF_UtilCallbacks utilCallbacks;

}  // namespace umbrant::host
