// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The sample stack and the framebuffer sizes.

#include "render/settings/samples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace umbrant::effect {

namespace {

myParams Settings(int n) {
    myParams s{};
    s.shadowType = SHADOW_NORMAL;
    s.numSamples = n;
    s.numFramebuffers = std::min(n, 2);
    s.opacityStart = 0.2;
    s.opacityEnd = 0.5;
    s.softnessPx = 40;
    s.travelX = 100;
    s.travelY = -60;
    s.stepX = s.travelX / n;
    s.stepY = s.travelY / n;
    s.bufferW = 100;
    s.bufferH = 50;
    s.resolutionScale = 0.6;
    return s;
}

TEST(Samples, LinearWithoutEase) {
    const std::vector<perSampleData> samples = BuildSamples(Settings(8));
    ASSERT_EQ(samples.size(), 8u);
    for (int i = 0; i < 8; ++i) {
        SCOPED_TRACE(i);
        const perSampleData& s = samples[static_cast<size_t>(i)];
        EXPECT_EQ(s.offsetX, 12.5 * i);
        EXPECT_EQ(s.offsetY, -7.5 * i);
        EXPECT_EQ(s.softness, 5.0 * i);
        const double v = (i + 1) / 8.0;
        EXPECT_EQ(s.opacity, v * 0.5 + (1 - v) * 0.2);
        EXPECT_EQ(s.radialTx, 0);
        EXPECT_EQ(s.radialTy, 0);
        EXPECT_EQ(s.radialScale, 0);
    }
}

TEST(Samples, OpacityRunsOneStepAhead) {
    // Intended: opacity uses (i + 1) / n, so the last sample has the end opacity though its offset stops short.
    const std::vector<perSampleData> samples = BuildSamples(Settings(4));
    EXPECT_EQ(samples[3].opacity, 0.5);
    EXPECT_EQ(samples[3].offsetX, 75);
    EXPECT_EQ(samples[0].offsetX, 0);
    EXPECT_EQ(samples[0].opacity, 0.25 * 0.5 + 0.75 * 0.2);
}

TEST(Samples, EaseInJumpsFromZero) {
    myParams s = Settings(4);
    s.easeMode = 0;
    s.easeDistance = s.easeSoftness = s.easeOpacity = 1;
    const std::vector<perSampleData> samples = BuildSamples(s);
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const double g = i == 0 ? 0 : std::exp2(10 * (i / 4.0 - 1));
        EXPECT_NEAR(samples[static_cast<size_t>(i)].offsetX, g * 100, 1e-12);
        EXPECT_NEAR(samples[static_cast<size_t>(i)].offsetY, g * -60, 1e-12);
        EXPECT_NEAR(samples[static_cast<size_t>(i)].softness, g * 40, 1e-12);
        EXPECT_NEAR(samples[static_cast<size_t>(i)].opacity, 0.2 + g * (0.5 - 0.2), 1e-12);
    }
}

TEST(Samples, EaseInOutPassesTheMiddle) {
    myParams s = Settings(4);
    s.easeMode = 1;
    s.easeDistance = s.easeSoftness = s.easeOpacity = 1;
    const std::vector<perSampleData> samples = BuildSamples(s);
    const double eased[] = {0, 0.5 * std::exp2(-5), 0.5, 0.5 * (2 - std::exp2(-5))};
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        EXPECT_NEAR(samples[i].offsetX, eased[i] * 100, 1e-12);
        EXPECT_NEAR(samples[i].offsetY, eased[i] * -60, 1e-12);
        EXPECT_NEAR(samples[i].softness, eased[i] * 40, 1e-12);
        EXPECT_NEAR(samples[i].opacity, 0.2 + eased[i] * (0.5 - 0.2), 1e-12);
    }
}

TEST(Samples, EveryModeButTheFirstEasesInAndOut) {
    myParams s = Settings(8);
    s.easeDistance = s.easeSoftness = s.easeOpacity = 1;
    s.easeMode = 1;
    const double inOut = BuildSamples(s)[5].offsetX;
    s.easeMode = 0;
    EXPECT_NE(BuildSamples(s)[5].offsetX, inOut);
    for (const int mode : {-1, 2, 7}) {
        s.easeMode = mode;
        EXPECT_EQ(BuildSamples(s)[5].offsetX, inOut) << mode;
    }
}

