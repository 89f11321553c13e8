// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The plans of the three shadow types: the roundings of their numbers, and that what the GPU is sent and what the CPU
// renderer folds are the same passes.

#include "render/plan_passes.h"

#include <gtest/gtest.h>

#include "render/shadow_backend.h"

namespace umbrant::effect {

namespace {

class Plans : public ::testing::Test {
 protected:
    Plans() {
        input_.width = 40;
        input_.height = 30;
        padded_.width = 70;
        padded_.height = 50;
        output_.width = 64;
        output_.height = 48;
        settings_.inputWorld = &input_;
        settings_.innerSourceWorld = &padded_;
        settings_.outputWorld = &output_;
        settings_.resolutionScale = 0.6;
        settings_.offsetShadowX = 2.25;
        settings_.preRender.centreOffsetY = -1.5;
        settings_.framebuffers = {{0, 0, 60, 50, 36, 30}, {0, 0, 80, 70, 48, 42}};
        perSampleData sample{};
        sample.fbIndex = 1;
        sample.softness = 11.3;
        sample.opacity = 0.3;
        sample.offsetX = 3.7;
        sample.offsetY = 5.1;
        sample.radialTx = -6.3;
        sample.radialTy = 4.1;
        sample.radialScale = 1.37;
        settings_.samples = {sample};
    }

    // The matrix and the pixels say the same: corners -1 and 2 quad - 1 of the quad, in half outputs from the middle.
    static void ExpectPlaced(const Placement& place, double quad, int size) {
        const auto scale = static_cast<double>(place.scale);
        const double left = -scale + static_cast<double>(place.translation);
        EXPECT_NEAR(place.start, (left + 1) / 2 * size, 1e-9);
        EXPECT_NEAR(place.length, scale * quad * size, 1e-9);
    }

