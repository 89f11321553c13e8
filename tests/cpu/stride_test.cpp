// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The places of the taps: the stacks are drawn again from the numbers that the GPU passes send as uniforms.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "cpu/shadows.h"
#include "cpu/stack_drawer.h"
#include "render/plan_passes.h"

namespace umbrant::effect {

namespace {

constexpr int kWidth = 40;
constexpr int kHeight = 300;
constexpr double kFull = 65535;

double Single(double value) {
    return static_cast<double>(static_cast<float>(value));
}

// One copy of a layer in a buffer without a border, drawn where the layer lies.
class Stride : public ::testing::Test {
 protected:
    Stride() {
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                alpha_.push_back((x * 31 + y * 57 + x * y) % 7 < 3 ? 1.0f : 0.0f);
            }
        }
        world_.width = kWidth;
        world_.height = kHeight;
        settings_.inputWorld = settings_.innerSourceWorld = settings_.outputWorld = &world_;
        settings_.resolutionScale = 1;
        settings_.shadowColourFloat.alpha = 1;
        settings_.framebuffers = {{0, 0, kWidth, kHeight, kWidth, kHeight}};
        perSampleData copy{};
        copy.softness = kSoftness;
        copy.opacity = 1;
        copy.radialScale = 1;
        settings_.samples = {copy};
    }

    AlphaPlane Layer() const { return {nullptr, alpha_.data(), kWidth, kHeight}; }

    static std::vector<uint16_t> Copied(const uint16_t* values) { return {values, values + kWidth * kHeight}; }

    // `across` and `down` are strides in inputs.
    static std::vector<uint16_t> Expected(const AlphaPlane& source, Edge edge, double gain, double across,
                                          double down) {
        const Region whole = WholeRegion(source.width, source.height);
        ColumnTiles tiles;
        tiles.Build(source, whole, {0, 1, source.height, edge}, source.height);
        SamplePlan plan;
        plan.across.x = {source.width, 1, {0, 1, source.width, edge}};
        plan.across.y = {source.height, 1, {0, 1, source.height, edge}};
        plan.place.x = {0, static_cast<double>(source.width), source.width};
        plan.place.y = {0, static_cast<double>(source.height), source.height};
        plan.regions = {whole, whole, whole};
        const StackSample sample{&tiles, &plan,  MakeKernel(kSteps, across, gain), MakeKernel(kSteps, down, 1),
                                 {},     nullptr};
        StackDrawer drawer;
        return Copied(drawer.Draw({sample}, source.width, source.height));
    }

    static constexpr Region kWhole = {{0, kWidth}, {0, kHeight}};
    static constexpr double kSoftness = 119.1;
    static constexpr int kSteps = 120;
    // What the record of the settings keeps of the softness is single, and so is its division.
    static constexpr float kAmount = 119.1f;
    const double across_ = Single(kSoftness / kSteps * (1.0 / kWidth)) * kWidth;
    const double down_ = Single(static_cast<double>(kAmount / 120.0f) * (1.0 / kHeight)) * kHeight;
    const double downInDouble_ = Single(static_cast<double>(kAmount) / kSteps * (1.0 / kHeight)) * kHeight;
    std::vector<float> alpha_;
    PF_LayerDef world_{};
    myParams settings_;
};

TEST_F(Stride, OfANormalShadowDividesInSinglePrecision) {
    const auto drawn = Copied(DrawStack(PlanNormalStack(settings_, kWhole, Precision::kExact), Layer()));
    const auto expected = Expected(Layer(), Edge::kClamp, kFull, across_, down_);
    ASSERT_NE(Expected(Layer(), Edge::kClamp, kFull, across_, downInDouble_), expected)
        << "else the test proves nothing";
    EXPECT_TRUE(drawn == expected);
}

TEST_F(Stride, OfAnInnerShadowDividesInSinglePrecision) {
    std::vector<float> inverted;
    for (const float alpha : alpha_) inverted.push_back(std::nearbyint((1 - alpha) * 65535.0f));
    const AlphaPlane source{nullptr, inverted.data(), kWidth, kHeight};
    const auto drawn = Copied(DrawStack(PlanInnerStack(settings_, kWhole, Precision::kExact),
                                        InvertAlpha(PlanInversion(settings_), Layer())));
    const auto expected = Expected(source, Edge::kMirror, 1, across_, down_);
    ASSERT_NE(Expected(source, Edge::kMirror, 1, across_, downInDouble_), expected) << "else the test proves nothing";
    EXPECT_TRUE(drawn == expected);
}

// A radial sample keeps its softness in double, and so do the numbers that its passes are sent.
TEST_F(Stride, OfARadialShadowDividesInDoublePrecision) {
    std::vector<float> padded;
    for (const float alpha : alpha_) padded.push_back(std::nearbyint(alpha * 65535.0f));
    const AlphaPlane source{nullptr, padded.data(), kWidth, kHeight};
    RadialGeometry geometry;
    geometry.paddedW = kWidth;
    geometry.paddedH = kHeight;
    const PaddingPlan padding = PlanPadding(settings_, geometry);
    const auto drawn =
        Copied(DrawStack(PlanRadialStack(settings_, padding, kWhole, Precision::kExact), PadAlpha(padding, Layer())));
    const double across = Single(kSoftness / kSteps / kWidth) * kWidth;
    const double down = Single(kSoftness / kSteps / kHeight) * kHeight;
    const auto expected = Expected(source, Edge::kMirror, 1, across, down);
    ASSERT_NE(Expected(source, Edge::kMirror, 1, across, down_), expected) << "else the test proves nothing";
    EXPECT_TRUE(drawn == expected);
}

}  // namespace

}  // namespace umbrant::effect
