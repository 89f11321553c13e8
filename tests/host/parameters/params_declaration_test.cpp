// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is recorded of a declaration, and what the effect gets to see of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "hostapi/errors.h"
#include "tests/host/parameters/params_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

TEST(ParamSet, StartsWithTheLayer) {
    const ParamSet params;
    ASSERT_EQ(params.Count(), 1);
    EXPECT_EQ(params.Row(0).def.param_type, PF_Param_LAYER);
    EXPECT_EQ(params.Row(0).path, "");
}

TEST(ParamSet, RecordsPathsGroupsAndTexts) {
    ParamSet params = EveryKind();
    EXPECT_EQ(params.Finish(), "");
    EXPECT_EQ(params.Count(), 21);
    struct Expected {
        int index;
        const char* path;
        int depth;
    };
    const Expected rows[] = {
        {1, "style", 0},
        {2, "style/distance", 1},
        {3, "style/strength", 1},
        {4, "style/blend-mode", 1},
        {5, "style/origin", 1},
        {6, "style/angle", 1},
        {7, "style/color", 1},
        {8, "", 1},
        {9, "style/advanced", 1},
        {10, "style/advanced/distance", 2},
        {11, "", 1},
        {12, "", 0},
        {13, "knock-out", 0},
        {14, "texture", 0},
        {15, "umbrella-2-v1-3-3", 0},
    };
    for (const Expected& row : rows) {
        EXPECT_EQ(params.Row(row.index).index, row.index);
        EXPECT_EQ(params.Row(row.index).path, row.path) << row.index;
        EXPECT_EQ(params.Row(row.index).depth, row.depth) << row.index;
    }
    EXPECT_THAT(params.Row(4).items, ElementsAre("Normal", "(-", "Add", "Soft Light", "Ease In & Out"));
    EXPECT_STREQ(params.Row(4).def.u.pd.u.namesptr, "Normal|(-|Add|Soft Light|Ease In & Out")
        << "a copy: the effect's text is gone";
    EXPECT_EQ(params.Row(15).label, "Product Page");
    EXPECT_EQ(params.Row(15).name, "Umbrella 2 v1.3.3");
}

TEST(ParamSet, ACopyKeepsItsTexts) {
    auto original = std::make_unique<ParamSet>(EveryKind());
    const ParamSet copy = *original;
    original.reset();
    EXPECT_STREQ(copy.CheckOut(15, {}).u.button_d.u.namesptr, "Product Page");
}

TEST(ParamSet, RowsOfAnUnnamedGroupLieInTheGroupAroundIt) {
    Declaration d;
    d.Group("Outer").Group("").Float("Inside", 0, 1, 0).End().End();
    EXPECT_EQ(d.params.Row(2).path, "");
    EXPECT_EQ(d.params.Row(3).path, "outer/inside");
    EXPECT_EQ(d.params.Row(3).depth, 2);
}

TEST(ParamSet, ANameMayFillItsField) {
    PF_ParamDef def{};
    def.param_type = PF_Param_ANGLE;
    std::memset(def.name_do_not_use_directly, 'N', sizeof(def.name_do_not_use_directly));
    ParamSet params;
    ASSERT_EQ(params.Add(-1, &def), 0);
    EXPECT_EQ(params.Row(1).path, std::string(32, 'n'));
}

