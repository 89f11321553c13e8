// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Pre-render of layers that are collapsed: who is asked about them, and which rectangles are clamped.

#include <cstdint>

#include "tests/render/pre_render/pre_render_fixture.h"

namespace umbrant::effect {

namespace {

TEST_F(PreRenderTest, CollapsedRadialLayerIsClamped) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 3;
    Slide(PARAM_DISTANCE, 100);
    Slide(PARAM_SOFTNESS, 0);
    host_.layerFlags = 0x80;
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.result_rect, 0, 0, 40, 30);
    ExpectRect(host_.layerRequests[1].request.rect, 0, 0, 40, 30);
}

TEST_F(PreRenderTest, OneFlagBitAloneMeansCollapsed) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 3;
    Slide(PARAM_DISTANCE, 100);
    Slide(PARAM_SOFTNESS, 0);
    const auto clampedWith = [this](uint32_t flags) {
        host_.layerFlags = static_cast<AEGP_LayerFlags>(flags);
        host_.preOutput = {};
        EXPECT_EQ(Run(), PF_Err_NONE);
        const bool clamped = host_.preOutput.result_rect.right == 40;
        EXPECT_EQ(host_.preOutput.result_rect.right, clamped ? 40 : 80) << flags;
        DisposePreRenderData(host_.preOutput.pre_render_data);
        host_.preOutput.pre_render_data = nullptr;
        return clamped;
    };
    for (int bit = 0; bit < 32; ++bit) EXPECT_EQ(clampedWith(1u << bit), bit == 7) << bit;
    EXPECT_TRUE(clampedWith(0xFFFFFFFFu)) << "whatever else is set";
    EXPECT_FALSE(clampedWith(~0x80u));
}

TEST_F(PreRenderTest, CollapsedTextureIsClampedThoughTheOutputIsLarger) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 3;
    Slide(PARAM_SOFTNESS, 40);
    host_.layerFlags = AEGP_LayerFlag_COLLAPSE;
    ASSERT_EQ(Run(), PF_Err_NONE);
    ExpectRect(host_.preOutput.max_result_rect, -10, -10, 50, 40);
    ExpectRect(host_.layerRequests[1].request.rect, 0, 0, 40, 30);
}

TEST_F(PreRenderTest, OlderHostsAreNotAskedForLayerFlags) {
    const struct {
        A_short major, minor;
        int asked;
    } rows[] = {{13, 8, 0}, {13, 9, 1}, {13, 28, 1}, {12, 14, 0}, {14, 0, 1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.minor);
        host_.calls.clear();
        host_.inData.version = {row.major, row.minor};
        ASSERT_EQ(Run(), PF_Err_NONE);
        EXPECT_EQ(host_.CountOf("AEGP_GetEffectLayer"), row.asked);
        DisposePreRenderData(host_.preOutput.pre_render_data);
        host_.preOutput.pre_render_data = nullptr;
    }
}

TEST_F(PreRenderTest, LayerQuestionsFail) {
    host_.effectLayerError = RenderHost::kInjected;
    EXPECT_EQ(Run(), RenderHost::kInjected);
    host_.effectLayerError = 0;
    host_.layerFlagsError = 778;
    EXPECT_EQ(Run(), 778);
    EXPECT_EQ(host_.preOutput.pre_render_data, nullptr);
}

// A shadow and a texture that leave the composition, so that a clamp shows.
void ReachFar(RenderHost& host) {
    host.panel[PARAM_DISTANCE].u.fs_d.value = 100;
    host.panel[PARAM_SOFTNESS].u.fs_d.value = 40;
    host.preOutput = {};
    host.layerRequests.clear();
}

TEST_F(PreRenderTest, OnlyRadialShadowsOfCollapsedLayersAreClamped) {
    for (const int type : {SHADOW_NORMAL, SHADOW_INNER}) {
        SCOPED_TRACE(type);
        host_.panel[PARAM_SHADOW_TYPE].u.pd.value = type;
        PF_LRect result{}, max{}, texture{};
        for (const AEGP_LayerFlags flags : {0, 0x80}) {
            ReachFar(host_);
            host_.layerFlags = flags;
            ASSERT_EQ(Run(), PF_Err_NONE);
            if (flags != 0) {
                ExpectRect(host_.preOutput.result_rect, result.left, result.top, result.right, result.bottom);
                ExpectRect(host_.preOutput.max_result_rect, max.left, max.top, max.right, max.bottom);
                ExpectRect(host_.layerRequests[1].request.rect, texture.left, texture.top, texture.right,
                           texture.bottom);
            }
            result = host_.preOutput.result_rect;
            max = host_.preOutput.max_result_rect;
            texture = host_.layerRequests[1].request.rect;
            EXPECT_LT(texture.left, 0) << "else the test proves nothing";
            EXPECT_GT(max.bottom, 30) << "else the test proves nothing";
            DisposePreRenderData(host_.preOutput.pre_render_data);
            host_.preOutput.pre_render_data = nullptr;
        }
    }
}

TEST_F(PreRenderTest, AnEffectWithoutALayerIsNotCollapsed) {
    host_.panel[PARAM_SHADOW_TYPE].u.pd.value = SHADOW_RADIAL;
    ReachFar(host_);
    host_.noEffectLayer = true;
    host_.layerFlags = 0x80;
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(host_.CountOf("AEGP_GetEffectLayer"), 1);
    EXPECT_EQ(host_.CountOf("AEGP_GetLayerFlags"), 0) << "there is no layer to ask about";
    EXPECT_LT(host_.preOutput.result_rect.left, -10);
}

}  // namespace

}  // namespace umbrant::effect
