// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The suite cache of one command call: acquires each host suite on first use and releases all of them when it goes out
// of scope. Belongs to one command on one thread and is never shared.

#include <cstdint>

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
#include "hostapi/suites/iterate8_suite.h"
#include "hostapi/suites/iterate_float_suite.h"
#include "hostapi/suites/param_utils_suite.h"
#include "hostapi/suites/world_suite.h"
#include "hostapi/suites/world_transform_suite.h"

/// Throws `PF_Err_BAD_CALLBACK_PARAM` (516) as a plain integer; EffectMain turns it into the command's result.
[[noreturn]] void MissingSuiteError();

/// Suite cache over the host's basic suite. Every accessor returns a suite that stays valid until the handler is
/// destroyed, or throws 516 when the host does not offer it; nothing is ever retried.
class AEGP_SuiteHandler {
 public:
    /// Throws 516 when `basic` is null. Acquires nothing.
    explicit AEGP_SuiteHandler(SPBasicSuite* basic);
    /// Releases every suite that was acquired, each by its name and version. What the host throws there is dropped.
    ~AEGP_SuiteHandler();
    AEGP_SuiteHandler(const AEGP_SuiteHandler&) = delete;
    AEGP_SuiteHandler& operator=(const AEGP_SuiteHandler&) = delete;

    const PF_HandleSuite1* HandleSuite1();                  ///< "PF Handle Suite" 2
    const PF_ANSICallbacksSuite1* ANSICallbacksSuite1();    ///< "PF ANSI Suite" 1
    const PF_WorldSuite2* WorldSuite2();                    ///< "PF World Suite" 2
    const PF_Iterate8Suite1* Iterate8Suite1();              ///< "PF Iterate8 Suite" 1
    const PF_iterateFloatSuite1* IterateFloatSuite1();      ///< "PF iterateFloat Suite" 1
    const PF_WorldTransformSuite1* WorldTransformSuite1();  ///< "PF World Transform Suite" 1
    const PF_ColorParamSuite1* ColorParamSuite1();          ///< "PF ColorParamSuite" 1
    const PF_ParamUtilsSuite3* ParamUtilsSuite3();          ///< "PF Param Utils Suite" 3
    const PF_EffectUISuite1* EffectUISuite1();              ///< "PF Effect UI Suite" 1
    const PF_EffectCustomUISuite1* EffectCustomUISuite1();  ///< "PF Effect Custom UI Suite" 1
    const DRAWBOT_DrawbotSuite1* DrawbotSuite1();           ///< "DRAWBOT Draw Suite" 1
    const DRAWBOT_SupplierSuite1* SupplierSuite1();         ///< "DRAWBOT Supplier Suite" 1
    const DRAWBOT_SurfaceSuite1* SurfaceSuite1();           ///< "DRAWBOT Surface Suite" 1
    const DRAWBOT_PathSuite1* PathSuite1();                 ///< "DRAWBOT Path Suite" 1
    const AEGP_PFInterfaceSuite1* PFInterfaceSuite1();      ///< "AEGP PF Interface Suite" 1
    const AEGP_LayerSuite7* LayerSuite7();                  ///< "AEGP Layer Suite" 13
    const AEGP_EffectSuite2* EffectSuite2();                ///< "AEGP Effect Suite" 2
    const AEGP_StreamSuite2* StreamSuite2();                ///< "AEGP Stream Suite" 7
    const AEGP_DynamicStreamSuite2* DynamicStreamSuite2();  ///< "AEGP Dynamic Stream Suite" 2

    /// Acquires one suite; throws 516 when the host returns an error or no pointer.
    const void* LoadSuite(const char* name, int32_t version);
    /// Releases one suite by name and version.
    void ReleaseSuite(const char* name, int32_t version);
    /// Releases every suite acquired through the accessors, each once, and forgets them. What the host throws first
    /// leaves at the end.
    void ReleaseAllSuites();

 private:
    enum Slot {
        kHandle,
        kANSI,
        kWorld,
        kIterate8,
        kIterateFloat,
        kWorldTransform,
        kColorParam,
        kParamUtils,
        kEffectUI,
        kEffectCustomUI,
        kDrawbotDraw,
        kDrawbotSupplier,
        kDrawbotSurface,
        kDrawbotPath,
        kPFInterface,
        kLayer,
        kEffect,
        kStream,
        kDynamicStream,
        kSlotCount
    };
    const void* Suite(Slot slot);

    SPBasicSuite* basic_;
    const void* suites_[kSlotCount] = {};
};