TEST(ParamSet, TellsTheEffectWhatItDoesNotTake) {
    ParamSet params;
    PF_ParamDef def{};
    def.param_type = PF_Param_ANGLE;
    EXPECT_EQ(params.Add(-1, nullptr), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(params.Add(5, &def), PF_Err_INVALID_INDEX);
    EXPECT_EQ(params.Add(1, &def), PF_Err_NONE);
    for (const PF_ParamType type : {-1, 16, 17, 19, 99}) {
        def.param_type = type;
        EXPECT_EQ(params.Add(-1, &def), PF_Err_UNRECOGNIZED_PARAM_TYPE) << type;
    }
    EXPECT_EQ(params.Count(), 2);
}

TEST(ParamSet, GroupsMustAddUp) {
    Declaration open;
    open.Group("A").Float("B", 0, 1, 0);
    EXPECT_EQ(open.params.Finish(), "the group of row 1 has no end");
    Declaration stray;
    stray.End();
    EXPECT_EQ(stray.params.Finish(), "row 1 ends a group, but none is open");
}

TEST(ParamSet, ANewInstanceHasTheDefaults) {
    const ParamSet params = EveryKind();
    EXPECT_EQ(params.Row(2).def.u.fs_d.value, 250);
    EXPECT_EQ(params.Row(6).def.u.ad.value, 135 << 16);
    EXPECT_EQ(params.Row(7).def.u.cd.value.green, 171);
    EXPECT_EQ(params.Row(13).def.u.bd.value, 1);
    EXPECT_EQ(params.Row(17).def.u.sd.value, 3);
    EXPECT_EQ(params.Row(18).def.u.fd.value, 5 << 15);
    EXPECT_EQ(params.Row(19).def.u.point3d_d.z_value, 2.5);
    struct Expected {
        int index;
        const char* text;
    };
    const Expected rows[] = {{0, ""},    {1, ""},        {2, "250"}, {3, "80"},   {4, "normal"},   {5, "50%,0.5%"},
                             {6, "135"}, {7, "#01abff"}, {8, "0"},   {11, ""},    {13, "on"},      {14, ""},
                             {15, ""},   {16, ""},       {17, "3"},  {18, "2.5"}, {19, "0,0,2.5"}, {20, ""}};
    for (const Expected& row : rows) {
        EXPECT_EQ(params.ValueText(row.index), row.text) << row.index;
        EXPECT_EQ(params.DefaultText(row.index), row.text) << row.index;
    }
}

TEST(ParamSet, PointsReachTheEffectInDownsampledPixels) {
    ParamSet params = EveryKind();
    const LayerGeometry full{200, 100, {1, 1}, {1, 1}};
    const LayerGeometry reduced{200, 100, {1, 2}, {1, 4}};
    PF_ParamDef def = params.CheckOut(5, full);
    EXPECT_EQ(def.u.td.x_value, 100 << 16) << "50 % of 200";
    EXPECT_EQ(def.u.td.y_value, 1 << 15) << "0.5 % of 100";
    def = params.CheckOut(5, reduced);
    EXPECT_EQ(def.u.td.x_value, 50 << 16);
    EXPECT_EQ(def.u.td.y_value, 1 << 13);
    ASSERT_TRUE(params.SetFromText("style/origin", "30.5,-8"));
    def = params.CheckOut(5, full);
    EXPECT_EQ(def.u.td.x_value, 61 << 15);
    EXPECT_EQ(def.u.td.y_value, -(8 << 16));
    def = params.CheckOut(5, reduced);
    EXPECT_EQ(def.u.td.x_value, 61 << 14);
    EXPECT_EQ(def.u.td.y_value, -(2 << 16));
}

TEST(ParamSet, TakesOverWhatTheEffectWrote) {
    ParamSet params = EveryKind();
    const LayerGeometry geometry{200, 100, {1, 2}, {1, 2}};
    PF_ParamDef def = params.CheckOut(2, geometry);
    def.u.fs_d.value = 17;
    params.TakeValue(2, def, geometry);
    EXPECT_EQ(params.ValueText(2), "17");
    def = params.CheckOut(5, geometry);
    def.u.td.x_value = 3 << 16;
    def.u.td.y_value = 4 << 16;
    params.TakeValue(5, def, geometry);
    EXPECT_EQ(params.ValueText(5), "6,8");
    def = params.CheckOut(4, geometry);
    def.u.pd.value = 3;
    def.u.pd.u.namesptr = nullptr;
    params.TakeValue(4, def, geometry);
    EXPECT_EQ(params.ValueText(4), "add");
    EXPECT_NE(params.CheckOut(4, geometry).u.pd.u.namesptr, nullptr);
    def.param_type = PF_Param_ANGLE;
    params.TakeValue(4, def, geometry);
    EXPECT_EQ(params.ValueText(4), "add") << "another type is not taken";
}

}  // namespace

}  // namespace umbrant::host
