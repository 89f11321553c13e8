// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/frame_request.h"

#include <gtest/gtest.h>

#include "host/render/plan/frame_limits.h"

namespace umbrant::host {

namespace {

TEST(FrameRequestBuilder, TakesLayersSettingsAndTime) {
    const World layer = World::Create(6, 4, Depth::k8);
    const World texture = World::Create(3, 2, Depth::k8);
    const ParamSet params;
    const FrameRequest request =
        MakeFrameRequest({&layer, 12, 8, &texture}, {2, Canvas::kLayer, 5, -5}, {48, 2, 96, 24}, &params);
    EXPECT_EQ(request.layer, &layer);
    EXPECT_EQ(request.layerWidth, 12);
    EXPECT_EQ(request.layerHeight, 8);
    EXPECT_EQ(request.texture, &texture);
    EXPECT_EQ(request.downsampleX.num, 1);
    EXPECT_EQ(request.downsampleX.den, 2u);
    EXPECT_EQ(request.downsampleY.num, 1);
    EXPECT_EQ(request.downsampleY.den, 2u);
    // Half pixels go away from zero.
    EXPECT_EQ(request.textureOrigin.x, 3);
    EXPECT_EQ(request.textureOrigin.y, -3);
    EXPECT_EQ(request.canvas, Canvas::kLayer);
    EXPECT_EQ(request.time, 48);
    EXPECT_EQ(request.timeStep, 2);
    EXPECT_EQ(request.totalTime, 96);
    EXPECT_EQ(request.timeScale, 24u);
    EXPECT_EQ(request.params, &params);
    EXPECT_FALSE(request.valuesAt);
    EXPECT_FALSE(request.layersAt);
    EXPECT_FALSE(request.region);
}

TEST(FrameRequestBuilder, ScalesAreMultipliedAndPlaceTheTexture) {
    const World layer = World::Create(6, 4, Depth::k8);
    FrameSettings settings{2, Canvas::kGrow, 30, -30};
    settings.scaleX = {2, 3};
    settings.scaleY = {1, 5};
    settings.pixelAspect = {64, 45};
    const FrameRequest request = MakeFrameRequest({&layer, 18, 40}, settings, {}, nullptr);
    EXPECT_EQ(request.downsampleX.num, 2);
    EXPECT_EQ(request.downsampleX.den, 6u);
    EXPECT_EQ(request.downsampleY.num, 1);
    EXPECT_EQ(request.downsampleY.den, 10u);
    EXPECT_EQ(request.textureOrigin.x, 10);
    EXPECT_EQ(request.textureOrigin.y, -3);
    EXPECT_EQ(request.pixelAspect.num, 64);
    EXPECT_EQ(request.pixelAspect.den, 45u);
}

TEST(FrameRequestBuilder, NoTextureAndTheSessionsValues) {
    const World layer = World::Create(6, 4, Depth::k8);
    const FrameRequest request = MakeFrameRequest({&layer, 6, 4}, {}, {}, nullptr);
    EXPECT_EQ(request.texture, nullptr);
    EXPECT_EQ(request.params, nullptr);
    EXPECT_EQ(request.canvas, Canvas::kGrow);
}

// The documented ranges of --time, --texture-at and --downsample, and of the library's FrameOptions.
TEST(FrameLimits, AreThoseOfTheDocuments) {
    EXPECT_EQ(kLongestTime, 86400);
    EXPECT_EQ(kFarthestTexture, 100000);
    EXPECT_EQ(kMostDownsample, 64);
}

}  // namespace

}  // namespace umbrant::host
