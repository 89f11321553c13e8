// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Colours as numbers in definitions, which effects copy and change.

#include "host/parameters/float_color.h"

#include <gtest/gtest.h>

#include <cstring>

namespace umbrant::host {

namespace {

PF_ParamDef ColorDef(const PF_Pixel& value, int rest) {
    PF_ParamDef def;
    std::memset(&def, rest, sizeof def);
    def.param_type = PF_Param_COLOR;
    def.u.cd.value = value;
    return def;
}

void ExpectColor(const PF_ParamDef& def, float red, float green, float blue) {
    const FloatColor color = FloatColorOf(def);
    EXPECT_EQ(color.red, red);
    EXPECT_EQ(color.green, green);
    EXPECT_EQ(color.blue, blue);
}

TEST(FloatColor, WithoutNumbersAreThoseOfTheBytes) {
    // Whatever an effect has left behind the colour.
    for (const int rest : {0, 0x55, 0xFF}) ExpectColor(ColorDef({255, 51, 0, 102}, rest), 0.2f, 0, 0.4f);
}

TEST(FloatColor, NumbersComeBackAndHaveTheNearestBytes) {
    PF_ParamDef def = ColorDef({255, 1, 2, 3}, 0xFF);
    SetFloatColor(def, {7.5f, 0.5f, -2});
    const PF_ParamDef copy = def;
    ExpectColor(copy, 7.5f, 0.5f, -2);
    EXPECT_EQ(copy.u.cd.value.alpha, 255);
    EXPECT_EQ(copy.u.cd.value.red, 255);
    EXPECT_EQ(copy.u.cd.value.green, 128);
    EXPECT_EQ(copy.u.cd.value.blue, 0);
}

TEST(FloatColor, TheDefaultStays) {
    PF_ParamDef def = ColorDef({255, 1, 2, 3}, 0);
    def.u.cd.dephault = {255, 9, 8, 7};
    SetFloatColor(def, {3, 3, 3});
    EXPECT_EQ(def.u.cd.dephault.red, 9);
    EXPECT_EQ(def.u.cd.dephault.blue, 7);
}

TEST(FloatColor, BytesThatAreWrittenLaterCount) {
    PF_ParamDef def = ColorDef({255, 1, 2, 3}, 0);
    SetFloatColor(def, {3, 3, 3});
    def.u.cd.value = {255, 0, 255, 51};
    ExpectColor(def, 0, 1, 0.2f);
    SetFloatColor(def, {3, 3, 3});
    SetByteColor(def, {255, 255, 255, 255});
    ExpectColor(def, 1, 1, 1);
}

}  // namespace

}  // namespace umbrant::host
