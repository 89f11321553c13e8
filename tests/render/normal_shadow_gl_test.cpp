// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The normal shadow's pixels, drawn by the GPU passes and judged by the slow model: pre-render decides the output's
// size and placement, the render fills it, the model says what must be there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "gl/context.h"
#include "gl/thread_state.h"
#include "render/pre_render.h"
#include "render/smart_render.h"
#include "tests/reference/shadow_model.h"
#include "tests/render/render_host.h"
#include "tests/support/gl_context.h"
#include "tests/support/test_world.h"

namespace {

// One GPU rounding per sample is allowed in 16 bits; 8-bit output may then fall to the other side of a step.
constexpr double kToleranceFloat = 1.5 / 65535;  // per sample drawn
constexpr int kTolerance8 = 1;

struct Case {
    const char* name;
    PanelValues panel;
    int depth;
};

class NormalShadowTest : public GLContextTest {
 protected:
    void SetUp() override {
        GLContextTest::SetUp();
        if (IsSkipped()) return;
        host_.global->context = context_;
    }
    void TearDown() override {
        local_render_data.reset();
        if (context_) SetCurrentContext(context_);
        GLContextTest::TearDown();
    }

    // A soft-edged diagonal shape, off centre, so that a mirrored or flipped axis shows.
    static double LayerAlpha(int x, int y) {
        if (x < 4 || y < 3) return 0;
        if (x + 2 * y > 70) return 0;
        return x < 10 ? (x - 3) / 7.0 : 1.0;
    }

    void Panel(const PanelValues& p, int depth) {
        CheckedOutParams& panel = host_.panel;
        panel[PARAM_ANGLE].u.ad.value = static_cast<A_long>(p.angle * 65536);
        const auto slide = [&](ParamIndex index, double value) { panel[index].u.fs_d.value = value; };
        slide(PARAM_DISTANCE, p.distance);
        slide(PARAM_SOFTNESS, p.softness);
        slide(PARAM_OPACITY_START, p.opacityStart);
        slide(PARAM_OPACITY_END, p.opacityEnd);
        slide(PARAM_OPACITY_MASTER, p.opacityMaster);
        panel[PARAM_EASE_MODE].u.pd.value = p.easeMode;
        slide(PARAM_EASE, p.ease);
        slide(PARAM_EASE_DISTANCE, p.easeDistance);
        slide(PARAM_EASE_SOFTNESS, p.easeSoftness);
        slide(PARAM_EASE_OPACITY, p.easeOpacity);
        slide(PARAM_SAMPLES, p.samples);
        panel[PARAM_RESOLUTION].u.pd.value = p.resolution;
        slide(PARAM_OFFSET_SHADOW, p.offsetShadow);
        slide(PARAM_SOURCE_OPACITY, 0);
        panel[PARAM_COLOR].u.cd.value = {0, 200, 100, 50};
        host_.inData.downsample_x = {1, p.scale == 0.5 ? 2u : 1u};
        host_.renderInput.bitdepth = static_cast<short>(depth);
    }

    void Render(const PanelValues& p, int depth) {
        Panel(p, depth);
        const int width = static_cast<int>(host_.inData.width * p.scale);
        const int height = static_cast<int>(host_.inData.height * p.scale);
        const size_t pixel = depth == 8 ? sizeof(PF_Pixel) : sizeof(PF_PixelFloat);
        input_ = std::make_unique<TestWorld>(width, height, pixel);
        alpha_ = Plane(width, height);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double a = LayerAlpha(x, y);
                alpha_.At(x, y) = depth == 8 ? std::round(a * 255) / 255 : static_cast<float>(a);
                if (depth == 8) {
                    input_->At8(x, y) = {static_cast<A_u_char>(std::round(a * 255)), 7, 8, 9};
                } else {
                    input_->AtFloat(x, y) = {static_cast<float>(a), 0.1f, 0.2f, 0.3f};
                }
            }
        }
        host_.layerGranted.result_rect = {0, 0, width, height};
        host_.layerGranted.max_result_rect = {0, 0, width, height};
        host_.preInput.output_request.rect = {0, 0, width, height};
        ASSERT_EQ(PreRender(&host_.inData, &host_.outData, &host_.preExtra), PF_Err_NONE);
        const PF_LRect rect = host_.preOutput.result_rect;
        record_.reset(static_cast<PreRenderData*>(host_.preOutput.pre_render_data));
        host_.renderInput.pre_render_data = record_.get();