TEST(Samples, EachAttributeHasItsOwnWeight) {
    myParams s = Settings(2);
    s.easeMode = 1;
    s.easeDistance = 0.5;
    s.easeSoftness = 0;
    s.easeOpacity = 1;
    const perSampleData second = BuildSamples(s)[1];
    EXPECT_EQ(second.offsetX, 50) << "linear and eased agree in the middle";
    EXPECT_EQ(second.softness, 20);
    EXPECT_DOUBLE_EQ(second.opacity, 0.35) << "wholly eased, while the linear ramp is at its end";
}

TEST(Samples, EasedOpacityEntersByItsMagnitude) {
    myParams s = Settings(2);
    s.easeMode = 0;
    s.easeOpacity = 1;
    s.opacityStart = -0.4;
    s.opacityEnd = -0.4;
    EXPECT_DOUBLE_EQ(BuildSamples(s)[0].opacity, 0.4);
}

TEST(Samples, OneSampleStaysInPlace) {
    myParams s = Settings(1);
    s.easeOpacity = 0.25;
    const std::vector<perSampleData> samples = BuildSamples(s);
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0].fbIndex, 0u);
    EXPECT_EQ(samples[0].offsetX, 0);
    EXPECT_EQ(samples[0].softness, 0);
    EXPECT_DOUBLE_EQ(samples[0].opacity, 0.5 - (0.5 - 0.2) * 0.25);
    EXPECT_EQ(BuildFramebufferRecords(s).size(), 1u);
}

TEST(Samples, HalvesShareTheFramebuffers) {
    const struct { int n, firstOfSecond; } rows[] = {{2, 2}, {3, 2}, {4, 3}, {5, 3}, {8, 5}, {36, 19}, {256, 129}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.n);
        const std::vector<perSampleData> samples = BuildSamples(Settings(row.n));
        for (int i = 0; i < row.n; ++i) {
            // Intended: the small subtraction keeps the middle sample in the first buffer; with two samples both are.
            EXPECT_EQ(samples[static_cast<size_t>(i)].fbIndex, i < row.firstOfSecond ? 0u : 1u) << i;
        }
    }
}

TEST(Samples, NoneBelowOne) {
    EXPECT_TRUE(BuildSamples(Settings(0)).empty());
    EXPECT_TRUE(BuildSamples(Settings(-3)).empty());
    EXPECT_TRUE(BuildFramebufferRecords(Settings(0)).empty());
    EXPECT_TRUE(BuildFramebufferRecords(Settings(-3)).empty());
}

TEST(Samples, AStackBeyondAllReasonIsCutOff) {
    EXPECT_EQ(BuildSamples(Settings(256)).size(), 256u);
    EXPECT_EQ(BuildSamples(Settings(1024)).size(), 1024u);
    const std::vector<perSampleData> samples = BuildSamples(Settings(std::numeric_limits<int32_t>::max()));
    EXPECT_EQ(samples.size(), 1024u);
    EXPECT_LT(samples.capacity(), 2048u);
    for (const perSampleData& sample : samples) ASSERT_EQ(sample.fbIndex, 0u);
}

TEST(FramebufferRecords, SecondHasTwiceTheBorder) {
    myParams s = Settings(10);
    s.softnessPx = 41;
    const std::vector<framebufferData> records = BuildFramebufferRecords(s);
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].pad, 21) << "20.5, rounded up";
    EXPECT_EQ(records[0].pad2, 42);
    EXPECT_EQ(records[0].paddedW, 142);
    EXPECT_EQ(records[0].paddedH, 92);
    EXPECT_EQ(records[0].fboW, 85) << "85.2 truncates";
    EXPECT_EQ(records[0].fboH, 55);
    EXPECT_EQ(records[1].pad, 41);
    EXPECT_EQ(records[1].paddedW, 182);
    EXPECT_EQ(records[1].paddedH, 132);
    EXPECT_EQ(records[1].fboW, 109);
    EXPECT_EQ(records[1].fboH, 79);
}

TEST(FramebufferRecords, InnerHasNoBorder) {
    myParams s = Settings(10);
    s.shadowType = SHADOW_INNER;
    const std::vector<framebufferData> records = BuildFramebufferRecords(s);
    EXPECT_EQ(records[1].pad, 40);
    EXPECT_EQ(records[1].pad2, 0);
    EXPECT_EQ(records[1].paddedW, 100);
    EXPECT_EQ(records[1].fboW, 60);
}

}  // namespace

}  // namespace umbrant::effect
