// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The panel's rows and buttons.

#include "entry/panel.h"

#include "entry/addresses.h"
#include "entry/global_setup.h"
#include "entry/param_ids.h"
#include "entry/suites/without_throwing.h"
#include "platform/open_url.h"

using namespace umbrant::effect;

namespace umbrant::effect {

namespace {

/// The items of "Shadow Type".
constexpr A_long kShadowTypeInner = 2;
constexpr A_long kShadowTypeRadial = 3;

constexpr unsigned char kShow = 0, kHide = 1;
constexpr unsigned char kEnable = 0, kDisable = 1;
constexpr unsigned char kCollapse = 1;

/// This instance's reference, given back at the latest when it goes out of scope.
class OwnEffect {
 public:
    OwnEffect(PF_InData* in_data, AEGP_SuiteHandler* suites) : suites_(suites) {
        error_ = suites->PFInterfaceSuite1()->AEGP_GetNewEffectForEffect(my_id, in_data->effect_ref, &reference_);
    }
    ~OwnEffect() {
        WithoutThrowing([this] { Dispose(); });
    }
    OwnEffect(const OwnEffect&) = delete;
    OwnEffect& operator=(const OwnEffect&) = delete;

    PF_Err Error() const { return error_; }
    AEGP_EffectRefH* Reference() { return &reference_; }
    /// The suite is asked for here and not before: without it the rows are changed all the same.
    PF_Err Dispose() {
        if (reference_ == nullptr) return PF_Err_NONE;
        const AEGP_EffectRefH reference = reference_;
        reference_ = nullptr;
        return suites_->EffectSuite2()->AEGP_DisposeEffect(reference);
    }

 private:
    AEGP_SuiteHandler* suites_;
    AEGP_EffectRefH reference_ = nullptr;
    PF_Err error_;
};

/// Changes rows until one cannot be changed; every call after that does nothing.
class Rows {
 public:
    Rows(PF_InData* in_data, AEGP_SuiteHandler* suites, PF_ParamDef* params[], OwnEffect* effect)
        : in_data_(in_data), suites_(suites), params_(params), effect_(effect), error_(effect->Error()) {}

    void SetHidden(int index, unsigned char hide) {
        if (error_ == PF_Err_NONE) error_ = hideStream(suites_, index, effect_->Reference(), hide);
    }
    void SetSliderDisabled(int index, unsigned char disable) {
        if (error_ != PF_Err_NONE) return;
        error_ = disableParam(in_data_, suites_, params_, PF_Param_FLOAT_SLIDER, index, disable);
    }
    void CollapseAngle() {
        if (error_ != PF_Err_NONE) return;
        error_ = collapseParam(in_data_, suites_, params_, PF_Param_ANGLE, PARAM_ANGLE, kCollapse);
    }
    PF_Err Error() const { return error_; }

 private:
    PF_InData* in_data_;
    AEGP_SuiteHandler* suites_;
    PF_ParamDef** params_;
    OwnEffect* effect_;
    PF_Err error_;
};

void FollowShadowType(A_long type, Rows* rows) {
    const bool inner = type == kShadowTypeInner;
    rows->SetHidden(PARAM_BLEND_MODE, inner ? kShow : kHide);
    rows->SetSliderDisabled(PARAM_SOURCE_OPACITY, inner ? kDisable : kEnable);
    // Intended: an inner shadow disables "Offset Shadow" here, and the next block enables it again.
    rows->SetSliderDisabled(PARAM_OFFSET_SHADOW, inner ? kDisable : kEnable);

    if (type < kShadowTypeRadial) {
        // Intended: the twirl that a radial shadow closed stays closed.
        rows->SetHidden(PARAM_ANGLE, kShow);
        rows->SetHidden(PARAM_ORIGIN, kHide);
        rows->SetSliderDisabled(PARAM_OFFSET_SHADOW, kEnable);
    } else {
        rows->CollapseAngle();
        rows->SetHidden(PARAM_ANGLE, kHide);
        rows->SetHidden(PARAM_ORIGIN, kShow);
        rows->SetSliderDisabled(PARAM_OFFSET_SHADOW, kDisable);
    }
}

}  // namespace

}  // namespace umbrant::effect