        output_ = std::make_unique<TestWorld>(rect.right - rect.left, rect.bottom - rect.top, pixel);
        output_->world.origin_x = rect.left;
        output_->world.origin_y = rect.top;
        output_->world.extent_hint = {0, 0, output_->world.width, output_->world.height};
        host_.input = &input_->world;
        host_.output = &output_->world;
        ASSERT_EQ(SmartRender(&host_.inData, &host_.outData, &host_.renderExtra), PF_Err_NONE);
        EXPECT_STREQ(host_.outData.return_msg, "");
        EXPECT_TRUE(output_->PaddingIntact());
        EXPECT_TRUE(input_->PaddingIntact());

        expected_ = NormalShadow(alpha_, p, {record_->centreOffsetX, record_->centreOffsetY}, output_->world.width,
                                 output_->world.height);
    }

    double AlphaAt(int x, int y, int depth) {
        return depth == 8 ? output_->At8(x, y).alpha / 255.0 : output_->AtFloat(x, y).alpha;
    }

    RenderHost host_;
    std::unique_ptr<TestWorld> input_;
    std::unique_ptr<TestWorld> output_;
    std::unique_ptr<PreRenderData> record_;
    Plane alpha_;
    Plane expected_;
};

PanelValues Small() {
    PanelValues p;
    p.distance = 25;
    p.softness = 20;
    p.samples = 9;
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
    {"no distance, no softness: the layer's own alpha", With([](PanelValues& p) {
         p.distance = p.softness = p.offsetShadow = 0;
         p.samples = 1;
         p.resolution = 5;
         p.opacityEnd = 100;
         p.easeOpacity = 0;
     }),
     32},
    {"to the upper left", With([](PanelValues& p) { p.angle = -45; }), 8},
    {"straight down", With([](PanelValues& p) { p.angle = 180; }), 8},
    {"ease in and out", With([](PanelValues& p) { p.easeMode = 2; }), 32},
    {"linear", With([](PanelValues& p) { p.ease = 0; }), 8},
    {"draft", With([](PanelValues& p) { p.resolution = 1; }), 8},
    {"extreme", With([](PanelValues& p) { p.resolution = 5; }), 32},
    {"half resolution", With([](PanelValues& p) { p.scale = 0.5; }), 8},
    {"two samples share a buffer", With([](PanelValues& p) { p.samples = 2; }), 8},
    {"dense and opaque", With([](PanelValues& p) {
         p.opacityStart = 90;
         p.opacityEnd = 100;
         p.samples = 20;
     }),
     32},
    {"far offset", With([](PanelValues& p) { p.offsetShadow = 30; }), 8},
};

class NormalShadowCases : public NormalShadowTest, public ::testing::WithParamInterface<Case> {};

TEST_P(NormalShadowCases, MatchTheModel) {
    const Case& c = GetParam();
    ASSERT_NO_FATAL_FAILURE(Render(c.panel, c.depth));
    double sum = 0;
    double worst = 0;
    int worstX = 0;
    int worstY = 0;
    double energy = 0;
    for (int y = 0; y < expected_.height; ++y) {
        for (int x = 0; x < expected_.width; ++x) {
            const double difference = std::abs(AlphaAt(x, y, c.depth) - expected_.At(x, y));
            energy += expected_.At(x, y);
            sum += difference;
            if (difference <= worst) continue;
            worst = difference;
            worstX = x;
            worstY = y;
        }
    }
    ASSERT_GT(energy, 1) << "an empty picture proves nothing";
    const double tolerance = c.depth == 8 ? (kTolerance8 + 0.5) / 255 : kToleranceFloat * c.panel.samples + 0.5 / 65535;
    EXPECT_LE(worst, tolerance) << "at " << worstX << ", " << worstY << ": drawn " << AlphaAt(worstX, worstY, c.depth)
                                << ", model " << expected_.At(worstX, worstY);
    RecordProperty("mean", std::to_string(sum / static_cast<double>(expected_.values.size())));
    RecordProperty("worst", std::to_string(worst));
}

