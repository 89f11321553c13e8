// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The normal shadow's pixels against the model.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "gl/thread_state.h"
#include "tests/render/shadow_fixture.h"

namespace umbrant::effect {

namespace {

struct NormalCase {
    const char* name;
    PanelValues panel;
    int depth;
};

PanelValues SmallNormal() {
    PanelValues p;
    p.distance = 25;
    p.softness = 20;
    p.samples = 9;
    return p;
}

PanelValues NormalWith(void (*change)(PanelValues&)) {
    PanelValues p = SmallNormal();
    change(p);
    return p;
}

const NormalCase kNormalCases[] = {
    {"small default", SmallNormal(), 8},
    {"small default in float", SmallNormal(), 32},
    {"no distance, no softness: the layer's own alpha", NormalWith([](PanelValues& p) {
         p.distance = p.softness = p.offsetShadow = 0;
         p.samples = 1;
         p.resolution = 5;
         p.opacityEnd = 100;
         p.easeOpacity = 0;
     }),
     32},
    {"to the upper left", NormalWith([](PanelValues& p) { p.angle = -45; }), 8},
    {"straight down", NormalWith([](PanelValues& p) { p.angle = 180; }), 8},
    {"ease in and out", NormalWith([](PanelValues& p) { p.easeMode = 2; }), 32},
    {"linear", NormalWith([](PanelValues& p) { p.ease = 0; }), 8},
    {"draft", NormalWith([](PanelValues& p) { p.resolution = 1; }), 8},
    {"extreme", NormalWith([](PanelValues& p) { p.resolution = 5; }), 32},
    {"half resolution", NormalWith([](PanelValues& p) { p.scale = 0.5; }), 8},
    {"two samples share a buffer", NormalWith([](PanelValues& p) { p.samples = 2; }), 8},
    {"dense and opaque", NormalWith([](PanelValues& p) {
         p.opacityStart = 90;
         p.opacityEnd = 100;
         p.samples = 20;
     }),
     32},
    {"far offset", NormalWith([](PanelValues& p) { p.offsetShadow = 30; }), 8},
};

class NormalShadowTest : public ShadowTest {
 protected:
    void RenderNormal(const PanelValues& p, int depth) {
        SetPanel(SHADOW_NORMAL, p);
        Render(p.scale, depth);
    }
};

class NormalShadowCases : public NormalShadowTest, public ::testing::WithParamInterface<NormalCase> {};

TEST_P(NormalShadowCases, MatchTheModel) {
    const NormalCase& c = GetParam();
    ASSERT_NO_FATAL_FAILURE(RenderNormal(c.panel, c.depth));
    const Plane expected = NormalShadow(alpha_, c.panel, {record_->centreOffsetX, record_->centreOffsetY},
                                        output_->world.width, output_->world.height);
    ExpectLike(AlphaOf(output_->world), expected, c.panel.samples);
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x) {
            if (c.depth == 8) {
                const PF_Pixel& p = output_->At8(x, y);
                ASSERT_TRUE(p.red == 200 && p.green == 100 && p.blue == 50) << x << ", " << y;
            } else {
                const PF_PixelFloat& p = output_->AtFloat(x, y);
                ASSERT_TRUE(p.red == 200 / 255.0f && p.green == 100 / 255.0f && p.blue == 50 / 255.0f) << x << y;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, NormalShadowCases, ::testing::ValuesIn(kNormalCases),
                         [](const auto& row) { return TestName(row.param.name); });

TEST_F(NormalShadowTest, PositiveYOffsetMovesTheShadowDown) {
    PanelValues p = SmallNormal();
    p.samples = 1;
    p.softness = 0;
    p.angle = 180;
    p.offsetShadow = 10;
    p.resolution = 5;
    ASSERT_NO_FATAL_FAILURE(RenderNormal(p, 8));
    // Row 3 of the layer is its first opaque row; with the shadow 10 pixels down it is row 13 of the layer.
    const int top = 13 - output_->world.origin_y;
    const int column = 20 - output_->world.origin_x;
    EXPECT_EQ(output_->At8(column, top - 2).alpha, 0);
    EXPECT_EQ(output_->At8(column, top + 2).alpha, 51) << "one sample has the start opacity";
}

TEST_F(NormalShadowTest, FloatRendersKeepSixteenBits) {
    // Intended: the ping-pong buffers are 16-bit normalised also in float renders, so alpha never exceeds 1 and is a
    // multiple of 1/65535.
    ASSERT_NO_FATAL_FAILURE(RenderNormal(SmallNormal(), 32));
    for (int y = 0; y < output_->world.height; ++y) {
        for (int x = 0; x < output_->world.width; ++x) {
            const double scaled = static_cast<double>(output_->AtFloat(x, y).alpha) * 65535.0;
            ASSERT_NEAR(scaled, std::round(scaled), 0.01);
        }
    }
}

TEST_F(NormalShadowTest, SecondRenderReusesTheThreadsContext) {
    ASSERT_NO_FATAL_FAILURE(RenderNormal(SmallNormal(), 8));
    const CGLContextObj first = local_render_data->context;
    ASSERT_NE(first, nullptr);
    ASSERT_NO_FATAL_FAILURE(RenderNormal(SmallNormal(), 8));
    EXPECT_EQ(local_render_data->context, first);
}

TEST_F(NormalShadowTest, NoSamplesLeaveTheOutputTransparentBlack) {
    PanelValues p = SmallNormal();
    p.samples = 0;
    ASSERT_NO_FATAL_FAILURE(RenderNormal(p, 8));
    for (int y = 0; y < output_->world.height; ++y) {
        for (int x = 0; x < output_->world.width; ++x) {
            const PF_Pixel& pixel = output_->At8(x, y);
            ASSERT_TRUE(pixel.alpha == 0 && pixel.red == 0 && pixel.green == 0 && pixel.blue == 0);
        }
    }
}

TEST_F(NormalShadowTest, RecordsTheRendererOnce) {
    ASSERT_NO_FATAL_FAILURE(RenderNormal(SmallNormal(), 8));
    EXPECT_EQ(host_.global->rendererRecorded, 1);
    EXPECT_STRNE(host_.global->gl_renderer, "");
    host_.global->gl_renderer[0] = '?';
    ASSERT_NO_FATAL_FAILURE(RenderNormal(SmallNormal(), 8));
    EXPECT_EQ(host_.global->gl_renderer[0], '?');
}

}  // namespace

}  // namespace umbrant::effect