    PF_LayerDef input_{}, padded_{}, output_{};
    myParams settings_;
};

TEST_F(Plans, ANormalSampleReadsTheLayer) {
    const StackPlan stack = PlanNormalStack(settings_, {{0, 40}, {0, 30}}, Precision::kExact);
    ASSERT_EQ(stack.samples.size(), 1u);
    const SamplePlan& plan = stack.samples[0];
    EXPECT_EQ(plan.buffer, 1u);
    EXPECT_EQ(plan.across.opacity, 0.3f);
    EXPECT_EQ(plan.across.blur.amount, 11.3f);
    EXPECT_EQ(plan.across.blur.steps, 7);
    EXPECT_EQ(plan.across.blur.stride, static_cast<float>(11.3 / 7 * (1.0 / 40)));
    EXPECT_EQ(plan.across.blur.inputStride, static_cast<double>(plan.across.blur.stride) * 40);
    EXPECT_EQ(plan.across.x.outputs, 48);
    EXPECT_EQ(plan.across.x.scale, 2.0f);
    EXPECT_EQ(plan.across.y.scale, static_cast<float>(70 / 30.0));
    EXPECT_EQ(plan.across.x.look.edge, Edge::kClamp);
    EXPECT_EQ(plan.down.steps, 7);
    EXPECT_EQ(plan.down.stride, static_cast<float>(static_cast<double>(11.3f / 7.0f) * (1.0 / 70)));
    EXPECT_EQ(plan.down.inputStride, static_cast<double>(plan.down.stride) * 42);
    EXPECT_EQ(plan.place.x.scale, 80 / 64.0f);
    EXPECT_EQ(plan.place.x.translation, static_cast<float>((2.0 / 64) * (3.7 + 2.25)));
    EXPECT_EQ(plan.place.y.translation, static_cast<float>((2.0 / 48) * (5.1 - 1.5)));
    EXPECT_EQ(plan.place.x.texels, 48);
    ExpectPlaced(plan.place.x, 1, 64);
    ExpectPlaced(plan.place.y, 1, 48);
    EXPECT_FALSE(plan.regions.Empty());
}

TEST_F(Plans, AnInnerSampleReadsTheInvertedAlphaOfTheFirstBuffersSize) {
    const InversionPlan inversion = PlanInversion(settings_);
    EXPECT_EQ(inversion.x.outputs, 36);
    EXPECT_EQ(inversion.x.look.size, 70);
    EXPECT_EQ(inversion.y.scale, 1.0f);
    const StackPlan stack = PlanInnerStack(settings_, {{0, 36}, {0, 30}}, Precision::kExact);
    const SamplePlan& plan = stack.samples.at(0);
    EXPECT_EQ(plan.across.x.look.size, 36);
    EXPECT_EQ(plan.across.x.look.edge, Edge::kMirror);
    EXPECT_EQ(plan.across.x.scale, static_cast<float>(48 / 36.0));
    EXPECT_EQ(plan.across.blur.stride, static_cast<float>(11.3 / 7 * (1.0 / 70)));
    EXPECT_EQ(plan.across.blur.inputStride, static_cast<double>(plan.across.blur.stride) * 36);
    ExpectPlaced(plan.place.x, 1, 64);
}

TEST_F(Plans, ARadialSampleReadsThePaddedLayerTexelByTexel) {
    RadialGeometry geometry;
    geometry.pad = 9;
    geometry.paddedW = 58;
    geometry.paddedH = 48;
    const PaddingPlan padding = PlanPadding(settings_, geometry);
    EXPECT_EQ(padding.layerScaleX, static_cast<float>(40 / 58.0));
    EXPECT_EQ(padding.quadScaleX, 58 / 64.0f);
    const Region padded = PaddedRegion(padding, {{0, 40}, {4, 5}});
    EXPECT_EQ(padded.x.begin, 8);
    EXPECT_EQ(padded.x.end, 50);
    EXPECT_EQ(padded.y.begin, 12);
    EXPECT_EQ(padded.y.end, 15);
    const StackPlan stack = PlanRadialStack(settings_, padding, padded, Precision::kExact);
    const SamplePlan& plan = stack.samples.at(0);
    EXPECT_EQ(plan.across.x.look.first, 0);
    EXPECT_EQ(plan.across.x.look.pitch, 1);
    EXPECT_EQ(plan.across.blur.stride, static_cast<float>(11.3 / 7 / 58));
    EXPECT_EQ(plan.down.stride, static_cast<float>(11.3 / 7 / 48));
    EXPECT_EQ(plan.place.x.scale, 1.37f);
    EXPECT_EQ(plan.place.x.translation, static_cast<float>(1.37 - 1 + 2 * -6.3 / 64));
    ExpectPlaced(plan.place.x, static_cast<double>(padding.quadScaleX), 64);
    EXPECT_NEAR(plan.place.x.start, -6.3, 1e-5);
    EXPECT_NEAR(plan.place.x.length, 1.37 * 58, 1e-5);
}

TEST_F(Plans, SamplesThatAddNothingAreKeptWithEmptyRegions) {
    perSampleData sample = settings_.samples[0];
    sample.opacity = 0;
    settings_.samples.push_back(sample);
    sample = settings_.samples[0];
    sample.fbIndex = 0;
    settings_.samples.push_back(sample);
    settings_.framebuffers[0].fboW = 0;
    const StackPlan stack = PlanNormalStack(settings_, {{0, 40}, {0, 30}}, Precision::kDriver);
    ASSERT_EQ(stack.samples.size(), 3u);
    EXPECT_FALSE(stack.samples[0].regions.Empty());
    EXPECT_TRUE(stack.samples[1].regions.Empty());
    EXPECT_TRUE(stack.samples[2].regions.Empty());
}

TEST(ShadowBackends, HaveAFunctionForEachTypeAndNoneForOthers) {
    EXPECT_EQ(BackendOf(RendererChoice::kRefused), nullptr);
    for (const RendererChoice choice : {RendererChoice::kOpenGL, RendererChoice::kProcessor}) {
        const ShadowBackend* backend = BackendOf(choice);
        ASSERT_NE(backend, nullptr);
        EXPECT_EQ(backend->renderer, choice);
        for (const int type : {SHADOW_NORMAL, SHADOW_INNER, SHADOW_RADIAL}) EXPECT_NE(backend->DrawerOf(type), nullptr);
        for (const int type : {-1, 0, 4}) EXPECT_EQ(backend->DrawerOf(type), nullptr) << type;
    }
    EXPECT_NE(BackendOf(RendererChoice::kOpenGL)->DrawerOf(SHADOW_INNER),
              BackendOf(RendererChoice::kProcessor)->DrawerOf(SHADOW_INNER));
}

}  // namespace

}  // namespace umbrant::effect
