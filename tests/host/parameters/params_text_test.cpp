// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Parameters as people name and set them: what is understood, and what is said when it is not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/parameters/param_path.h"
#include "tests/host/parameters/params_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

TEST(PathForm, KeepsLettersAndDigits) {
    EXPECT_EQ(PathForm("Blend Mode"), "blend-mode");
    EXPECT_EQ(PathForm("Ease In & Out"), "ease-in-out");
    EXPECT_EQ(PathForm("GPU Spec:"), "gpu-spec");
    EXPECT_EQ(PathForm("  -- 2x4 "), "2x4");
    EXPECT_EQ(PathForm("(-"), "");
    EXPECT_EQ(PathForm(""), "");
    EXPECT_EQ(PathForm("Größe"), "größe");
}

TEST(EditDistance, CountsEdits) {
    EXPECT_EQ(EditDistance("", ""), 0);
    EXPECT_EQ(EditDistance("abc", ""), 3);
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3);
    EXPECT_EQ(EditDistance("distnace", "distance"), 2);
}

TEST(Nearest, SortsAndKnowsLastParts) {
    const std::vector<std::string> names = {"style/softness", "style/distance", "easing/distance", "quality/samples"};
    EXPECT_THAT(Nearest("distance", names, 2), ElementsAre("style/distance", "easing/distance"));
    EXPECT_THAT(Nearest("style/softnes", names, 1), ElementsAre("style/softness"));
    EXPECT_THAT(Nearest("x", {}, 3), ElementsAre());
}

TEST(FindParam, ByPathAndByIndex) {
    const ParamSet params = EveryKind();
    EXPECT_EQ(*params.Find("style/distance"), 2);
    EXPECT_EQ(*params.Find("style/advanced/distance"), 10);
    EXPECT_EQ(*params.Find("#0"), 0);
    EXPECT_EQ(*params.Find("#8"), 8);
    EXPECT_EQ(*params.Find("#20"), 20);
}

struct WrongName {
    const char* path;
    const char* sentence;
};

class WrongNames : public ::testing::TestWithParam<WrongName> {};

TEST_P(WrongNames, AreAnsweredWithRightOnes) {
    const ParamSet params = EveryKind();
    const Result<int> found = params.Find(GetParam().path);
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(found.error().sentence, GetParam().sentence);
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongNames,
    ::testing::Values(
        WrongName{"style/distanc", "there is no parameter 'style/distanc'; closest: 'style/distance'"},
        WrongName{"distance", "there is no parameter 'distance'; closest: 'style/distance', 'style/advanced/distance'"},
        WrongName{"#21", "there is no parameter '#21'; the effect has #0 to #20"},
        WrongName{"#-1", "there is no parameter '#-1'; the effect has #0 to #20"},
        WrongName{"#1x", "there is no parameter '#1x'; the effect has #0 to #20"},
        WrongName{"#", "there is no parameter '#'; the effect has #0 to #20"}));

TEST(FindParam, ANameOfTwoRowsIsNoName) {
    Declaration d;
    d.Float("Size", 0, 1, 0).Float("size", 0, 1, 0);
    const Result<int> found = d.params.Find("size");
    ASSERT_FALSE(found);
    EXPECT_EQ(found.error().sentence, "'size' names 2 parameters; use one of #1, #2");
    EXPECT_EQ(*d.params.Find("#2"), 2);
}

TEST(FindParam, AnEffectWithoutNamesSaysSo) {
    EXPECT_EQ(ParamSet().Find("x").error().sentence, "there is no parameter 'x'; the effect has no named parameters");
}

struct RightValue {
    const char* path;
    const char* text;
    const char* shown;
};

class RightValues : public ::testing::TestWithParam<RightValue> {};

TEST_P(RightValues, AreTaken) {
    ParamSet params = EveryKind();
    const RightValue& row = GetParam();
    const Result<Done> set = params.SetFromText(row.path, row.text);
    ASSERT_TRUE(set) << set.error().sentence;
    EXPECT_EQ(params.ValueText(*params.Find(row.path)), row.shown);
    ASSERT_TRUE(params.SetFromText(row.path, row.shown)) << "what is shown can be typed";
    EXPECT_EQ(params.ValueText(*params.Find(row.path)), row.shown);
}

