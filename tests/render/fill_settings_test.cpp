// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Every field of the settings, at the defaults and where its formula turns.

#include "render/settings/fill_settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/render/panel.h"

namespace umbrant::effect {

namespace {

class FillSettingsTest : public ::testing::Test {
 protected:
    void SetUp() override {
        input_.width = 320;
        input_.height = 200;
        output_.width = 700;
        output_.height = 600;
        settings_.inputWorld = &input_;
        settings_.outputWorld = &output_;
    }
    void Fill(A_long num = 1, A_u_long den = 1) { FillSettings(panel_, {num, den}, &settings_); }
    void Slide(ParamIndex index, double value) { panel_[index].u.fs_d.value = value; }

    PF_LayerDef input_{};
    PF_LayerDef output_{};
    CheckedOutParams panel_ = DefaultPanel();
    myParams settings_{};
};

TEST_F(FillSettingsTest, Defaults) {
    panel_[PARAM_COLOR].u.cd.value = {9, 10, 20, 30};
    Fill();
    const myParams& s = settings_;
    EXPECT_EQ(s.shadowType, 1);
    EXPECT_EQ(s.downscaleX, 1.0);
    EXPECT_EQ(s.shadowColour8.alpha, 9);
    EXPECT_EQ(s.shadowColour8.red, 10);
    EXPECT_EQ(s.shadowColour8.green, 20);
    EXPECT_EQ(s.shadowColour8.blue, 30);
    EXPECT_EQ(s.shadowBlendMode, 1);
    EXPECT_EQ(s.opacityMaster, 100 * 0.01);
    EXPECT_EQ(s.opacityStart, 1.0 * 20 * 0.01);
    EXPECT_EQ(s.opacityEnd, 1.0 * 50 * 0.01);
    EXPECT_EQ(s.bufferW, 320);
    EXPECT_EQ(s.bufferH, 200);
    EXPECT_EQ(s.numSamples, 36);
    EXPECT_EQ(s.numFramebuffers, 2);
    EXPECT_EQ(s.angleDeg, 135.0);
    EXPECT_EQ(s.distancePx, 250.0);
    EXPECT_EQ(s.softnessPx, 250.0);
    EXPECT_EQ(s.softnessPx2, 500.0);
    EXPECT_EQ(s.easeMode, 0);
    EXPECT_EQ(s.easeAmount, 1.0);
    EXPECT_EQ(s.easeSoftness, 1.0);
    EXPECT_EQ(s.easeDistance, 0.8);
    EXPECT_EQ(s.easeOpacity, 1.0);
    EXPECT_EQ(s.resolution, 3);
    EXPECT_EQ(s.resolutionScale, 3 * 0.2);
    EXPECT_EQ(s.prioritise, 0);
    EXPECT_EQ(s.sourceOpacity, 255);
    EXPECT_EQ(s.offsetShadowPx, 1.0);
    EXPECT_EQ(s.textureComposite.xfer, PF_Xfer_MULTIPLY_NOT_ALPHA_LUMA);
    EXPECT_EQ(s.textureComposite.opacity, 255);
    EXPECT_EQ(s.textureComposite.rgb_only, 1);
    EXPECT_EQ(s.textureBlendMode, 15);
    EXPECT_EQ(s.textureStrength, 1.0);
    EXPECT_TRUE(s.samples.empty());
    EXPECT_TRUE(s.framebuffers.empty());
}

TEST_F(FillSettingsTest, AngleIsMultipliedInSinglePrecision) {
    Fill();
    const float product = 135.0f * 0.0174533f;
    EXPECT_NE(static_cast<double>(product), 135.0 * 0.0174533) << "else the test proves nothing";
    const double angle = product;
    EXPECT_EQ(settings_.travelX, 250 * std::sin(angle));
    EXPECT_EQ(settings_.travelY, -250 * std::cos(angle));
    EXPECT_EQ(settings_.stepX, settings_.travelX / 36);
    EXPECT_EQ(settings_.stepY, settings_.travelY / 36);
    EXPECT_EQ(settings_.offsetShadowX, std::sin(angle));
    EXPECT_EQ(settings_.offsetShadowY, -std::cos(angle));
    EXPECT_GT(settings_.travelX, 0) << "135 degrees casts to the right";
    EXPECT_GT(settings_.travelY, 0) << "and down";
}

TEST_F(FillSettingsTest, FixedAngleKeepsItsFraction) {
    panel_[PARAM_ANGLE].u.ad.value = -(45 << 16) - 0x8000;
    Fill();
    EXPECT_EQ(settings_.angleDeg, -45.5);
}

TEST_F(FillSettingsTest, DownsampleIsSinglePrecisionAndScalesLengths) {
    Slide(PARAM_DISTANCE, 100);
    Slide(PARAM_SOFTNESS, 31);
    Slide(PARAM_OFFSET_SHADOW, 5);
    Fill(1, 2);
    EXPECT_EQ(settings_.distancePx, 50);
    EXPECT_EQ(settings_.softnessPx, 15) << "15.5 truncates";
    EXPECT_EQ(settings_.softnessPx2, 30);
    EXPECT_EQ(settings_.offsetShadowPx, 2.5);
    Fill(1, 3);
    EXPECT_EQ(settings_.downscaleX, static_cast<double>(1.0f / 3.0f));
    EXPECT_NE(settings_.downscaleX, 1.0 / 3.0);
}

TEST_F(FillSettingsTest, InnerBuffersAreAsLargeAsTheOutput) {
    panel_[PARAM_SHADOW_TYPE].u.pd.value = 2;
    Fill();
    EXPECT_EQ(settings_.bufferW, 700);
    EXPECT_EQ(settings_.bufferH, 600);
}

TEST_F(FillSettingsTest, SamplesTruncateAndShareTwoFramebuffers) {
    const struct {
        double slider;
        int samples, framebuffers;
    } rows[] = {{1, 1, 1},
                {1.99, 1, 1},
                {2, 2, 2},
                {256, 256, 2},
                {0.5, 0, 0},
                {-3, -3, -3},
                {1e300, std::numeric_limits<int32_t>::max(), 2},
                {std::nan(""), 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.slider);
        Slide(PARAM_SAMPLES, row.slider);
        Fill();
        EXPECT_EQ(settings_.numSamples, row.samples);
        EXPECT_EQ(settings_.numFramebuffers, row.framebuffers);
    }
}

TEST_F(FillSettingsTest, SourceOpacityIsSinglePrecision) {
    const struct {
        double percent;
        int byte;
    } rows[] = {{100, 255}, {50, 127}, {0, 0}, {20, 51}, {0.39, 0}, {40, 102}, {99.99, 254}, {200, 255}, {-1, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.percent);
        Slide(PARAM_SOURCE_OPACITY, row.percent);
        Fill();
        EXPECT_EQ(settings_.sourceOpacity, row.byte);
    }
}

TEST_F(FillSettingsTest, EachEasingWeightStopsAtOne) {
    Slide(PARAM_EASE, 100);
    for (const ParamIndex index : {PARAM_EASE_DISTANCE, PARAM_EASE_SOFTNESS, PARAM_EASE_OPACITY}) {
        SCOPED_TRACE(index);
        for (const ParamIndex other : {PARAM_EASE_DISTANCE, PARAM_EASE_SOFTNESS, PARAM_EASE_OPACITY}) {
            Slide(other, other == index ? 150 : 50);
        }
        Fill();
        EXPECT_EQ(settings_.easeDistance, index == PARAM_EASE_DISTANCE ? 1.0 : 0.5);
        EXPECT_EQ(settings_.easeSoftness, index == PARAM_EASE_SOFTNESS ? 1.0 : 0.5);
        EXPECT_EQ(settings_.easeOpacity, index == PARAM_EASE_OPACITY ? 1.0 : 0.5);
    }
}

TEST_F(FillSettingsTest, TheShadowsBlendModeIsThePopupsValue) {
    panel_[PARAM_BLEND_MODE].u.pd.value = 11;
    panel_[PARAM_TEXTURE_BLEND_MODE].u.pd.value = 3;
    Fill();
    EXPECT_EQ(settings_.shadowBlendMode, 11);
    EXPECT_EQ(settings_.textureBlendMode, 3);
}

TEST_F(FillSettingsTest, TheEaseModeIsThePopupsValueLessOneWhateverItIs) {
    for (const int value : {-3, 0, 1, 2, 3, 9}) {
        panel_[PARAM_EASE_MODE].u.pd.value = value;
        Fill();
        EXPECT_EQ(settings_.easeMode, value - 1);
    }
}

TEST_F(FillSettingsTest, ARadialShadowDoesNotTravel) {
    panel_[PARAM_SHADOW_TYPE].u.pd.value = SHADOW_RADIAL;
    panel_[PARAM_COLOR].u.cd.value = {1, 2, 3, 4};
    Slide(PARAM_SOFTNESS, 31);
    Fill(1, 2);
    const myParams& s = settings_;
    EXPECT_EQ(s.shadowType, 3);
    EXPECT_EQ(s.downscaleX, 0.5);
    EXPECT_EQ(s.softnessPx, 15);
    EXPECT_EQ(s.softnessPx2, 30);
    EXPECT_EQ(s.shadowColour8.blue, 4);
    EXPECT_EQ(s.bufferW, 320) << "the input's";
    EXPECT_EQ(s.bufferH, 200);
    EXPECT_EQ(s.numSamples, 36);
    EXPECT_EQ(s.opacityStart, 0.2);
    EXPECT_EQ(s.easeDistance, 0.8);
    EXPECT_EQ(s.resolutionScale, 3 * 0.2);
    EXPECT_EQ(s.sourceOpacity, 255);
    EXPECT_EQ(s.textureStrength, 1.0);
    for (const double none :
         {s.distancePx, s.travelX, s.travelY, s.stepX, s.stepY, s.offsetShadowPx, s.offsetShadowX, s.offsetShadowY}) {
        EXPECT_EQ(none, 0);
    }
}

TEST_F(FillSettingsTest, EasingWeightsStopAtOne) {
    Slide(PARAM_EASE, 50);
    Slide(PARAM_EASE_DISTANCE, 50);
    Slide(PARAM_EASE_SOFTNESS, 500);
    Slide(PARAM_EASE_OPACITY, 500);
    panel_[PARAM_EASE_MODE].u.pd.value = 2;
    Fill();
    EXPECT_EQ(settings_.easeMode, 1);
    EXPECT_EQ(settings_.easeAmount, 0.5);
    EXPECT_EQ(settings_.easeDistance, 0.25);
    EXPECT_EQ(settings_.easeSoftness, 1.0);
    EXPECT_EQ(settings_.easeOpacity, 1.0);
    Slide(PARAM_EASE_OPACITY, 30);
    Fill();
    EXPECT_EQ(settings_.easeOpacity, 30 * 0.01 * 0.5);
}

TEST_F(FillSettingsTest, TextureStrengthAndModes) {
    Slide(PARAM_TEXTURE_STRENGTH, 29);
    panel_[PARAM_TEXTURE_BLEND_MODE].u.pd.value = 3;
    Fill();
    EXPECT_EQ(settings_.textureComposite.xfer, PF_Xfer_MULTIPLY);
    EXPECT_EQ(settings_.textureComposite.opacity, 73) << "73.95 truncates";

    // A separator leaves the mode as it was: zero in a fresh record.
    myParams fresh{};
    fresh.inputWorld = &input_;
    fresh.outputWorld = &output_;
    panel_[PARAM_TEXTURE_BLEND_MODE].u.pd.value = 5;
    FillSettings(panel_, {1, 1}, &fresh);
    EXPECT_EQ(fresh.textureComposite.xfer, PF_Xfer_COPY);
}

TEST_F(FillSettingsTest, OpacitiesCarryTheMaster) {
    Slide(PARAM_OPACITY_MASTER, 50);
    Slide(PARAM_OPACITY_START, 30);
    Slide(PARAM_OPACITY_END, 90);
    Fill();
    EXPECT_EQ(settings_.opacityMaster, 0.5);
    EXPECT_EQ(settings_.opacityStart, 0.5 * 30 * 0.01);
    EXPECT_EQ(settings_.opacityEnd, 0.5 * 90 * 0.01);
}

TEST_F(FillSettingsTest, QualityAndDebugRows) {
    panel_[PARAM_PRIORITISE].u.pd.value = 2;
    Slide(PARAM_DEBUG_LEFT, -1);
    Slide(PARAM_DEBUG_TOP, 2);
    Slide(PARAM_DEBUG_RIGHT, 3);
    Slide(PARAM_DEBUG_BOTTOM, 4);
    for (int resolution = 1; resolution <= 5; ++resolution) {
        panel_[PARAM_RESOLUTION].u.pd.value = resolution;
        Fill();
        EXPECT_EQ(settings_.resolutionScale, resolution * 0.2);
    }
    EXPECT_EQ(settings_.prioritise, 1);
    EXPECT_EQ(settings_.debugLeft, -1);
    EXPECT_EQ(settings_.debugTop, 2);
    EXPECT_EQ(settings_.debugRight, 3);
    EXPECT_EQ(settings_.debugBottom, 4);
}

TEST_F(FillSettingsTest, TextureDefinitionStaysZero) {
    // Intended: the parameter loop skips the texture layer, so its definition never arrives.
    Fill();
    EXPECT_EQ(settings_.textureLayerDef.data, nullptr);
    EXPECT_EQ(settings_.textureLayerDef.width, 0);
}

}  // namespace

}  // namespace umbrant::effect
