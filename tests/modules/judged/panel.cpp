// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect's parameters and what it does on its panel.

#include <cstdio>
#include <cstring>

#include "tests/modules/judged/judged.h"

namespace {

PF_ParamDef NewDef(PF_ParamType type, const char* name, A_long id) {
    PF_ParamDef def{};
    def.param_type = type;
    def.uu.id = id;
    std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "%s", name);
    return def;
}

PF_ParamDef Slider(const char* name, A_long id, float high, float normal) {
    PF_ParamDef def = NewDef(PF_Param_FLOAT_SLIDER, name, id);
    def.u.fs_d.valid_max = high;
    def.u.fs_d.slider_max = high;
    def.u.fs_d.dephault = normal;
    return def;
}

/// A stream of one row, given back at the end of the scope.
class Stream {
 public:
    Stream(const AEGP_StreamSuite2* suite, AEGP_EffectRefH effect, A_long index) : suite_(suite) {
        error = suite->AEGP_GetNewEffectStreamByIndex(0, effect, index, &stream);
    }
    ~Stream() {
        if (stream) suite_->AEGP_DisposeStream(stream);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    PF_Err error = PF_Err_NONE;
    AEGP_StreamRefH stream = nullptr;

 private:
    const AEGP_StreamSuite2* suite_;
};

}  // namespace

PF_ParamDef ValueOf(PF_InData* in, PF_ParamIndex index) {
    PF_ParamDef def{};
    if (const PF_Err error =
            in->inter.checkout_param(in->effect_ref, index, in->current_time, in->time_step, in->time_scale, &def)) {
        if (Is(Mutant::kReplacesError)) throw PF_Err{PF_Err_OUT_OF_MEMORY};
        if (!Is(Mutant::kSwallowsError)) throw PF_Err{error};
    }
    const PF_ParamDef value = def;
    if (!Is(Mutant::kLeaksParam)) {
        if (const PF_Err error = in->inter.checkin_param(in->effect_ref, &def)) throw PF_Err{error};
    }
    if (Is(Mutant::kChecksInTwice)) in->inter.checkin_param(in->effect_ref, &def);
    return Is(Mutant::kReadsCheckedIn) ? def : value;
}

PF_Err SetUpParams(PF_InData* in, PF_OutData* out) {
    PF_ParamDef defs[JUDGED_COUNT];
    defs[JUDGED_GROUP] = NewDef(PF_Param_GROUP_START, "Look", 1);
    defs[JUDGED_AMOUNT] = Slider("Amount", 2, 100, Is(Mutant::kDefaultOutside) ? 120.0f : 80.0f);
    defs[JUDGED_MODE] = NewDef(PF_Param_POPUP, "Mode", 3);
    defs[JUDGED_MODE].u.pd = {
        2, static_cast<A_short>(Is(Mutant::kWrongItemCount) ? 5 : 3), 2, {"Plain|Tinted|Picture"}};
    defs[JUDGED_COLOUR] = NewDef(PF_Param_COLOR, "Colour", 4);
    defs[JUDGED_COLOUR].u.cd.dephault = {255, 200, 100, 50};
    defs[JUDGED_ANGLE] = NewDef(PF_Param_ANGLE, "Angle", 5);
    defs[JUDGED_CENTRE] = NewDef(PF_Param_POINT, "Centre", 6);
    defs[JUDGED_SHOWN] = NewDef(PF_Param_CHECKBOX, "Shown", Is(Mutant::kSameDiskId) ? 6 : 7);
    defs[JUDGED_SHOWN].u.bd.dephault = 1;
    defs[JUDGED_PICTURE] = NewDef(PF_Param_LAYER, "Picture", 8);
    defs[JUDGED_STEPS] = NewDef(PF_Param_SLIDER, "Steps", 9);
    defs[JUDGED_STEPS].u.sd = {1, {}, {}, 1, 64, 1, 64, 1};
    defs[JUDGED_BORDER] = Slider("Border", 10, 1000, 4);
    defs[JUDGED_GROUP_END] = NewDef(PF_Param_GROUP_END, "", 11);
    defs[JUDGED_BUTTON] = NewDef(PF_Param_BUTTON, "Press", 12);
    defs[JUDGED_BUTTON].u.button_d.u.namesptr = "Press";
    defs[JUDGED_PAINTED] = NewDef(PF_Param_NO_DATA, "Painted", 13);
    defs[JUDGED_PAINTED].ui_flags = PF_PUI_CONTROL;
    defs[JUDGED_PAINTED].ui_width = 40;
    defs[JUDGED_PAINTED].ui_height = 20;
    if (Is(Mutant::kEndlessName)) {
        std::memset(defs[JUDGED_AMOUNT].name_do_not_use_directly, 'n',
                    sizeof(defs[JUDGED_AMOUNT].name_do_not_use_directly));
    }
    for (int i = JUDGED_GROUP; i < JUDGED_COUNT; ++i) {
        if (const PF_Err error = in->inter.add_param(in->effect_ref, -1, &defs[i])) return error;
    }
    PF_CustomUIInfo info{};
    info.events = PF_CustomEFlag_EFFECT;
    if (const PF_Err error = in->inter.register_ui(in->effect_ref, &info)) return error;
    out->num_params = JUDGED_COUNT;
    return PF_Err_NONE;
}