INSTANTIATE_TEST_SUITE_P(
    All, RightValues,
    ::testing::Values(
        RightValue{"style/distance", "12.5", "12.5"}, RightValue{"style/distance", " 2000 ", "2000"},
        RightValue{"style/distance", "+1e2", "100"}, RightValue{"#2", "0", "0"},
        RightValue{"style/strength", "50", "50"}, RightValue{"style/strength", "50%", "50"},
        RightValue{"style/angle", "-45.5", "-45.5"}, RightValue{"style/angle", "725", "725"},
        RightValue{"style/origin", "10,20", "10,20"}, RightValue{"style/origin", "-0.5, 3e2", "-0.5,300"},
        RightValue{"style/origin", "12.5%,-3 %", "12.5%,-3%"}, RightValue{"style/color", "#FF8000", "#ff8000"},
        RightValue{"style/blend-mode", "soft-light", "soft-light"},
        RightValue{"style/blend-mode", "Soft Light", "soft-light"}, RightValue{"style/blend-mode", "3", "add"},
        RightValue{"style/blend-mode", "ease in & out", "ease-in-out"}, RightValue{"knock-out", "off", "off"},
        RightValue{"knock-out", "FALSE", "off"}, RightValue{"knock-out", "1", "on"}, RightValue{"count", "-5", "-5"},
        RightValue{"fixed", "7.25", "7.25"}, RightValue{"place", "1,-2,3.5", "1,-2,3.5"}));

TEST(PercentPoints, ReachTheEffectInPixels) {
    ParamSet params = EveryKind();
    ASSERT_TRUE(params.SetFromText("style/origin", "25%,-50%"));
    const PF_ParamDef def = params.CheckOut(*params.Find("style/origin"), {200, 100, {1, 2}, {1, 4}});
    EXPECT_EQ(def.u.td.x_value, 25 << 16);
    EXPECT_EQ(def.u.td.y_value, -(12 << 16) - (1 << 15));
}

struct WrongValue {
    const char* path;
    const char* text;
    const char* sentence;
};

class WrongValues : public ::testing::TestWithParam<WrongValue> {};

