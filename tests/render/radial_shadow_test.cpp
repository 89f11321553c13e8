// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The radial shadow's samples, and its sequence of calls without host and driver.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "render/settings/radial_samples.h"
#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;

class RadialSamplesTest : public ::testing::Test {
 protected:
    RadialSamplesTest() {
        input_.width = 100;
        input_.height = 50;
        input_.origin_x = 0;
        input_.origin_y = 0;
        output_.origin_x = -30;
        output_.origin_y = -20;
        s_.inputWorld = &input_;
        s_.outputWorld = &output_;
        s_.numSamples = 4;
        s_.softnessPx = 40;
        s_.opacityStart = 0.2;
        s_.opacityEnd = 0.6;
        s_.preRender.centreOffsetX = -25;
        s_.preRender.centreOffsetY = -15;
        panel_[PARAM_DISTANCE].u.fs_d.value = 100;
        panel_[PARAM_ORIGIN].u.td.x_value = 10 << 16;
        panel_[PARAM_ORIGIN].u.td.y_value = (20 << 16) + 0x8000;
    }
    std::vector<perSampleData> Samples() { return BuildRadialSamples(s_, BuildRadialGeometry(panel_, s_)); }

    PF_LayerDef input_{};
    PF_LayerDef output_{};
    CheckedOutParams panel_ = DefaultPanel();
    myParams s_{};
};

TEST_F(RadialSamplesTest, Geometry) {
    const RadialGeometry g = BuildRadialGeometry(panel_, s_);
    EXPECT_EQ(g.growth, 0.25);
    EXPECT_EQ(g.soft, 40);
    EXPECT_EQ(g.pad, 32);
    EXPECT_EQ(g.paddedW, 164);
    EXPECT_EQ(g.paddedH, 114);
    EXPECT_EQ(g.originX, 10);
    EXPECT_EQ(g.originY, 20.5);
}

TEST_F(RadialSamplesTest, LinearCountsFromOne) {
    const std::vector<perSampleData> samples = Samples();
    ASSERT_EQ(samples.size(), 4u);
    for (int i = 1; i <= 4; ++i) {
        SCOPED_TRACE(i);
        const perSampleData& s = samples[static_cast<size_t>(i - 1)];
        const double scale = 1 + i * 0.0625;
        EXPECT_EQ(s.radialScale, scale);
        EXPECT_EQ(s.softness, std::ceil(i * 10 / scale));
        const double t = i / 4.0;
        EXPECT_EQ(s.opacity, t * 0.6 + (1 - t) * 0.2);
        EXPECT_EQ(s.fbIndex, 0u);
        EXPECT_EQ(s.offsetX, 0);
        EXPECT_EQ(s.offsetY, 0);
        // The padded corner, (30 - 32, 20 - 32) in the output, scaled about origin - place = (35, 35.5).
        EXPECT_NEAR(s.radialTx, 35 + (-2 - 35) * scale, 1e-12);
        EXPECT_NEAR(s.radialTy, 35.5 + (-12 - 35.5) * scale, 1e-12);
    }
}

TEST_F(RadialSamplesTest, EaseIn) {
    s_.easeDistance = s_.easeSoftness = s_.easeOpacity = 1;
    const std::vector<perSampleData> samples = Samples();
    for (int i = 1; i <= 4; ++i) {
        SCOPED_TRACE(i);
        const perSampleData& s = samples[static_cast<size_t>(i - 1)];
        const double g = std::exp2((i / 4.0 - 1) * 10);
        EXPECT_NEAR(s.radialScale, 0.25 * g + 1, 1e-12);
        EXPECT_NEAR(s.opacity, 0.4 * g + 0.2, 1e-12);
        EXPECT_EQ(s.softness, std::max(1.0, std::ceil(40 * g / s.radialScale)));
    }
}

TEST_F(RadialSamplesTest, EaseInOut) {
    s_.easeMode = 1;
    s_.easeDistance = s_.easeSoftness = s_.easeOpacity = 1;
    const std::vector<perSampleData> samples = Samples();
    EXPECT_DOUBLE_EQ(samples[1].radialScale, 1.125) << "half way";
    EXPECT_DOUBLE_EQ(samples[1].opacity, 0.4);
    EXPECT_DOUBLE_EQ(samples[3].radialScale, 1.25);
}

TEST_F(RadialSamplesTest, EveryModeButTheFirstEasesInAndOut) {
    s_.easeDistance = s_.easeSoftness = s_.easeOpacity = 1;
    s_.easeMode = 1;
    const double inOut = Samples()[2].radialScale;
    s_.easeMode = 0;
    EXPECT_NE(Samples()[2].radialScale, inOut);
    for (const int mode : {-1, 2, 7}) {
        s_.easeMode = mode;
        EXPECT_EQ(Samples()[2].radialScale, inOut) << mode;
    }
}

TEST_F(RadialSamplesTest, NoDistanceScalesNothing) {
    panel_[PARAM_DISTANCE].u.fs_d.value = 0;
    s_.easeDistance = 0.8;
    for (const perSampleData& s : Samples()) {
        EXPECT_EQ(s.radialScale, 1);
        EXPECT_EQ(s.radialTx, 30 - 40);
        EXPECT_EQ(s.radialTy, 20 - 40);
    }
}

