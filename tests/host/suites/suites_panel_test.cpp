// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The suites of the panel and of the application: references that are counted, rows that change their looks, colours,
// formatting.

#include <cmath>
#include <cstring>

#include "tests/host/suites/suites_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

PF_ParamDef Row(PF_ParamType type, const char* name) {
    PF_ParamDef def{};
    def.param_type = type;
    std::strncpy(def.name_do_not_use_directly, name, 31);
    return def;
}

class PanelTest : public SuitesTest {
 protected:
    PanelTest() {
        PF_ParamDef group = Row(PF_Param_GROUP_START, "Group");
        group.flags = PF_ParamFlag_START_COLLAPSED;
        PF_ParamDef angle = Row(PF_Param_ANGLE, "Angle");
        angle.ui_flags = PF_PUI_DISABLED;
        services.panel.Reset(
            {DeclaredPanelRow(Row(PF_Param_LAYER, "")), DeclaredPanelRow(group), DeclaredPanelRow(angle)});
    }
    PanelRow At(std::size_t index) const { return services.panel.Rows().at(index); }
};

TEST_F(PanelTest, StartsAsDeclared) {
    EXPECT_EQ(At(1), (PanelRow{PF_Param_GROUP_START, "Group", false, false, true, 0}));
    EXPECT_EQ(At(2), (PanelRow{PF_Param_ANGLE, "Angle", false, true, false, 0}));
}

TEST_F(PanelTest, ANameMayFillItsField) {
    PF_ParamDef def = Row(PF_Param_ANGLE, "");
    std::memset(def.name_do_not_use_directly, 'n', sizeof(def.name_do_not_use_directly));
    EXPECT_EQ(DeclaredPanelRow(def).name, std::string(32, 'n'));
}

TEST_F(PanelTest, UpdateParamUITakesOverTheLooks) {
    PF_ParamDef def = Row(PF_Param_ANGLE, "Angle");
    def.flags = PF_ParamFlag_COLLAPSE_TWIRLY;
    EXPECT_EQ(kParamUtilsSuite.PF_UpdateParamUI(ref, 2, &def), 0);
    EXPECT_EQ(At(2), (PanelRow{PF_Param_ANGLE, "Angle", false, false, true, 1}));
    def.ui_flags = PF_PUI_DISABLED;
    def.flags = 0;
    EXPECT_EQ(kParamUtilsSuite.PF_UpdateParamUI(ref, 2, &def), 0);
    EXPECT_EQ(At(2), (PanelRow{PF_Param_ANGLE, "Angle", false, true, false, 2}));
}