TEST_P(WrongValues, AreRefusedWithASentence) {
    ParamSet params = EveryKind();
    const WrongValue& row = GetParam();
    const Result<Done> set = params.SetFromText(row.path, row.text);
    ASSERT_FALSE(set);
    EXPECT_EQ(set.error().kind, ErrorKind::kUsage);
    EXPECT_EQ(set.error().sentence, row.sentence);
    const int index = *params.Find(row.path);
    EXPECT_EQ(params.ValueText(index), params.DefaultText(index)) << "nothing was changed";
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongValues,
    ::testing::Values(
        WrongValue{"style/distance", "2000.5", "'style/distance' takes 0 to 2000, not 2000.5"},
        WrongValue{"style/distance", "-1", "'style/distance' takes 0 to 2000, not -1"},
        WrongValue{"style/distance", "far", "'style/distance' takes a number from 0 to 2000, not 'far'"},
        WrongValue{"style/distance", "", "'style/distance' takes a number from 0 to 2000, not ''"},
        WrongValue{"style/distance", "12px", "'style/distance' takes a number from 0 to 2000, not '12px'"},
        WrongValue{"style/distance", "50%", "'style/distance' takes a number from 0 to 2000, not '50%'"},
        WrongValue{"style/distance", "nan", "'style/distance' takes a number from 0 to 2000, not 'nan'"},
        WrongValue{"style/distance", "inf", "'style/distance' takes a number from 0 to 2000, not 'inf'"},
        WrongValue{"style/distance", "1e999", "'style/distance' takes a number from 0 to 2000, not '1e999'"},
        WrongValue{"style/distance", "0x10", "'style/distance' takes a number from 0 to 2000, not '0x10'"},
        WrongValue{"style/strength", "101", "'style/strength' takes 0 to 100 %, not 101"},
        WrongValue{"style/angle", "north",
                   "'style/angle' takes an angle in degrees, such as 405, 405deg or 1x45, not 'north'"},
        WrongValue{"style/angle", "40000", "'style/angle' takes -32767 to 32767 degrees, not 40000"},
        WrongValue{"style/angle", "91x8", "'style/angle' takes -32767 to 32767 degrees, not 32768"},
        WrongValue{"style/angle", "1.5x45",
                   "'style/angle' takes an angle in degrees, such as 405, 405deg or 1x45, not '1.5x45'"},
        WrongValue{"style/angle", "1x",
                   "'style/angle' takes an angle in degrees, such as 405, 405deg or 1x45, not '1x'"},
        WrongValue{"style/angle", "45rad",
                   "'style/angle' takes an angle in degrees, such as 405, 405deg or 1x45, not '45rad'"},
        WrongValue{"style/origin", "10",
                   "'style/origin' takes a point as x,y in pixels of the full-size layer, not '10'"},
        WrongValue{"style/origin", "10%,5",
                   "'style/origin' takes a point as x,y in pixels of the full-size layer, not '10%,5'"},
        WrongValue{"style/origin", "40000%,5%", "'style/origin' takes -32767 to 32767 percent, not 40000"},
        WrongValue{"style/origin", "1,2,3",
                   "'style/origin' takes a point as x,y in pixels of the full-size layer, not '1,2,3'"},
        WrongValue{"style/origin", "1,40000", "'style/origin' takes -32767 to 32767 pixels, not 40000"},
        WrongValue{"style/color", "reddish",
                   "'style/color' takes a colour as #rrggbb, #rgb or a CSS name, not 'reddish'"},
        WrongValue{"style/color", "#12345",
                   "'style/color' takes a colour as #rrggbb, #rgb or a CSS name, not '#12345'"},
        WrongValue{"style/color", "#12g", "'style/color' takes a colour as #rrggbb, #rgb or a CSS name, not '#12g'"},
        WrongValue{"style/color", "#12345g",
                   "'style/color' takes a colour as #rrggbb, #rgb or a CSS name, not '#12345g'"},
        WrongValue{"style/blend-mode", "softlight",
                   "'style/blend-mode' has no item 'softlight'; closest: 'soft-light' (of normal, add, soft-light, "
                   "ease-in-out)"},
        WrongValue{"style/blend-mode", "2",
                   "'style/blend-mode' cannot be set to 2, which is a separator line; the items are: normal, add, "
                   "soft-light, ease-in-out"},
        WrongValue{"style/blend-mode", "(-",
                   "'style/blend-mode' has no item '(-'; the items are: normal, add, soft-light, ease-in-out"},
        WrongValue{"style/blend-mode", "difference",
                   "'style/blend-mode' has no item 'difference'; the items are: normal, add, soft-light, ease-in-out"},
        WrongValue{"style/blend-mode", "0", "'style/blend-mode' takes an item number from 1 to 5, not 0"},
        WrongValue{"style/blend-mode", "6", "'style/blend-mode' takes an item number from 1 to 5, not 6"},
        WrongValue{"style/blend-mode", "1.5", "'style/blend-mode' takes an item number from 1 to 5, not 1.5"},
        WrongValue{"knock-out", "maybe", "'knock-out' takes on or off, not 'maybe'"},
        WrongValue{"count", "1.5", "'count' takes a whole number, not '1.5'"},
        WrongValue{"count", "6", "'count' takes -5 to 5, not 6"},
        WrongValue{"fixed", "11", "'fixed' takes 0 to 10, not 11"},
        WrongValue{"place", "1,2", "'place' takes a point as x,y,z, not '1,2'"},
        WrongValue{"style", "1", "'style' is a group and has no value; name a row inside it"},
        WrongValue{"#11", "1", "#11 ends a group and has no value; name a row inside the group"},
        WrongValue{"umbrella-2-v1-3-3", "1", "'umbrella-2-v1-3-3' is a button and has no value"},
        WrongValue{"texture", "a.png", "'texture' is a layer; pass an image instead of a value"},
        WrongValue{"#0", "a.png", "#0 is a layer; pass an image instead of a value"},
        WrongValue{"panel", "1", "'panel' holds the effect's own data, which cannot be set from a text"},
        WrongValue{"nothing", "1", "'nothing' has no value that can be set from a text"}));

