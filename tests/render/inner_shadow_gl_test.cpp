// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's accumulated alpha against the model, caught when the shadow is laid over the layer.

#include <gtest/gtest.h>

#include "tests/render/shadow_fixture.h"

namespace umbrant::effect {

namespace {

struct InnerCase {
    const char* name;
    PanelValues panel;
    int depth;
};

PanelValues SmallInner() {
    PanelValues p;
    p.distance = 12;
    p.softness = 16;
    p.samples = 7;
    return p;
}

PanelValues InnerWith(void (*change)(PanelValues&)) {
    PanelValues p = SmallInner();
    change(p);
    return p;
}

const InnerCase kInnerCases[] = {
    {"small default", SmallInner(), 8},
    {"small default in float", SmallInner(), 32},
    {"to the upper left", InnerWith([](PanelValues& p) { p.angle = 315; }), 8},
    {"to the right", InnerWith([](PanelValues& p) { p.angle = 90; }), 32},
    {"ease in and out", InnerWith([](PanelValues& p) { p.easeMode = 2; }), 8},
    {"draft", InnerWith([](PanelValues& p) { p.resolution = 1; }), 8},
    {"extreme", InnerWith([](PanelValues& p) { p.resolution = 5; }), 32},
    {"half resolution", InnerWith([](PanelValues& p) { p.scale = 0.5; }), 8},
    {"one sample", InnerWith([](PanelValues& p) { p.samples = 1; }), 8},
    {"no distance", InnerWith([](PanelValues& p) { p.distance = p.offsetShadow = 0; }), 32},
    {"far offset", InnerWith([](PanelValues& p) { p.offsetShadow = 20; }), 8},
};

class InnerShadowTest : public ShadowTest {
 protected:
    void RenderInner(const PanelValues& p, int depth) {
        SetPanel(SHADOW_INNER, p);
        host_.panel[PARAM_BLEND_MODE].u.pd.value = 11;
        host_.onTransfer = [this](const RenderHost::Transfer& t) {
            if (t.mode.xfer == PF_Xfer_MULTIPLY) shadow_ = AlphaOf(*t.source);
        };
        Render(p.scale, depth);
    }
    Plane shadow_;
};

class InnerShadowCases : public InnerShadowTest, public ::testing::WithParamInterface<InnerCase> {};

TEST_P(InnerShadowCases, MatchTheModel) {
    const InnerCase& c = GetParam();
    ASSERT_NO_FATAL_FAILURE(RenderInner(c.panel, c.depth));
    const Plane expected = InnerShadow(alpha_, c.panel, {record_->innerGrowLeft, record_->innerGrowTop}, 1,
                                       output_->world.width, output_->world.height);
    ExpectLike(shadow_, expected, c.panel.samples);
}

INSTANTIATE_TEST_SUITE_P(All, InnerShadowCases, ::testing::ValuesIn(kInnerCases),
                         [](const auto& row) { return TestName(row.param.name); });

TEST_F(InnerShadowTest, OpaqueLayerIsShadedAtItsBorderOnly) {
    PanelValues p = SmallInner();
    p.distance = p.offsetShadow = 0;
    p.softness = 8;
    SetPanel(SHADOW_INNER, p);
    host_.panel[PARAM_BLEND_MODE].u.pd.value = 11;
    host_.onTransfer = [this](const RenderHost::Transfer& t) {
        if (t.mode.xfer == PF_Xfer_MULTIPLY) shadow_ = AlphaOf(*t.source);
    };
    Render(1, 8, [](int, int) { return 1.0; });
    const int left = record_->innerGrowLeft;
    const int top = record_->innerGrowTop;
    EXPECT_GT(shadow_.At(left, top + 15), 0.05);
    EXPECT_EQ(shadow_.At(left + 20, top + 15), 0);
}

TEST_F(InnerShadowTest, ColourAlphaScalesTheInvertedAlpha) {
    SetPanel(SHADOW_INNER, SmallInner());
    host_.panel[PARAM_BLEND_MODE].u.pd.value = 11;
    host_.panel[PARAM_COLOR].u.cd.value = {0, 1, 2, 3};
    host_.onTransfer = [this](const RenderHost::Transfer& t) {
        if (t.mode.xfer == PF_Xfer_MULTIPLY) shadow_ = AlphaOf(*t.source);
    };
    Render(1, 8);
    for (double alpha : shadow_.values) ASSERT_EQ(alpha, 0);
}

}  // namespace

}  // namespace umbrant::effect