TEST_P(NormalShadowCases, EveryPixelHasTheColour) {
    const Case& c = GetParam();
    ASSERT_NO_FATAL_FAILURE(Render(c.panel, c.depth));
    for (int y = 0; y < expected_.height; ++y) {
        for (int x = 0; x < expected_.width; ++x) {
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

INSTANTIATE_TEST_SUITE_P(All, NormalShadowCases, ::testing::ValuesIn(kCases), [](const auto& row) {
    std::string name = row.param.name;
    for (char& ch : name) {
        if (!std::isalnum(static_cast<unsigned char>(ch))) ch = '_';
    }
    return name;
});

TEST_F(NormalShadowTest, PositiveYOffsetMovesTheShadowDown) {
    PanelValues p = Small();
    p.samples = 1;
    p.softness = 0;
    p.angle = 180;
    p.offsetShadow = 10;
    p.resolution = 5;
    ASSERT_NO_FATAL_FAILURE(Render(p, 8));
    // Row 3 of the layer is its first opaque row; with the shadow 10 pixels down it is row 13 of the layer.
    const int top = 13 - output_->world.origin_y;
    const int column = 20 - output_->world.origin_x;
    EXPECT_EQ(output_->At8(column, top - 2).alpha, 0);
    EXPECT_EQ(output_->At8(column, top + 2).alpha, 51) << "one sample has the start opacity";
}

TEST_F(NormalShadowTest, FloatRendersKeepSixteenBits) {
    // Intended: the ping-pong buffers are 16-bit normalised also in float renders, so alpha never exceeds 1 and is a
    // multiple of 1/65535.
    PanelValues p = Small();
    ASSERT_NO_FATAL_FAILURE(Render(p, 32));
    for (int y = 0; y < expected_.height; ++y) {
        for (int x = 0; x < expected_.width; ++x) {
            const double scaled = output_->AtFloat(x, y).alpha * 65535.0;
            ASSERT_NEAR(scaled, std::round(scaled), 0.01);
        }
    }
}

TEST_F(NormalShadowTest, SecondRenderReusesTheThreadsContext) {
    ASSERT_NO_FATAL_FAILURE(Render(Small(), 8));
    const CGLContextObj first = local_render_data->context;
    ASSERT_NE(first, nullptr);
    ASSERT_NO_FATAL_FAILURE(Render(Small(), 8));
    EXPECT_EQ(local_render_data->context, first);
}

TEST_F(NormalShadowTest, NoSamplesLeaveTheOutputTransparentBlack) {
    PanelValues p = Small();
    p.samples = 0;
    ASSERT_NO_FATAL_FAILURE(Render(p, 8));
    for (int y = 0; y < expected_.height; ++y) {
        for (int x = 0; x < expected_.width; ++x) {
            const PF_Pixel& pixel = output_->At8(x, y);
            ASSERT_TRUE(pixel.alpha == 0 && pixel.red == 0 && pixel.green == 0 && pixel.blue == 0);
        }
    }
}

TEST_F(NormalShadowTest, RecordsTheRendererOnce) {
    ASSERT_NO_FATAL_FAILURE(Render(Small(), 8));
    EXPECT_EQ(host_.global->rendererRecorded, 1);
    EXPECT_STRNE(host_.global->gl_renderer, "");
    host_.global->gl_renderer[0] = '?';
    ASSERT_NO_FATAL_FAILURE(Render(Small(), 8));
    EXPECT_EQ(host_.global->gl_renderer[0], '?');
}

}  // namespace
