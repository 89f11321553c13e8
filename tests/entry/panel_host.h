// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The recording host as the panel's commands need it: the application suites that show and hide rows, and the drawing
// suites. Every call is logged with what it was given; any one fails on demand.

#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "entry/param_ids.h"
#include "hostapi/suites/aegp_dynamic_stream_suite.h"
#include "hostapi/suites/aegp_effect_suite.h"
#include "hostapi/suites/aegp_pf_interface_suite.h"
#include "hostapi/suites/aegp_stream_suite.h"
#include "hostapi/suites/drawbot_draw_suite.h"
#include "hostapi/suites/drawbot_supplier_suite.h"
#include "hostapi/suites/drawbot_surface_suite.h"
#include "hostapi/suites/effect_custom_ui_suite.h"
#include "hostapi/suites/param_utils_suite.h"
#include "tests/entry/entry_fixture.h"

namespace umbrant::effect {

/// A fixture around the recording host. One at a time: the suites' functions answer for the one that lives.
class PanelHostTest : public EntryTest {
 protected:
    PanelHostTest();
    ~PanelHostTest() override { current = nullptr; }

    /// Sends PF_Cmd_UPDATE_PARAMS_UI with "Shadow Type" at `type`.
    PF_Err Update(A_long type);
    PF_Err Press(PF_ParamIndex index);
    PF_Err Send(PF_EventExtra* event) { return Call(PF_Cmd_EVENT, event); }
    /// The logged calls but those that acquire and release suites.
    std::vector<std::string> HostCalls() const;
    /// The suites acquired or released ("AcquireSuite", "ReleaseSuite"), in order, without version.
    std::vector<std::string> Suites(const std::string& verb) const;

    /// What the panel looks like after the calls so far.
    struct Row {
        bool hidden = false;
        bool disabled = false;
        bool collapsed = false;
    };
    std::map<int, Row> rows;

    /// A call that fails: its name, the 1-based count of calls to it, and the error.
    std::string failing;
    int failingCount = 1;
    PF_Err failure = 0;
    std::string alsoFailing;  ///< fails every time, with 99
    /// Counts the calls that may fail from 1 again.
    void ResetCounts() { counts_.clear(); }
    int openEffects = 0;
    int openStreams = 0;
    bool giveNoEffect = false, giveNoStream = false;  ///< success with a null reference
    bool giveNoReference = false, giveNoImage = false;
    int openImages = 0;
    DRAWBOT_PointF32 drawnAt{};             ///< where the last image was drawn
    std::vector<unsigned char> imageBytes;  ///< what the last image was made from
    std::vector<PF_ParamDef> updates;       ///< the definitions handed to PF_UpdateParamUI
    std::vector<A_u_char> flagValues;       ///< what the last argument of AEGP_SetDynamicStreamFlag was

    std::vector<PF_ParamDef> params;
    std::vector<PF_ParamDef*> pointers;

 private:
    static PanelHostTest* current;
    /// Logs a call; whether it is to fail.
    PF_Err Answer(const std::string& name, const std::string& arguments);
    void OfferRowSuites();
    void OfferDrawingSuites();
    std::map<std::string, int> counts_;

    AEGP_PFInterfaceSuite1 interfaceSuite_{};
    AEGP_EffectSuite2 effectSuite_{};
    AEGP_StreamSuite2 streamSuite_{};
    AEGP_DynamicStreamSuite2 dynamicStreamSuite_{};
    PF_ParamUtilsSuite3 paramUtilsSuite_{};
    PF_EffectCustomUISuite1 customUISuite_{};
    DRAWBOT_DrawbotSuite1 drawSuite_{};
    DRAWBOT_SupplierSuite1 supplierSuite_{};
    DRAWBOT_SurfaceSuite1 surfaceSuite_{};
};

}  // namespace umbrant::effect
