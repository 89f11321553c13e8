// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A host's numbers as the effect's values, and back.

#include "openfx/parameters/value_mapping.h"

#include <gtest/gtest.h>

#include <cmath>

#include <umbrant/effect.h>

namespace umbrant::openfx {
namespace {

constexpr LayerPlace kLayer{-7, 59, 1};

EffectValue Mapped(const char* name, HostNumbers numbers) {
    return EffectValueOf(RowNamed(name), numbers, kLayer);
}

TEST(ValueMapping, NumbersStayInTheirRange) {
    EXPECT_EQ(std::get<double>(Mapped("style_distance", {80.5})), 80.5);
    EXPECT_EQ(std::get<double>(Mapped("style_distance", {-1})), 0);
    EXPECT_EQ(std::get<double>(Mapped("style_distance", {1e9})), 2000);
    EXPECT_EQ(std::get<double>(Mapped("style_distance", {std::nan("")})), 250);
    EXPECT_EQ(std::get<double>(Mapped("quality_samples", {2.6})), 3);
}

TEST(ValueMapping, AnglesHaveAnyNumberOfTurns) {
    EXPECT_EQ(std::get<double>(Mapped("style_angle", {-405})), -405);
    EXPECT_EQ(std::get<double>(Mapped("style_angle", {32400})), 0);
    EXPECT_EQ(std::get<double>(Mapped("style_angle", {-35990})), -350);
}

TEST(ValueMapping, ChoicesAreTexts) {
    EXPECT_EQ(std::get<std::string>(Mapped("style_blend_mode", {1})), "Add");
    EXPECT_EQ(std::get<std::string>(Mapped("style_blend_mode", {11})), "Darker Color");
    EXPECT_EQ(std::get<std::string>(Mapped("style_blend_mode", {12})), "Darker Color");
    EXPECT_EQ(std::get<std::string>(Mapped("style_blend_mode", {-1})), "Normal");
}

TEST(ValueMapping, ColoursAreBytesWhereTheyCanBe) {
    EXPECT_EQ(std::get<std::string>(Mapped("style_color", {32 / 255.0, 0, 1})), "#2000ff");
    EXPECT_EQ(std::get<std::string>(Mapped("style_color", {static_cast<float>(48 / 255.0), 0, 0})), "#300000");
    const auto bright = std::get<Color>(Mapped("style_color", {2.5, 0.4001, -1}));
    EXPECT_EQ(bright.red, 2.5f);
    EXPECT_EQ(bright.green, 0.4001f);
    EXPECT_EQ(bright.blue, -1);
    EXPECT_EQ(std::get<Color>(Mapped("style_color", {1e30, 0, 0})).red, 65504);
}

TEST(ValueMapping, PointsAreInTheLayerAndDownwards) {
    EXPECT_EQ(std::get<std::string>(Mapped("style_origin", {3, 40.5})), "10,18.5");
    EXPECT_EQ(std::get<std::string>(Mapped("style_origin", {1e9, -1e9})), "32000,32000");
    EXPECT_TRUE(IsDefault(RowNamed("style_origin"), {-7, 59}, kLayer));
    EXPECT_FALSE(IsDefault(RowNamed("style_origin"), {0, 59}, kLayer));
}

TEST(ValueMapping, TheLibraryTakesEveryValue) {
    const Effect effect({UMBRANT_MODULE_FILE, Renderer::kProcessor, false, {}});
    for (const ParameterRow& row : ParameterTable()) {
        if (!IsEffectValue(row)) continue;
        for (const double number : {-1e300, -1.5, 0.0, 0.3, 1.0, 7.0, 40000.0, 1e300, std::nan("")}) {
            Values values = effect.CurrentValues();
            const auto set = [&](const auto& value) { values.Set(row.path, value); };
            EXPECT_NO_THROW(std::visit(set, EffectValueOf(row, {number, number, number}, kLayer)))
                << row.name << " " << number;
        }
    }
}

TEST(ValueMapping, TextsComeBack) {
    const Effect effect({UMBRANT_MODULE_FILE, Renderer::kProcessor, false, {}});
    for (const ParameterRow& row : ParameterTable()) {
        if (!IsEffectValue(row)) continue;
        const double last = row.kind == ParameterKind::kChoice ? static_cast<double>(row.items.size() - 1) : 1;
        const HostNumbers numbers = row.kind == ParameterKind::kColor   ? HostNumbers{0.2, 0.4, 1}
                                    : row.kind == ParameterKind::kPoint ? HostNumbers{3, 40.5}
                                                                        : HostNumbers{last};
        Values values = effect.CurrentValues();
        std::visit([&](const auto& value) { values.Set(row.path, value); }, EffectValueOf(row, numbers, kLayer));
        const auto back = HostNumbersOf(row, values.Get(row.path), kLayer, 64, 48);
        ASSERT_TRUE(back) << row.name << " " << values.Get(row.path);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR((*back)[i], numbers[i], 1e-4) << row.name;
    }
    EXPECT_EQ(*HostNumbersOf(RowNamed("style_origin"), "50%,25%", kLayer, 64, 48), (HostNumbers{25, 47}));
    EXPECT_FALSE(HostNumbersOf(RowNamed("style_origin"), "50", kLayer, 64, 48));
    EXPECT_FALSE(HostNumbersOf(RowNamed("style_color"), "red", kLayer, 64, 48));
    EXPECT_FALSE(HostNumbersOf(RowNamed("style_blend_mode"), "none", kLayer, 64, 48));
}

}  // namespace
}  // namespace umbrant::openfx
