// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A declaration with every kind of row, as an effect would make it.

#include <cstdio>
#include <string>

#include "host/parameters/param_set.h"

namespace umbrant::host {

/// Builds rows one after the other; the texts handed in need not outlive the call.
class Declaration {
 public:
    Declaration& Row(PF_ParamType type, const char* name, PF_ParamDefUnion u = {}) {
        PF_ParamDef def{};
        def.param_type = type;
        std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "%s", name);
        def.u = u;
        lastError = params.Add(-1, &def);
        return *this;
    }
    Declaration& Group(const char* name) { return Row(PF_Param_GROUP_START, name); }
    Declaration& End() { return Row(PF_Param_GROUP_END, ""); }
    Declaration& Float(const char* name, float low, float high, float value, bool percent = false) {
        PF_ParamDefUnion u{};
        u.fs_d.valid_min = low;
        u.fs_d.valid_max = high;
        u.fs_d.dephault = value;
        u.fs_d.display_flags = percent ? PF_ValueDisplayFlag_PERCENT : PF_ValueDisplayFlag_NONE;
        return Row(PF_Param_FLOAT_SLIDER, name, u);
    }
    Declaration& Popup(const char* name, std::string items, A_short count, A_short value) {
        PF_ParamDefUnion u{};
        u.pd = {value, count, value, {items.c_str()}};
        Row(PF_Param_POPUP, name, u);
        items.assign(items.size(), 'x');
        return *this;
    }

    ParamSet params;
    PF_Err lastError = 0;
};

/// #1 group Style, #2 distance, #3 strength, #4 blend mode, #5 origin, #6 angle, #7 color, #8 a row without a name,
/// #9 group Advanced, #10 distance, #11 end, #12 end, #13 check box, #14 layer, #15 button, #16 own data, #17 whole
/// slider, #18 fixed slider, #19 3D point, #20 nothing.
inline ParamSet EveryKind() {
    Declaration d;
    d.Group("Style").Float("Distance", 0, 2000, 250).Float("Strength", 0, 100, 80, true);
    d.Popup("Blend Mode", "Normal|(-|Add|Soft Light|Ease In & Out", 5, 1);
    PF_ParamDefUnion u{};
    u.td.x_dephault = 50 << 16;
    u.td.y_dephault = 1 << 15;
    d.Row(PF_Param_POINT, "Origin", u);
    u = {};
    u.ad.dephault = 135 << 16;
    d.Row(PF_Param_ANGLE, "Angle", u);
    u = {};
    u.cd.dephault = {255, 1, 171, 255};
    d.Row(PF_Param_COLOR, "Color", u).Row(PF_Param_ANGLE, "");
    d.Group("Advanced").Float("Distance", 0, 100, 80).End().End();
    u = {};
    u.bd.dephault = 1;
    d.Row(PF_Param_CHECKBOX, "Knock-Out", u).Row(PF_Param_LAYER, "Texture");
    u = {};
    u.button_d.u.namesptr = "Product Page";
    d.Row(PF_Param_BUTTON, "Umbrella 2 v1.3.3", u).Row(PF_Param_ARBITRARY_DATA, "Panel");
    u = {};
    u.sd = {0, "", "", -5, 5, -5, 5, 3};
    d.Row(PF_Param_SLIDER, "Count", u);
    u = {};
    u.fd.valid_max = 10 << 16;
    u.fd.dephault = 5 << 15;
    d.Row(PF_Param_FIX_SLIDER, "Fixed", u);
    u = {};
    u.point3d_d.z_dephault = 2.5;
    d.Row(PF_Param_POINT_3D, "Place", u).Row(PF_Param_NO_DATA, "Nothing");
    return d.params;
}

}  // namespace umbrant::host
