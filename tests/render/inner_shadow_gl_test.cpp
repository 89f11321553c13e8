// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's accumulated alpha against the model, caught when the shadow is laid over the layer.

#include <gtest/gtest.h>

#include "tests/render/shadow_fixture.h"

namespace umbrant::effect {

namespace {

struct Case {
    const char* name;
    PanelValues panel;
    int depth;
};

PanelValues Small() {
    PanelValues p;
    p.distance = 12;
    p.softness = 16;
    p.samples = 7;
    return p;
}

PanelValues With(void (*change)(PanelValues&)) {
    PanelValues p = Small();
    change(p);
    return p;
}

const Case kCases[] = {
    {"small default", Small(), 8},
    {"small default in float", Small(), 32},
    {"to the upper left", With([](PanelValues& p) { p.angle = 315; }), 8},
    {"to the right", With([](PanelValues& p) { p.angle = 90; }), 32},
    {"ease in and out", With([](PanelValues& p) { p.easeMode = 2; }), 8},
    {"draft", With([](PanelValues& p) { p.resolution = 1; }), 8},
    {"extreme", With([](PanelValues& p) { p.resolution = 5; }), 32},
    {"half resolution", With([](PanelValues& p) { p.scale = 0.5; }), 8},
    {"one sample", With([](PanelValues& p) { p.samples = 1; }), 8},
    {"no distance", With([](PanelValues& p) { p.distance = p.offsetShadow = 0; }), 32},
    {"far offset", With([](PanelValues& p) { p.offsetShadow = 20; }), 8},
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

class InnerShadowCases : public InnerShadowTest, public ::testing::WithParamInterface<Case> {};

TEST_P(InnerShadowCases, MatchTheModel) {
    const Case& c = GetParam();
    ASSERT_NO_FATAL_FAILURE(RenderInner(c.panel, c.depth));
    const Plane expected = InnerShadow(alpha_, c.panel, {record_->innerGrowLeft, record_->innerGrowTop}, 1,
                                       output_->world.width, output_->world.height);
    ExpectLike(shadow_, expected, c.panel.samples);
}

INSTANTIATE_TEST_SUITE_P(All, InnerShadowCases, ::testing::ValuesIn(kCases),
                         [](const auto& row) { return TestName(row.param.name); });

TEST_F(InnerShadowTest, OpaqueLayerIsShadedAtItsBorderOnly) {
    PanelValues p = Small();
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
    SetPanel(SHADOW_INNER, Small());
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