PF_Err UpdatePanel(PF_InData* in, PF_ParamDef* params[]) {
    const Held<PF_ParamUtilsSuite3> rows(in, kPFParamUtilsSuiteName, kPFParamUtilsSuiteVersion3);
    const Held<AEGP_PFInterfaceSuite1> interface(in, kAEGPPFInterfaceSuiteName, kAEGPPFInterfaceSuiteVersion1);
    const Held<AEGP_EffectSuite2> effects(in, kAEGPEffectSuiteName, kAEGPEffectSuiteVersion2);
    const Held<AEGP_StreamSuite2> streams(in, kAEGPStreamSuiteName, kAEGPStreamSuiteVersion2);
    const Held<AEGP_DynamicStreamSuite2> flags(in, kAEGPDynamicStreamSuiteName, kAEGPDynamicStreamSuiteVersion2);

    PF_ParamDef shown = *params[JUDGED_COLOUR];
    shown.ui_flags = params[JUDGED_MODE]->u.pd.value == 2 ? PF_PUI_NONE : PF_PUI_DISABLED;
    if (const PF_Err error = rows->PF_UpdateParamUI(in->effect_ref, JUDGED_COLOUR, &shown)) return error;

    AEGP_EffectRefH effect = nullptr;
    if (const PF_Err error = interface->AEGP_GetNewEffectForEffect(0, in->effect_ref, &effect)) return error;
    PF_Err error = PF_Err_NONE;
    {
        const Stream stream(streams.Get(), effect, JUDGED_ANGLE);
        error = stream.error;
        if (!error) {
            error = flags->AEGP_SetDynamicStreamFlag(stream.stream, AEGP_DynStreamFlag_HIDDEN, 0,
                                                     params[JUDGED_MODE]->u.pd.value == 1);
        }
    }
    effects->AEGP_DisposeEffect(effect);
    return error;
}

PF_Err DrawPanel(PF_InData* in, PF_EventExtra* event) {
    if (Is(Mutant::kHandlesEverything)) event->evt_out_flags = PF_EO_HANDLED_EVENT;
    if (event->e_type != PF_Event_DRAW || event->effect_win.area != PF_EA_CONTROL) return PF_Err_NONE;
    const Held<PF_EffectCustomUISuite1> panel(in, kPFEffectCustomUISuiteName, kPFEffectCustomUISuiteVersion1);
    const Held<DRAWBOT_DrawbotSuite1> draw(in, kDRAWBOT_DrawSuiteName, kDRAWBOT_DrawSuite_Version1);
    const Held<DRAWBOT_SupplierSuite1> supplierSuite(in, kDRAWBOT_SupplierSuiteName, kDRAWBOT_SupplierSuite_Version1);
    const Held<DRAWBOT_SurfaceSuite1> surfaceSuite(in, kDRAWBOT_SurfaceSuiteName, kDRAWBOT_SurfaceSuite_Version1);
    DRAWBOT_DrawRef reference = nullptr;
    if (const PF_Err error = panel->PF_GetDrawingReference(event->contextH, &reference)) return error;
    if (!reference) return PF_Err_NONE;
    DRAWBOT_SupplierRef supplier = nullptr;
    DRAWBOT_SurfaceRef surface = nullptr;
    if (const PF_Err error = draw->GetSupplier(reference, &supplier)) return error;
    if (const PF_Err error = draw->GetSurface(reference, &surface)) return error;
    const unsigned char pixels[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 9, 9, 255};
    DRAWBOT_ImageRef image = nullptr;
    if (const PF_Err error = supplierSuite->NewImageFromBuffer(supplier, 2, 2, 8, kDRAWBOT_PixelLayout_32BGRA_Straight,
                                                               pixels, &image)) {
        return error;
    }
    const DRAWBOT_PointF32 place{static_cast<float>(event->effect_win.current_frame.left),
                                 static_cast<float>(event->effect_win.current_frame.top)};
    const PF_Err error = surfaceSuite->DrawImage(surface, image, &place, 1.0f);
    const PF_Err released = supplierSuite->ReleaseObject(reinterpret_cast<DRAWBOT_ObjectRef>(image));
    if (!error) event->evt_out_flags = PF_EO_HANDLED_EVENT;
    return error ? error : released;
}