TEST(SetFromText, AnglesMayHaveAUnitOrTurns) {
    const struct {
        const char* text;
        const char* degrees;
    } rows[] = {{"45", "45"},       {"45deg", "45"},    {" 45 deg ", "45"}, {"45\u00B0", "45"},    {"1x45", "405"},
                {"+1x45", "405"},   {"-1x45", "-405"},  {"-1x-45", "-405"}, {"1x-45", "315"},      {"0x45", "45"},
                {"2x0.5", "720.5"}, {"1x45deg", "405"}, {"-0x45", "-45"},   {"1x+45\u00B0", "405"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ParamSet params = EveryKind();
        const auto set = params.SetFromText("style/angle", row.text);
        ASSERT_TRUE(set) << set.error().sentence;
        EXPECT_EQ(params.ValueText(*params.Find("style/angle")), row.degrees);
    }
}

TEST(SetFromText, ColoursMayBeShortOrNamed) {
    const struct {
        const char* text;
        const char* value;
    } rows[] = {{"#203060", "#203060"},       {"#2AF", "#22aaff"},       {"red", "#ff0000"},
                {"Teal", "#008080"},          {" aliceblue", "#f0f8ff"}, {"YellowGreen", "#9acd32"},
                {"rebeccapurple", "#663399"}, {"grey", "#808080"},       {"gray", "#808080"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ParamSet params = EveryKind();
        const auto set = params.SetFromText("style/color", row.text);
        ASSERT_TRUE(set) << set.error().sentence;
        EXPECT_EQ(params.ValueText(*params.Find("style/color")), row.value);
    }
}

TEST(Nearest, FarNamesAreNotSuggested) {
    const std::vector<std::string> names{"render", "params", "panel", "style/distance"};
    EXPECT_THAT(Nearest("bogus", names, 3), ElementsAre());
    EXPECT_THAT(Nearest("rendr", names, 3), ElementsAre("render"));
    EXPECT_THAT(Nearest("dist", names, 3), ElementsAre("style/distance")) << "a part of a name";
    EXPECT_THAT(Nearest("x", names, 3), ElementsAre());
    EXPECT_THAT(Nearest("", names, 3), ElementsAre());
}

TEST(SetFromText, AWrongNameIsSaidFirst) {
    ParamSet params = EveryKind();
    EXPECT_EQ(params.SetFromText("#99", "1").error().sentence, "there is no parameter '#99'; the effect has #0 to #20");
}

TEST(SetFromText, ItemsOfOneFormNeedTheirNumber) {
    Declaration d;
    d.Popup("Mode", "Add|add!|+", 3, 1);
    EXPECT_EQ(d.params.SetFromText("mode", "add").error().sentence,
              "'mode' has several items 'add'; use a number: 1, 2");
    ASSERT_TRUE(d.params.SetFromText("mode", "3"));
    EXPECT_EQ(d.params.ValueText(1), "3") << "an item without letters is its number";
    Declaration empty;
    empty.Popup("Mode", "+", 1, 1);
    EXPECT_EQ(empty.params.SetFromText("mode", "x").error().sentence,
              "'mode' has no item 'x'; use a number from 1 to 1");
}

TEST(SetFromText, APopupSplitIntoMoreItemsThanItCounts) {
    Declaration d;
    d.Popup("Renderer", "llvmpipe|256 bits", 1, 1);
    EXPECT_EQ(d.params.ValueText(1), "llvmpipe");
    EXPECT_FALSE(d.params.SetFromText("renderer", "2"));
}

TEST(ParamTypeNames, AreWords) {
    EXPECT_STREQ(ParamTypeName(PF_Param_FLOAT_SLIDER), "slider");
    EXPECT_STREQ(ParamTypeName(PF_Param_POPUP), "popup");
    EXPECT_STREQ(ParamTypeName(PF_Param_GROUP_START), "group");
    EXPECT_STREQ(ParamTypeName(99), "no data");
}

}  // namespace

}  // namespace umbrant::host
