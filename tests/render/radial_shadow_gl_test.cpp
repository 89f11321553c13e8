// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The radial shadow's pixels against the model, and its geometry by the centroid of a dot.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/render/shadow_fixture.h"

namespace umbrant::effect {

namespace {

struct RadialCase {
    const char* name;
    PanelValues panel;
    double originX, originY;
    int depth;
};

PanelValues SmallRadial() {
    PanelValues p;
    p.distance = 100;
    p.softness = 12;
    p.samples = 6;
    return p;
}

PanelValues RadialWith(void (*change)(PanelValues&)) {
    PanelValues p = SmallRadial();
    change(p);
    return p;
}

const RadialCase kRadialCases[] = {
    {"from the corner", SmallRadial(), 0, 0, 8},
    {"from the corner in float", SmallRadial(), 0, 0, 32},
    {"from the middle", SmallRadial(), 20, 15, 8},
    {"from the left", SmallRadial(), -30, 15, 8},
    {"ease in and out", RadialWith([](PanelValues& p) { p.easeMode = 2; }), 20, 15, 32},
    {"no distance", RadialWith([](PanelValues& p) { p.distance = 0; }), 20, 15, 8},
    {"one sample", RadialWith([](PanelValues& p) { p.samples = 1; }), 5, 5, 8},
    {"draft", RadialWith([](PanelValues& p) { p.resolution = 1; }), 10, 25, 8},
    {"far growth", RadialWith([](PanelValues& p) { p.distance = 400; }), 20, 15, 32},
    {"half resolution", RadialWith([](PanelValues& p) { p.scale = 0.5; }), 10, 5, 8},
};

class RadialShadowTest : public ShadowTest {
 protected:
    RadialPlacement Placement(double originX, double originY) const {
        return {originX,
                originY,
                record_->centreOffsetX,
                record_->centreOffsetY,
                static_cast<double>(output_->world.origin_x) - input_->world.origin_x,
                static_cast<double>(output_->world.origin_y) - input_->world.origin_y};
    }
};

class RadialShadowCases : public RadialShadowTest, public ::testing::WithParamInterface<RadialCase> {};

TEST_P(RadialShadowCases, MatchTheModel) {
    const RadialCase& c = GetParam();
    SetPanel(SHADOW_RADIAL, c.panel);
    SetOrigin(c.originX, c.originY);
    ASSERT_NO_FATAL_FAILURE(Render(c.panel.scale, c.depth));
    const Plane expected =
        RadialShadow(alpha_, c.panel, Placement(c.originX, c.originY), output_->world.width, output_->world.height);
    ExpectLike(AlphaOf(output_->world), expected, c.panel.samples);
}

INSTANTIATE_TEST_SUITE_P(All, RadialShadowCases, ::testing::ValuesIn(kRadialCases),
                         [](const auto& row) { return TestName(row.param.name); });

struct DotRow {
    const char* name;
    double originX, originY, distance, scale;
    bool partial;
};

const DotRow kDots[] = {
    {"origin at the corner", 0, 0, 100, 1, false},        {"origin on the layer", 12, 9, 200, 1, false},
    {"origin left of the layer", -25, 10, 100, 1, false}, {"origin far away", 300, -200, 60, 1, false},
    {"half resolution", 10, 8, 150, 0.5, false},          {"partial request", 12, 9, 200, 1, true},
    {"partial request from afar", -60, 40, 80, 1, true},
};

class RadialDots : public RadialShadowTest, public ::testing::WithParamInterface<DotRow> {};

// A dot of 2 x 2 pixels whose centre is (14, 12): its only copy must be centred where the scale takes that point.
TEST_P(RadialDots, LandWhereTheScaleTakesThem) {
    const DotRow& row = GetParam();
    PanelValues p = SmallRadial();
    p.samples = 1;
    p.softness = 0;
    p.resolution = 5;
    p.distance = row.distance;
    p.opacityStart = p.opacityEnd = 100;
    SetPanel(SHADOW_RADIAL, p);
    SetOrigin(row.originX, row.originY);
    const PF_LRect part = {8, 6, 30, 26};
    ASSERT_NO_FATAL_FAILURE(Render(
        row.scale, 32, [](int x, int y) { return (x == 13 || x == 14) && (y == 11 || y == 12) ? 1.0 : 0.0; },
        row.partial ? &part : nullptr));

    double sum = 0;
    double x = 0;
    double y = 0;
    for (int j = 0; j < output_->world.height; ++j) {
        for (int i = 0; i < output_->world.width; ++i) {
            const double a = AlphaAt(output_->world, i, j);
            sum += a;
            x += a * (i + 0.5);
            y += a * (j + 0.5);
        }
    }
    ASSERT_GT(sum, 1);
    const double scale = 1 + row.distance / 400;
    const double fixedX = row.originX - record_->centreOffsetX;
    const double fixedY = row.originY - record_->centreOffsetY;
    const double dotX = 14 - output_->world.origin_x;
    const double dotY = 12 - output_->world.origin_y;
    EXPECT_NEAR(x / sum, fixedX + (dotX - fixedX) * scale, 0.5);
    EXPECT_NEAR(y / sum, fixedY + (dotY - fixedY) * scale, 0.5);
}

INSTANTIATE_TEST_SUITE_P(All, RadialDots, ::testing::ValuesIn(kDots),
                         [](const auto& row) { return TestName(row.param.name); });

}  // namespace

}  // namespace umbrant::effect
