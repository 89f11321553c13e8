// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The plan of a single image.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/render/plan/frame_plan.h"

namespace umbrant::host {

namespace {

TEST(ImagePlan, IsOneFrameWithoutANumber) {
    const FramePlan plan = PlanImage({"in.png", "paper.png", "-", 0.5, {30000, 1001}, 3});
    ASSERT_EQ(plan.frames.size(), 1u);
    EXPECT_TRUE(plan.isImage);
    const PlannedFrame& frame = plan.frames[0];
    EXPECT_EQ(frame.state, PlannedFrame::State::kDraw);
    EXPECT_EQ(frame.input, "in.png");
    EXPECT_EQ(frame.texture, "paper.png");
    EXPECT_EQ(frame.output, "-");
    EXPECT_FALSE(frame.inputChanges) << "other times show the same image";
    EXPECT_FALSE(frame.textureChanges);
    EXPECT_DOUBLE_EQ(frame.position, 3 + 0.5 * 30000 / 1001);
}

TEST(ImagePlan, TheEffectsClockRunsInSteps) {
    const FramePlan plan = PlanImage({"in.png", "", "out.png", 1.23456});
    EXPECT_EQ(plan.rate, (FrameRate{24000, 1000}));
    EXPECT_EQ(plan.frames[0].time, 29629) << "the nearest of 1/24000 s";
    EXPECT_EQ(plan.totalTime, 30629) << "one frame longer";
    EXPECT_DOUBLE_EQ(plan.frames[0].position, 1.23456 * 24);
}

}  // namespace

}  // namespace umbrant::host
