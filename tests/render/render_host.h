// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// TestHost with what pre-render and render ask for besides: parameters, layers, the output, fill, colour and transfers.
// It records the calls, counts the balances and fails on demand; it composites nothing.

#include <vector>

#include "entry/global_data.h"
#include "hostapi/smart_render.h"
#include "hostapi/suites/aegp_layer_suite.h"
#include "hostapi/suites/aegp_pf_interface_suite.h"
#include "hostapi/suites/color_param_suite.h"
#include "hostapi/suites/world_transform_suite.h"
#include "render/render_settings.h"
#include "tests/render/panel.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

class RenderHost : public TestHost {
 public:
    /// A 40 x 30 layer at full resolution, default panel, no GL context in the global data.
    RenderHost();
    ~RenderHost();

    /// The host the callbacks answer for.
    static RenderHost& Current();

    CheckedOutParams panel = DefaultPanel();
    GlobalData* global = nullptr;  ///< behind `inData.global_data`

    // Pre-render.
    PF_PreRenderInput preInput{};
    PF_PreRenderOutput preOutput{};
    PF_PreRenderCallbacks preCallbacks{};
    PF_PreRenderExtra preExtra{};
    PF_CheckoutResult layerGranted{};  ///< what checkout_layer answers for the input
    struct LayerRequest {
        PF_ParamIndex index;
        A_long id;
        PF_RenderRequest request;
        A_long time, step;
        A_u_long scale;
    };
    std::vector<LayerRequest> layerRequests;
    AEGP_LayerFlags layerFlags = 0;
    bool noEffectLayer = false;  ///< answer null, without an error, when the effect's layer is asked for

    // Render.
    PF_SmartRenderInput renderInput{};
    PF_SmartRenderCallbacks renderCallbacks{};
    PF_SmartRenderExtra renderExtra{};
    PreRenderData record{};
    PF_EffectWorld* input = nullptr;
    PF_EffectWorld* texture = nullptr;
    PF_EffectWorld* output = nullptr;
    struct Transfer {
        PF_Quality quality;
        PF_ModeFlags flags;
        PF_Field field;
        PF_Rect area;
        const PF_EffectWorld* source;
        PF_CompositeMode mode;
        const PF_MaskWorld* mask;
        A_long x, y;
        PF_EffectWorld* destination;
    };
    std::vector<Transfer> transfers;
    std::function<void(const Transfer&)> onTransfer;  ///< called before a transfer answers
    int layersOut = 0;                                ///< checked-out layer pixels not yet checked in
    int paramsOut = 0;                                ///< checked-out parameters not yet checked in

    // What to fail; 0 is never, counts are 1-based.
    int failCheckoutParam = 0;
    int failCheckinParam = 0;
    int failCheckoutLayer = 0;
    int failCheckoutPixels = 0;
    int failTransfer = 0;
    PF_Err checkoutOutputError = 0;
    PF_Err fillError = 0;
    PF_Err copyError = 0;
    PF_Err checkinPixelsError = 0;
    PF_Err colourError = 0;
    PF_Err effectLayerError = 0;
    PF_Err layerFlagsError = 0;
    static constexpr PF_Err kInjected = 777;
    /// Nothing fails any more, and the counts start again.
    void ResetFailures();

    AEGP_PFInterfaceSuite1 interfaceSuite{};
    AEGP_LayerSuite7 layerSuite{};
    PF_ColorParamSuite1 colourSuite{};
    PF_WorldTransformSuite1 transformSuite{};

 private:
    friend struct RenderHostCalls;
    PF_Handle globalHandle_ = nullptr;
    int checkoutParams_ = 0;
    int checkinParams_ = 0;
    int checkoutLayers_ = 0;
    int checkoutPixels_ = 0;
    int transferCalls_ = 0;
};

}  // namespace umbrant::effect
