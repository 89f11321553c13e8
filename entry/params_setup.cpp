// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Turns the rows of the parameter table into the host's definitions.

#include "entry/params_setup.h"

#include <cstring>
#include <string>

#include "entry/about.h"
#include "entry/fixed_text.h"
#include "entry/param_table.h"
#include "entry/suites/suite_handler.h"
#include "hostapi/custom_ui.h"

namespace umbrant::effect {

namespace {

constexpr char kNoDriver[] = "NULL";
constexpr A_long kCurrentEnd = -1;  ///< position of a new parameter: after the last one
constexpr float kCurveTolerance = 0.05f;

/// The driver's strings from global set-up; all "NULL" when there are none.
GlobalData DriverStrings(const PF_InData* in_data, AEGP_SuiteHandler& suites) {
    GlobalData strings{};
    if (in_data->global_data != nullptr) {
        const LockedGlobalData record(suites.HandleSuite1(), in_data->global_data);
        if (record.Get() != nullptr) strings = *record.Get();
    }
    const bool none = strings.gl_version[0] == '\0';
    for (auto field :
         {&GlobalData::gl_version, &GlobalData::gl_vendor, &GlobalData::gl_renderer, &GlobalData::glsl_version}) {
        if (none) CopyText(kNoDriver, strings.*field);
        (strings.*field)[sizeof(strings.gl_version) - 1] = '\0';
    }
    return strings;
}

void FillFloatSlider(const FloatSliderRow& row, PF_FloatSliderDef* def) {
    def->value = row.initial;
    def->valid_min = row.validMin;
    def->valid_max = row.validMax;
    def->slider_min = row.sliderMin;
    def->slider_max = row.sliderMax;
    def->dephault = row.initial;
    def->precision = row.precision;
    def->display_flags = row.display;
    def->curve_tolerance = kCurveTolerance;
}

/// The values of the row's type; everything else of the definition is clear already.
void FillValues(const ParamRow& row, const GlobalData& driver, PF_ParamDefUnion* u) {
    switch (row.type) {
        case PF_Param_ARBITRARY_DATA:
            u->arb_d.id = row.arbitraryId;
            break;
        case PF_Param_BUTTON:
            u->button_d.u.namesptr = row.label;
            break;
        case PF_Param_POPUP:
            u->pd.value = row.initialItem;
            u->pd.num_choices = row.itemCount;
            u->pd.dephault = row.initialItem;
            // Intended: a driver's string with a '|' in it shows as more items than the one that is declared.
            u->pd.u.namesptr = row.driverString != nullptr ? driver.*row.driverString : row.items;
            break;
        case PF_Param_ANGLE:
            u->ad.value = u->ad.dephault = row.initialDegrees * 65536;
            break;
        case PF_Param_COLOR:
            u->cd.value = u->cd.dephault = row.initialColour;
            break;
        case PF_Param_FLOAT_SLIDER:
            FillFloatSlider(row.slider, &u->fs_d);
            break;
        case PF_Param_LAYER:
            u->ld.dephault = PF_LayerDefault_NONE;
            break;
        default:
            break;  // groups have no value; a point's zeros are its default
    }
}

/// Asks for the events of the self-drawn area in the effect's panel, and no others.
void RegisterPanel(PF_InData* in_data) {
    PF_CustomUIInfo info{};
    info.events = PF_CustomEFlag_EFFECT;
    // Intended: without its panel the effect still works, so the result does not matter.
    in_data->inter.register_ui(in_data->effect_ref, &info);
}

}  // namespace

PF_Err ParamsSetup(PF_InData* in_data, PF_OutData* out_data) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    const GlobalData driver = DriverStrings(in_data, suites);
    const std::string versionedName = VersionedEffectName();
    for (const ParamRow& row : kParamTable) {
        if (row.index == PARAM_INPUT) continue;
        PF_ParamDef def;
        std::memset(&def, 0, sizeof(def));
        def.param_type = row.type;
        CopyText(row.name != nullptr ? row.name : versionedName.c_str(), def.name_do_not_use_directly);
        def.uu.id = row.diskId;
        def.flags = row.flags;
        def.ui_flags = row.uiFlags;
        def.ui_width = row.uiWidth;
        def.ui_height = row.uiHeight;
        FillValues(row, driver, &def.u);
        const PF_Err err = in_data->inter.add_param(in_data->effect_ref, kCurrentEnd, &def);
        if (err != PF_Err_NONE) return err;
        if (row.index == PARAM_ABOUT_PANEL) RegisterPanel(in_data);
    }
    out_data->num_params = PARAM_NUM_PARAMS;
    return PF_Err_NONE;
}

}  // namespace umbrant::effect
