// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/render/shadow_scene.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>

#include "render/passes/passes.h"
#include "render/pre_render/pre_render.h"
#include "render/smart_render.h"

namespace umbrant::effect {

namespace {

// One GPU rounding per sample is allowed in 16 bits; 8-bit output may then fall to the other side of a step.
constexpr double kToleranceFloat = 1.5 / 65535;
constexpr double kTolerance8 = 1.5 / 255;

}  // namespace

double ShadowScene::LayerAlpha(int x, int y) {
    if (x < 4 || y < 3) return 0;
    if (x + 2 * y > 70) return 0;
    return x < 10 ? (x - 3) / 7.0 : 1.0;
}

void ShadowScene::SetPanel(int shadowType, const PanelValues& p) {
    CheckedOutParams& panel = host_.panel;
    const auto slide = [&](ParamIndex index, double value) { panel[index].u.fs_d.value = value; };
    panel[PARAM_SHADOW_TYPE].u.pd.value = shadowType;
    panel[PARAM_ANGLE].u.ad.value = static_cast<A_long>(p.angle * 65536);
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
    panel[PARAM_COLOR].u.cd.value = {255, 200, 100, 50};
}

void ShadowScene::SetOrigin(double x, double y) {
    host_.panel[PARAM_ORIGIN].u.td.x_value = static_cast<PF_Fixed>(x * 65536);
    host_.panel[PARAM_ORIGIN].u.td.y_value = static_cast<PF_Fixed>(y * 65536);
}

void ShadowScene::Render(double scale, int depth, double (*alphaOf)(int, int), const PF_LRect* request) {
    depth_ = depth;
    host_.inData.downsample_x = {1, scale == 0.5 ? 2u : 1u};
    host_.renderInput.bitdepth = static_cast<short>(depth);
    host_.pixelFormat = depth == 8 ? PF_PixelFormat_ARGB32 : PF_PixelFormat_ARGB128;
    const int layerWidth = static_cast<int>(host_.inData.width * scale);
    const int layerHeight = static_cast<int>(host_.inData.height * scale);
    const PF_LRect whole = {0, 0, layerWidth, layerHeight};
    const PF_LRect granted = request ? *request : whole;
    const int width = granted.right - granted.left;
    const int height = granted.bottom - granted.top;
    const size_t pixel = depth == 8 ? sizeof(PF_Pixel) : sizeof(PF_PixelFloat);
    input_ = std::make_unique<TestWorld>(width, height, pixel);
    input_->world.origin_x = granted.left;
    input_->world.origin_y = granted.top;
    alpha_ = Plane(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double a = alphaOf(x + granted.left, y + granted.top);
            const double byte = std::round(a * 255);
            alpha_.At(x, y) = depth == 8 ? byte / 255 : static_cast<double>(static_cast<float>(a));
            if (depth == 8) {
                input_->At8(x, y) = {static_cast<A_u_char>(byte), 7, 8, 9};
            } else {
                input_->AtFloat(x, y) = {static_cast<float>(a), 0.1f, 0.2f, 0.3f};
            }
        }
    }
    host_.layerGranted.result_rect = granted;
    host_.layerGranted.max_result_rect = whole;
    host_.preInput.output_request.rect = granted;
    host_.preOutput = {};
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
    const std::string message = host_.outData.return_msg;
    if (!mayBeTooSmall_ || message != kInnerTooSmall) {
        EXPECT_EQ(message, "");
    }
    EXPECT_TRUE(output_->PaddingIntact());
    EXPECT_TRUE(input_->PaddingIntact());
}

double ShadowScene::AlphaAt(const PF_EffectWorld& world, int x, int y) const {
    const char* row = reinterpret_cast<const char*>(world.data) + static_cast<ptrdiff_t>(y) * world.rowbytes;
    if (depth_ == 8) return reinterpret_cast<const PF_Pixel*>(row)[x].alpha / 255.0;
    return static_cast<double>(reinterpret_cast<const PF_PixelFloat*>(row)[x].alpha);
}

Plane ShadowScene::AlphaOf(const PF_EffectWorld& world) const {
    Plane plane(world.width, world.height);
    for (int y = 0; y < world.height; ++y) {
        for (int x = 0; x < world.width; ++x) plane.At(x, y) = AlphaAt(world, x, y);
    }
    return plane;
}

void ShadowScene::ExpectLike(const Plane& drawn, const Plane& expected, double samples) const {
    EXPECT_GT(ExpectAlike(drawn, expected, samples), 1) << "an empty picture proves nothing";
}

double ShadowScene::ExpectAlike(const Plane& drawn, const Plane& expected, double samples) const {
    EXPECT_EQ(drawn.width, expected.width);
    EXPECT_EQ(drawn.height, expected.height);
    if (drawn.values.size() != expected.values.size()) return 0;
    double energy = 0;
    double sum = 0;
    double worst = 0;
    int worstX = 0;
    int worstY = 0;
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x) {
            const double difference = std::abs(drawn.At(x, y) - expected.At(x, y));
            energy += expected.At(x, y);
            sum += difference;
            if (difference <= worst) continue;
            worst = difference;
            worstX = x;
            worstY = y;
        }
    }
    // Each copy is placed between texels across and down; the taps of the blurs average their errors out.
    const double filter = 2 * filterError_ * samples;
    const double tolerance = filter + (depth_ == 8 ? kTolerance8 : kToleranceFloat * samples + 0.5 / 65535);
    EXPECT_LE(worst, tolerance) << "at " << worstX << ", " << worstY << ": drawn " << drawn.At(worstX, worstY)
                                << ", model " << expected.At(worstX, worstY) << ", mean "
                                << sum / static_cast<double>(expected.values.size());
    return energy;
}

std::string TestName(std::string sentence) {
    for (char& c : sentence) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return sentence;
}

}  // namespace umbrant::effect