TEST_F(RadialSamplesTest, OneSampleTakesTheEndValuesWhateverTheEase) {
    s_.numSamples = 1;
    for (double weight : {0.0, 0.3, 1.0}) {
        for (int mode : {0, 1}) {
            s_.easeMode = mode;
            s_.easeDistance = s_.easeSoftness = s_.easeOpacity = weight;
            const perSampleData sample = Samples().at(0);
            EXPECT_EQ(sample.radialScale, 1.25);
            EXPECT_EQ(sample.softness, 32);
            EXPECT_DOUBLE_EQ(sample.opacity, 0.6);
        }
    }
}

TEST_F(RadialSamplesTest, SoftnessIsAtLeastOne) {
    s_.softnessPx = 0;
    for (const perSampleData& s : Samples()) EXPECT_EQ(s.softness, 1);
    s_.numSamples = 0;
    EXPECT_TRUE(Samples().empty());
    s_.numSamples = -4;
    EXPECT_TRUE(Samples().empty());
}

TEST_F(RadialSamplesTest, AStackBeyondAllReasonIsCutOff) {
    s_.numSamples = 1024;
    EXPECT_EQ(Samples().size(), 1024u);
    s_.numSamples = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(Samples().size(), 1024u);
    EXPECT_LT(Samples().capacity(), 2048u);
}

class RadialShadowTest : public SmartRenderTest {
 protected:
    RadialShadowTest() {
        host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 3;
        host_.record = {};
    }
};

TEST_F(RadialShadowTest, PadsOnceThenDrawsThreePassesPerSample) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Draws().size(), 1u + 2 * 3);
    // The padded copy, two blur targets per sample, the output once.
    EXPECT_EQ(fake::CallsTo("glClear(").size(), 1u + 4 + 1);
    EXPECT_EQ(fake::CallsTo("glFinish").size(), 1u);
    EXPECT_EQ(fake::CallsTo("glDeleteVertexArrays").size(), 1u) << "the second quad";
    EXPECT_EQ(host_.transfers.size(), 1u);
    EXPECT_THAT(fake::Gl().uniformValues.at("scaleW"), ElementsAre(1.0f));
    EXPECT_THAT(fake::Gl().uniformValues.at("scaleH"), ElementsAre(1.0f));
    const std::vector<double> xform = fake::Gl().uniformValues.at("xform");
    // "Distance" 20: the last of two copies is 1.05 times as large; pad 10, the output's corner at (-10, -20), the
    // input's at (3, 4): its padded corner (3, 14) grows about the origin, (0, 0).
    EXPECT_FLOAT_EQ(static_cast<float>(xform[0]), 1.05f);
    EXPECT_FLOAT_EQ(static_cast<float>(xform[12]), static_cast<float>(0.05 + 2 * 3 * 1.05 / 60));
    EXPECT_FLOAT_EQ(static_cast<float>(xform[13]), static_cast<float>(0.05 + 2 * 14 * 1.05 / 50));
}

TEST_F(RadialShadowTest, TextureAndSourceFollow) {
    TestWorld texture(5, 5, sizeof(PF_Pixel));
    host_.texture = &texture.world;
    Slide(PARAM_SOURCE_OPACITY, 50);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ASSERT_EQ(host_.transfers.size(), 2u);
    EXPECT_EQ(host_.transfers[0].mode.xfer, 20);
    EXPECT_EQ(host_.transfers[1].mode.opacity, 127);
}

TEST_F(RadialShadowTest, ZeroSizedBuffersAreTold) {
    input_.world.width = 0;
    Slide(PARAM_SOFTNESS, 0);
    Soil();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Message(), "UM2 Radial Error: in/out FBO too small");
    EXPECT_TRUE(Transparent());
    EXPECT_EQ(host_.transfers.size(), 1u) << "the composite still follows";
}

TEST_F(RadialShadowTest, BuffersThatCannotBeHad) {
    for (int bad = 0; bad < 4; ++bad) {
        SCOPED_TRACE(bad);
        fake::Gl().framebufferStatus.assign(static_cast<size_t>(bad), GL_FRAMEBUFFER_COMPLETE);
        fake::Gl().framebufferStatus.push_back(GL_FRAMEBUFFER_UNSUPPORTED);
        fake::ClearCalls();
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        EXPECT_EQ(fake::CallsTo("glCheckFramebufferStatus").size(), 4u) << "every init is attempted";
        fake::Gl().framebufferStatus.clear();
        EXPECT_TRUE(host_.transfers.empty());
    }
}

TEST_F(RadialShadowTest, NoMemoryForTheTransferBuffers) {
    for (int call : {1, 2}) {
        SCOPED_TRACE(call);
        host_.RestartCounts();
        host_.failNewHandle = call;
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        EXPECT_TRUE(host_.transfers.empty());
        EXPECT_TRUE(host_.Balanced());
    }
}

TEST_F(RadialShadowTest, SixteenBitsAreRefused) {
    host_.renderInput.bitdepth = 16;
    EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(Message().rfind("Init world called on PF_EffectWorld of incompatible depth, likely 16bpc", 0), 0u);
}

TEST_F(RadialShadowTest, NoSamplesGiveNoShadow) {
    Slide(PARAM_SAMPLES, 0);
    Soil();
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Transparent());
    EXPECT_TRUE(Draws().empty());
    EXPECT_EQ(host_.transfers.size(), 1u);
}

}  // namespace

}  // namespace umbrant::effect
