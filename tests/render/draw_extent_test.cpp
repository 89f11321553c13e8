// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Where the GPU passes draw at all: what they pass to GL for layers that are mostly or wholly empty.

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

class DrawExtent : public SmartRenderTest {};

TEST_F(DrawExtent, DrawsOnlyWhereTheLayerReaches) {
    // One pixel at (20, 15) of 40 x 30. The copy's buffer has 0.6 texels a pixel and a border of 5, so 30 x 24 of them;
    // the blur reaches one pixel, and every step is rounded outwards by a texel or two.
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) input_.At8(x, y) = {0, 9, 9, 9};
    }
    input_.At8(20, 15) = {1, 0, 0, 0};
    Slide(PARAM_SAMPLES, 1);
    Slide(PARAM_DISTANCE, 0);
    Slide(PARAM_OFFSET_SHADOW, 0);
    host_.record.centreOffsetX = host_.record.centreOffsetY = 0;
    ASSERT_EQ(Run(), PF_Err_NONE);
    const std::vector<std::string> boxes = fake::CallsTo("glScissor");
    ASSERT_EQ(boxes.size(), 3u);
    const int outer[3][4] = {{12, 10, 26, 18}, {12, 8, 26, 20}, {18, 10, 50, 45}};
    for (size_t pass = 0; pass < 3; ++pass) {
        int x = 0, y = 0, width = 0, height = 0;
        ASSERT_EQ(std::sscanf(boxes[pass].c_str(), "glScissor(%d, %d, %d, %d)", &x, &y, &width, &height), 4);
        EXPECT_GT(x, 0) << boxes[pass];
        EXPECT_GT(y, 0) << boxes[pass];
        EXPECT_GE(x, outer[pass][0]) << boxes[pass];
        EXPECT_GE(y, outer[pass][1]) << boxes[pass];
        EXPECT_LE(x + width, outer[pass][2]) << boxes[pass];
        EXPECT_LE(y + height, outer[pass][3]) << boxes[pass];
    }
}

TEST_F(DrawExtent, ARadialShadowLooksATexelBeyondItsLayer) {
    // One pixel at (20, 15) in a border of 10; a copy of the same size, whose blur reaches 10 pixels and two to spare.
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) input_.At8(x, y) = {0, 9, 9, 9};
    }
    input_.At8(20, 15) = {1, 0, 0, 0};
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = SHADOW_RADIAL;
    Slide(PARAM_SAMPLES, 1);
    Slide(PARAM_DISTANCE, 0);
    ASSERT_EQ(Run(), PF_Err_NONE);
    const std::vector<std::string> boxes = fake::CallsTo("glScissor");
    ASSERT_EQ(boxes.size(), 3u);
    int x = 0, y = 0, width = 0, height = 0;
    ASSERT_EQ(std::sscanf(boxes[0].c_str(), "glScissor(%d, %d, %d, %d)", &x, &y, &width, &height), 4);
    EXPECT_EQ(y, 15 + 10 - 1) << boxes[0];
    EXPECT_EQ(height, 3) << boxes[0];
    EXPECT_EQ(x, 20 + 10 - 1 - 12) << boxes[0];
    EXPECT_EQ(width, 3 + 2 * 12) << boxes[0];
}

TEST_F(DrawExtent, AnEmptyLayerIsOnlyClearedAndReadBack) {
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) input_.At8(x, y) = {0, 9, 9, 9};
    }
    for (const int type : {SHADOW_NORMAL, SHADOW_RADIAL}) {
        fake::ClearCalls();
        host_.panel[PARAM_SHADOW_TYPE].u.pd.value = type;
        ASSERT_EQ(Run(), PF_Err_NONE);
        EXPECT_EQ(Draws().size(), type == SHADOW_NORMAL ? 0u : 1u) << "the radial layer is padded first";
        EXPECT_EQ(fake::CallsTo("glReadPixels").size(), 1u);
        EXPECT_EQ(fake::CallsTo("glClear(").size(), type == SHADOW_NORMAL ? 1u : 2u);
    }
}

TEST_F(DrawExtent, ASampleWithoutOpacityIsNotDrawn) {
    Slide(PARAM_OPACITY_START, 0);
    Slide(PARAM_OPACITY_END, 0);
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Draws().empty());
    EXPECT_EQ(fake::CallsTo("glClear(").size(), 1u) << "the output all the same";
}

}  // namespace

}  // namespace umbrant::effect