TEST_F(PanelTest, UpdateParamUIRefusesWrongRows) {
    const PF_ParamDef slider = Row(PF_Param_FLOAT_SLIDER, "Angle");
    EXPECT_EQ(kParamUtilsSuite.PF_UpdateParamUI(ref, 2, &slider), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kParamUtilsSuite.PF_UpdateParamUI(ref, 3, &slider), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kParamUtilsSuite.PF_UpdateParamUI(ref, 2, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(At(2).updates, 0);
    EXPECT_THAT(services.Misbehaviour(),
                ElementsAre("PF_UpdateParamUI was called for row 2, which does not exist with that type",
                            "PF_UpdateParamUI was called for row 3, which does not exist with that type"));
}

TEST_F(PanelTest, StreamsHideAndShowRows) {
    AEGP_EffectRefH reference = nullptr;
    ASSERT_EQ(kPFInterfaceSuite.AEGP_GetNewEffectForEffect(0, ref, &reference), 0);
    A_long number = 0;
    EXPECT_EQ(kStreamSuite.AEGP_GetEffectNumParamStreams(reference, &number), 0);
    EXPECT_EQ(number, 3);
    AEGP_StreamRefH stream = nullptr;
    ASSERT_EQ(kStreamSuite.AEGP_GetNewEffectStreamByIndex(0, reference, 2, &stream), 0);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(Open(Resource::kEffectRef), 1);
    EXPECT_EQ(Open(Resource::kStream), 1);

    EXPECT_EQ(kDynamicStreamSuite.AEGP_SetDynamicStreamFlag(stream, AEGP_DynStreamFlag_HIDDEN, 0, 1), 0);
    EXPECT_TRUE(At(2).hidden);
    AEGP_DynStreamFlags flags = 0;
    EXPECT_EQ(kDynamicStreamSuite.AEGP_GetDynamicStreamFlags(stream, &flags), 0);
    EXPECT_EQ(flags, AEGP_DynStreamFlag_HIDDEN | AEGP_DynStreamFlag_DISABLED);
    EXPECT_EQ(kDynamicStreamSuite.AEGP_SetDynamicStreamFlag(stream, AEGP_DynStreamFlag_HIDDEN, 0, 0), 0);
    EXPECT_FALSE(At(2).hidden);
    EXPECT_EQ(kDynamicStreamSuite.AEGP_SetDynamicStreamFlag(stream, AEGP_DynStreamFlag_DISABLED, 0, 0), 0);
    EXPECT_FALSE(At(2).disabled);
    EXPECT_EQ(kDynamicStreamSuite.AEGP_SetDynamicStreamFlag(stream, 4096, 0, 1), A_Err_PARAMETER);

    EXPECT_EQ(kStreamSuite.AEGP_DisposeStream(stream), 0);
    EXPECT_EQ(kStreamSuite.AEGP_DisposeStream(stream), A_Err_PARAMETER);
    EXPECT_EQ(kEffectSuite.AEGP_DisposeEffect(reference), 0);
    EXPECT_EQ(kEffectSuite.AEGP_DisposeEffect(reference), A_Err_PARAMETER);
    EXPECT_EQ(kStreamSuite.AEGP_GetNewEffectStreamByIndex(0, reference, 2, &stream), A_Err_PARAMETER);
    EXPECT_EQ(stream, nullptr);
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
    EXPECT_THAT(services.Misbehaviour(),
                ElementsAre("AEGP_DisposeStream was called with an invalid or released reference",
                            "AEGP_DisposeEffect was called with an invalid or released reference",
                            "AEGP_GetNewEffectStreamByIndex was called with an invalid or released reference"));
}

TEST_F(PanelTest, ThereIsNoStreamBesideTheRows) {
    AEGP_EffectRefH reference = nullptr;
    ASSERT_EQ(kPFInterfaceSuite.AEGP_GetNewEffectForEffect(0, ref, &reference), 0);
    AEGP_StreamRefH stream = nullptr;
    EXPECT_EQ(kStreamSuite.AEGP_GetNewEffectStreamByIndex(0, reference, 3, &stream), A_Err_PARAMETER);
    EXPECT_EQ(kStreamSuite.AEGP_GetNewEffectStreamByIndex(0, reference, -1, &stream), A_Err_PARAMETER);
    EXPECT_EQ(Open(Resource::kStream), 0);
}

TEST_F(SuitesTest, TheLayerAnswersItsFlags) {
    services.layerFlags = AEGP_LayerFlag_VIDEO_ACTIVE | AEGP_LayerFlag_COLLAPSE | AEGP_LayerFlag_LAYER_IS_3D;
    AEGP_LayerH layer = nullptr;
    ASSERT_EQ(kPFInterfaceSuite.AEGP_GetEffectLayer(ref, &layer), 0);
    AEGP_LayerFlags flags = 0;
    EXPECT_EQ(kLayerSuite.AEGP_GetLayerFlags(layer, &flags), 0);
    EXPECT_EQ(flags, 0x1 | 0x80 | 0x800);
    AEGP_LayerH again = nullptr;
    EXPECT_EQ(kPFInterfaceSuite.AEGP_GetEffectLayer(ref, &again), 0);
    EXPECT_EQ(layer, again) << "one layer, one reference, which nobody disposes of";
    A_Boolean is3D = 0;
    A_Boolean is2D = 1;
    EXPECT_EQ(kLayerSuite.AEGP_IsLayer3D(layer, &is3D), 0);
    EXPECT_EQ(kLayerSuite.AEGP_IsLayer2D(layer, &is2D), 0);
    EXPECT_TRUE(is3D);
    EXPECT_FALSE(is2D);
    A_long effects = 0;
    EXPECT_EQ(kEffectSuite.AEGP_GetLayerNumEffects(layer, &effects), 0);
    EXPECT_EQ(effects, 1);
    EXPECT_TRUE(services.tally.Snapshot().IsBalanced());
    EXPECT_EQ(kLayerSuite.AEGP_GetLayerFlags(nullptr, &flags), A_Err_PARAMETER);
    EXPECT_EQ(kPFInterfaceSuite.AEGP_GetEffectLayer(nullptr, &layer), A_Err_PARAMETER);
}

TEST_F(SuitesTest, TheRendererIsTheSessions) {
    UMBRANT_Renderer renderer = -1;
    ASSERT_EQ(kUmbrantHostSuite.GetRenderer(ref, &renderer), 0);
    EXPECT_EQ(renderer, UMBRANT_Renderer_ANY);
    services.renderer = UMBRANT_Renderer_PROCESSOR;
    ASSERT_EQ(kUmbrantHostSuite.GetRenderer(ref, &renderer), 0);
    EXPECT_EQ(renderer, UMBRANT_Renderer_PROCESSOR);
    EXPECT_EQ(kUmbrantHostSuite.GetRenderer(ref, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(kUmbrantHostSuite.GetRenderer(nullptr, &renderer), PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(SuitesTest, ColoursBecomeFloats) {
    PF_ParamDef def = Row(PF_Param_COLOR, "Color");
    def.u.cd.value = {255, 51, 0, 102};
    PF_PixelFloat color{};
    ASSERT_EQ(kColorParamSuite.PF_GetFloatingPointColorFromColorDef(ref, &def, &color), 0);
    EXPECT_EQ(color.alpha, 1.0f);
    EXPECT_EQ(color.red, 51.0f / 255.0f);
    EXPECT_EQ(color.green, 0.0f);
    EXPECT_EQ(color.blue, 102.0f / 255.0f);
    def.param_type = PF_Param_ANGLE;
    EXPECT_EQ(kColorParamSuite.PF_GetFloatingPointColorFromColorDef(ref, &def, &color), PF_Err_BAD_CALLBACK_PARAM);
}

TEST_F(SuitesTest, TheOptionsButtonHasAName) {
    EXPECT_EQ(kEffectUISuite.PF_SetOptionsButtonName(ref, "More..."), 0);
    EXPECT_EQ(services.panel.OptionsButton(), "More...");
}

TEST_F(SuitesTest, WithoutADrawEventThereIsNothingToDrawOn) {
    DRAWBOT_DrawRef reference = reinterpret_cast<DRAWBOT_DrawRef>(this);
    EXPECT_EQ(kEffectCustomUISuite.PF_GetDrawingReference(nullptr, &reference), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(reference, nullptr);
}

TEST_F(SuitesTest, MathematicsAndFormattingAreTheCLibrarys) {
    EXPECT_EQ(kANSISuite.sin(0.5), std::sin(0.5));
    EXPECT_EQ(kANSISuite.cos(0.5), std::cos(0.5));
    EXPECT_EQ(kANSISuite.atan2(1, -2), std::atan2(1.0, -2.0));
    EXPECT_EQ(kANSISuite.pow(2, 10), 1024);
    EXPECT_EQ(kANSISuite.hypot(3, 4), 5);
    EXPECT_EQ(kANSISuite.fmod(-7, 3), -1);
    char text[64];
    EXPECT_EQ(kANSISuite.sprintf(text, "%s %d%% %.2f", "a", 5, 1.5), 9);
    EXPECT_STREQ(text, "a 5% 1.50");
    EXPECT_EQ(utilCallbacks.ansi.sprintf(text, "%c", 'z'), 1);
    EXPECT_STREQ(text, "z");
    EXPECT_STREQ(utilCallbacks.ansi.strcpy(text, "copied"), "copied");
    EXPECT_EQ(utilCallbacks.ansi.sin, kANSISuite.sin);
    EXPECT_EQ(utilCallbacks.ansi.acos(1), 0);
}

}  // namespace

}  // namespace umbrant::host
