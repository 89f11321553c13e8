// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Values as numbers: what they become is what their text becomes, to the bit.

#include "host/parameters/param_kind.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "tests/host/parameters/params_fixture.h"

namespace umbrant::host {

namespace {

PF_ParamDef Def(PF_ParamType type, const PF_ParamDefUnion& u = {}) {
    PF_ParamDef def{};
    def.param_type = type;
    def.u = u;
    return def;
}

/// A row of each kind that has a value.
Declaration Everything() {
    Declaration rows;
    PF_ParamDefUnion u{};
    u.sd.valid_min = u.sd.slider_min = -7;
    u.sd.valid_max = u.sd.slider_max = 40000;
    u.sd.dephault = 3;
    rows.Row(PF_Param_SLIDER, "Integer", u);
    u = {};
    u.fd.valid_min = -1000 * 65536;
    u.fd.valid_max = 500 * 65536 + 77;
    u.fd.slider_min = 65536 / 2;
    u.fd.slider_max = 65536 * 2;
    u.fd.dephault = 65536;
    u.fd.precision = 3;
    u.fd.display_flags = PF_ValueDisplayFlag_PERCENT;
    rows.Row(PF_Param_FIX_SLIDER, "Fixed", u);
    rows.Float("Float", -0.3f, 1e6f, 0.1f, true);
    u = {};
    u.ad.dephault = 90 * 65536;
    rows.Row(PF_Param_ANGLE, "Angle", u);
    rows.Row(PF_Param_CHECKBOX, "Check", {});
    rows.Row(PF_Param_COLOR, "Color", {});
    rows.Row(PF_Param_POINT, "Point", {});
    rows.Row(PF_Param_POINT_3D, "Point 3D", {});
    rows.Popup("Popup", "One|Two|(-|Four", 4, 1);
    return rows;
}

/// The numbers as a person would type them, within the row's range.
std::string TextOf(const ParamRow& row, const ParamNumbers& numbers) {
    const auto within = [](double value, double low, double high) {
        return fmt::format("{}", std::clamp(value, low, high));
    };
    const auto channel = [](double value) { return static_cast<int>(std::lround(std::clamp(value, 0.0, 255.0))); };
    const std::vector<double>& v = numbers.values;
    const PF_ParamDefUnion& u = row.def.u;
    switch (row.def.param_type) {
        case PF_Param_SLIDER:
            return within(std::round(v[0]), u.sd.valid_min, u.sd.valid_max);
        case PF_Param_FIX_SLIDER:
            return within(v[0], u.fd.valid_min / 65536.0, u.fd.valid_max / 65536.0);
        case PF_Param_FLOAT_SLIDER:
            return within(v[0], static_cast<double>(u.fs_d.valid_min), static_cast<double>(u.fs_d.valid_max));
        case PF_Param_ANGLE:
            return within(v[0], -32767, 32767);
        case PF_Param_CHECKBOX:
            return v[0] != 0 ? "on" : "off";
        case PF_Param_COLOR:
            return fmt::format("#{:02x}{:02x}{:02x}", channel(v[0]), channel(v[1]), channel(v[2]));
        case PF_Param_POINT_3D:
            return fmt::format("{},{},{}", v[0], v[1], v[2]);
        case PF_Param_POINT: {
            const char* unit = numbers.isPercent ? "%" : "";
            return fmt::format("{0}{2},{1}{2}", within(v[0], -32767, 32767), within(v[1], -32767, 32767), unit);
        }
        default:
            return fmt::format("{}", v[0]);
    }
}

bool HaveSameValue(const ParamRow& a, const ParamRow& b) {
    return std::memcmp(&a.def.u, &b.def.u, sizeof a.def.u) == 0 && a.point == b.point;
}

TEST(ParamKind, NumbersBecomeWhatTheirTextBecomes) {
    const Declaration declared = Everything();
    std::mt19937 random(17);
    std::uniform_real_distribution<double> near(-3, 6), far(-60000, 60000);
    for (const ParamRow& row : declared.params.Rows()) {
        if (!HasValue(KindOf(row.def))) continue;
        SCOPED_TRACE(row.name);
        const std::size_t count = NumbersOf(row).values.size();
        for (int round = 0; round < 2000; ++round) {
            ParamNumbers numbers{{}, round % 2 == 0};
            for (std::size_t i = 0; i < count; ++i) {
                const double value = round % 3 == 0 ? near(random) : far(random);
                numbers.values.push_back(round % 5 == 0 ? std::round(value * 2) / 2 : value);
            }
            ParamSet byText = declared.params, byNumbers = declared.params;
            // What a popup does not have is refused by both.
            (void)byText.SetFromText(fmt::format("#{}", row.index), TextOf(row, numbers));
            SetNumbers(byNumbers.RawRow(row.index), numbers);
            ASSERT_TRUE(HaveSameValue(byText.Row(row.index), byNumbers.Row(row.index)))
                << TextOf(row, numbers) << ", " << byText.ValueText(row.index) << ", "
                << byNumbers.ValueText(row.index);
        }
    }
}

TEST(ParamKind, NumbersComeBack) {
    const Declaration declared = Everything();
    for (const ParamRow& row : declared.params.Rows()) {
        if (!HasValue(KindOf(row.def))) continue;
        ParamRow copy = row;
        SetNumbers(copy, NumbersOf(row));
        EXPECT_EQ(NumbersOf(copy).values, NumbersOf(row).values) << row.name;
        EXPECT_EQ(NumbersOf(copy).isPercent, NumbersOf(row).isPercent) << row.name;
    }
}

TEST(ParamKind, WhatIsNoValueChangesNothing) {
    const Declaration declared = Everything();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    for (const ParamRow& row : declared.params.Rows()) {
        ParamRow copy = row;
        SetNumbers(copy, {{kNan, kNan, kNan}});
        EXPECT_TRUE(HaveSameValue(copy, row)) << row.name;
    }
    ParamRow popup = declared.params.Row(*declared.params.Find("popup"));
    for (const double item : {0.0, 3.0, 5.0, 1.5, -1.0, 1e300}) {
        SetNumbers(popup, {{item}});
        EXPECT_EQ(popup.def.u.pd.value, 1) << item;
    }
    SetNumbers(popup, {{4}});
    EXPECT_EQ(popup.def.u.pd.value, 4);
}

/// As a text, an item's number could be another item's name.
TEST(ParamKind, ANumberIsAnItemsPlaceAndNotItsName) {
    Declaration rows;
    rows.Popup("Popup", "4|2|1|3", 4, 1);
    ParamRow row = rows.params.Row(1);
    SetNumbers(row, {{4}});
    EXPECT_EQ(row.def.u.pd.value, 4);
}

TEST(ParamKind, EveryTypeHasAKind) {
    const struct {
        PF_ParamType type;
        ParamKind kind;
        bool hasValue;
    } rows[] = {
        {PF_Param_LAYER, ParamKind::kLayer, false},       {PF_Param_SLIDER, ParamKind::kInteger, true},
        {PF_Param_FIX_SLIDER, ParamKind::kFixed, true},   {PF_Param_FLOAT_SLIDER, ParamKind::kFloat, true},
        {PF_Param_ANGLE, ParamKind::kAngle, true},        {PF_Param_CHECKBOX, ParamKind::kCheckBox, true},
        {PF_Param_COLOR, ParamKind::kColor, true},        {PF_Param_POINT, ParamKind::kPoint, true},
        {PF_Param_POINT_3D, ParamKind::kPoint3D, true},   {PF_Param_POPUP, ParamKind::kPopup, true},
        {PF_Param_GROUP_START, ParamKind::kGroup, false}, {PF_Param_GROUP_END, ParamKind::kGroupEnd, false},
        {PF_Param_BUTTON, ParamKind::kButton, false},     {PF_Param_ARBITRARY_DATA, ParamKind::kCustom, false},
        {PF_Param_PATH, ParamKind::kPath, false},         {PF_Param_NO_DATA, ParamKind::kNone, false},
        {PF_Param_CUSTOM, ParamKind::kNone, false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(KindOf(row.type), row.kind) << row.type;
        EXPECT_EQ(HasValue(row.kind), row.hasValue) << row.type;
        EXPECT_EQ(IsDiscrete(row.kind), row.type == PF_Param_POPUP || row.type == PF_Param_CHECKBOX) << row.type;
    }
}

TEST(ParamKind, SlidersHaveARangeAndAUnit) {
    const Declaration declared = Everything();
    const auto row = [&](const char* name) { return declared.params.Row(*declared.params.Find(name)).def; };
    const auto integer = *SliderRange(row("integer"));
    EXPECT_EQ(integer.validMin, -7);
    EXPECT_EQ(integer.sliderMax, 40000);
    EXPECT_EQ(integer.normal, 3);
    EXPECT_FALSE(Precision(row("integer")));
    EXPECT_FALSE(IsPercent(row("integer")));
    const auto fixed = *SliderRange(row("fixed"));
    EXPECT_EQ(fixed.validMin, -1000);
    EXPECT_EQ(fixed.validMax, 500 + 77 / 65536.0);
    EXPECT_EQ(fixed.sliderMin, 0.5);
    EXPECT_EQ(fixed.normal, 1);
    EXPECT_EQ(Precision(row("fixed")), 3);
    EXPECT_TRUE(IsPercent(row("fixed")));
    const auto real = *SliderRange(row("float"));
    EXPECT_EQ(real.validMin, static_cast<double>(-0.3f));
    EXPECT_EQ(real.normal, static_cast<double>(0.1f));
    EXPECT_TRUE(IsPercent(row("float")));
    EXPECT_FALSE(SliderRange(Def(PF_Param_ANGLE)));
    EXPECT_FALSE(IsPercent(Def(PF_Param_ANGLE)));
}

TEST(ParamKind, UncheckedNumbersEndWhereTheTypeDoes) {
    const Declaration declared = Everything();
    const auto set = [&](const char* name, double value) {
        ParamRow row = declared.params.Row(*declared.params.Find(name));
        EXPECT_TRUE(SetNumberUnchecked(row, value));
        return row.def.u;
    };
    EXPECT_EQ(set("integer", 1e12).sd.value, std::numeric_limits<PF_Fixed>::max());
    EXPECT_EQ(set("fixed", -1e12).fd.value, std::numeric_limits<PF_Fixed>::min());
    EXPECT_EQ(set("float", 1e300).fs_d.value, 1e300);
    EXPECT_EQ(set("angle", 1.5).ad.value, 98304);
    EXPECT_EQ(set("integer", std::numeric_limits<double>::quiet_NaN()).sd.value, 0);
    ParamRow popup = declared.params.Row(*declared.params.Find("popup"));
    EXPECT_FALSE(SetNumberUnchecked(popup, 1));
}

}  // namespace

}  // namespace umbrant::host