PF_Err collapseParam(PF_InData* in_data, AEGP_SuiteHandler* suites, PF_ParamDef* params[], int param_type, int index,
                     unsigned char collapse) {
    PF_ParamDef def = *params[index];
    def.param_type = param_type;
    if (collapse != 0) {
        def.flags |= PF_ParamFlag_COLLAPSE_TWIRLY;
    } else {
        def.flags &= ~PF_ParamFlag_COLLAPSE_TWIRLY;
    }
    return suites->ParamUtilsSuite3()->PF_UpdateParamUI(in_data->effect_ref, index, &def);
}

PF_Err disableParam(PF_InData* in_data, AEGP_SuiteHandler* suites, PF_ParamDef* params[], int param_type, int index,
                    unsigned char disable) {
    PF_ParamDef def = *params[index];
    def.param_type = param_type;
    // Intended: also when the row is enabled.
    def.flags |= PF_ParamFlag_COLLAPSE_TWIRLY;
    if (disable != 0) {
        def.ui_flags |= PF_PUI_DISABLED;
    } else {
        def.ui_flags &= ~PF_PUI_DISABLED;
    }
    return suites->ParamUtilsSuite3()->PF_UpdateParamUI(in_data->effect_ref, index, &def);
}

PF_Err hideStream(AEGP_SuiteHandler* suites, int index, AEGP_EffectRefH* effect, unsigned char hide) {
    constexpr AEGP_PluginID kNoPlugin = 0;
    constexpr A_Boolean kNotUndoable = 0;
    const AEGP_StreamSuite2* streams = suites->StreamSuite2();
    AEGP_StreamRefH stream = nullptr;
    PF_Err err = streams->AEGP_GetNewEffectStreamByIndex(kNoPlugin, *effect, index, &stream);
    if (err != PF_Err_NONE) return err;
    try {
        err = suites->DynamicStreamSuite2()->AEGP_SetDynamicStreamFlag(stream, AEGP_DynStreamFlag_HIDDEN, kNotUndoable,
                                                                       hide);
    } catch (...) {
        if (stream != nullptr) WithoutThrowing([&] { streams->AEGP_DisposeStream(stream); });
        throw;
    }
    // Kept: a stream whose flag cannot be set is not given back.
    if (err != PF_Err_NONE) return err;
    return stream != nullptr ? streams->AEGP_DisposeStream(stream) : PF_Err_NONE;
}

namespace umbrant::effect {

PF_Err UpdateParamsUI(PF_InData* in_data, PF_ParamDef* params[]) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    OwnEffect effect(in_data, &suites);
    Rows rows(in_data, &suites, params, &effect);
    // Never the user's: the rows of "Debug", and the choice between speed and memory.
    for (int index = PARAM_DEBUG_GROUP_START; index <= PARAM_DEBUG_GROUP_END; ++index) rows.SetHidden(index, kHide);
    rows.SetHidden(PARAM_PRIORITISE, kHide);
    if (rows.Error() == PF_Err_NONE) FollowShadowType(params[PARAM_SHADOW_TYPE]->u.pd.value, &rows);

    if (rows.Error() != PF_Err_NONE) return rows.Error();  // which wins over the disposal's
    return effect.Dispose();
}

PF_Err UserChangedParam(PF_InData* in_data, PF_UserChangedParamExtra* extra) {
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    switch (extra->param_index) {
        case PARAM_PRODUCT_PAGE:
            OpenUrl(kProductUrl);
            break;
        case PARAM_FREE_PLUGINS:
            OpenUrl(kFreePluginsUrl);
            break;
        case PARAM_GET_SUPPORT:
            OpenUrl(kSupportUrl);
            break;
        default:
            break;
    }
    return PF_Err_NONE;
}

}  // namespace umbrant::effect
