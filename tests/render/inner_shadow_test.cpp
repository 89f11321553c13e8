// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The inner shadow's sequence of calls without host and driver: the order of its composite, and what comes back when a
// step of it fails.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;

class InnerShadowTest : public SmartRenderTest {
 protected:
    InnerShadowTest() {
        host_.panel[PARAM_SHADOW_TYPE].u.pd.value = 2;
        host_.panel[PARAM_BLEND_MODE].u.pd.value = 11;
        host_.record = {};
        host_.record.innerGrowLeft = 13;
        host_.record.innerGrowTop = 24;
        host_.record.innerGrowRight = 7;
        host_.record.innerGrowBottom = 2;
    }
};

TEST_F(InnerShadowTest, CallsTheHostInOrder) {
    TestWorld texture(100, 20, sizeof(PF_Pixel));
    host_.texture = &texture.world;
    host_.panel[PARAM_TEXTURE_BLEND_MODE].u.pd.value = 7;
    ASSERT_EQ(Run(), PF_Err_NONE);
    std::vector<std::string> calls;
    for (const std::string& call : HostCalls()) {
        if (call.find("PF World Suite") == std::string::npos) calls.push_back(call);
    }
    EXPECT_THAT(
        calls,
        ElementsAre("checkout_layer_pixels 1", "checkout_layer_pixels 39", "checkout_output", "fill clear whole",
                    "AcquireSuite PF ColorParamSuite 1", "PF_GetFloatingPointColorFromColorDef",
                    "AcquireSuite Umbrant Host Suite 1", "AcquireSuite PF Handle Suite 2", "host_lock_handle",
                    "host_unlock_handle", "PF_GetPixelFormat", "PF_NewWorld 60 50 1", "copy whole to 13 24 53 54",
                    "host_new_handle 3000", "host_lock_handle", "AcquireSuite PF Iterate8 Suite 1", "iterate8 0 50",
                    "host_unlock_handle", "host_dispose_handle", "PF_GetPixelFormat", "PF_NewWorld 60 50 1",
                    "host_new_handle 3000", "host_lock_handle", "iterate8 0 50", "host_unlock_handle",
                    "host_dispose_handle", "AcquireSuite PF World Transform Suite 1", "transfer_rect 6",
                    "transfer_rect 2", "iterate8 0 50", "transfer_rect 5", "transfer_rect 17", "PF_DisposeWorld",
                    "PF_DisposeWorld", "checkin_layer_pixels 39", "checkin_layer_pixels 1"));
}

TEST_F(InnerShadowTest, TransfersSayWhatTheyLayWhere) {
    TestWorld texture(100, 20, sizeof(PF_Pixel));
    texture.world.origin_x = 1;
    texture.world.origin_y = 2;
    host_.texture = &texture.world;
    Slide(PARAM_SOURCE_OPACITY, 10);
    ASSERT_EQ(Run(), PF_Err_NONE);
    ASSERT_EQ(host_.transfers.size(), 4u);
    const auto& [lay, source, shadow, clip] =
        std::tie(host_.transfers[0], host_.transfers[1], host_.transfers[2], host_.transfers[3]);

    EXPECT_EQ(lay.source, &texture.world);
    EXPECT_NE(lay.destination, &output_.world);
    EXPECT_EQ(lay.mode.rgb_only, 1);
    EXPECT_EQ(lay.mode.opacity, 255);
    EXPECT_EQ(lay.area.right, 60);
    EXPECT_EQ(lay.area.bottom, 20);
    EXPECT_EQ(lay.x, 11);
    EXPECT_EQ(lay.y, 22);

    EXPECT_EQ(source.mode.xfer, PF_Xfer_IN_FRONT);
    EXPECT_EQ(source.mode.opacity, 255) << "\"Source Opacity\" has no effect here";
    EXPECT_EQ(source.x, 13);
    EXPECT_EQ(source.y, 24);
    EXPECT_EQ(source.area.right, 60);

    EXPECT_EQ(shadow.source, lay.destination);
    EXPECT_EQ(shadow.destination, &output_.world);
    EXPECT_EQ(shadow.mode.xfer, PF_Xfer_MULTIPLY);
    EXPECT_EQ(shadow.mode.opacity, 255);
    EXPECT_EQ(shadow.mode.rgb_only, 0);
    EXPECT_EQ(shadow.x, 0);
    EXPECT_EQ(shadow.y, 0);

    EXPECT_EQ(clip.source, &input_.world);
    EXPECT_EQ(clip.mode.xfer, PF_Xfer_MULTIPLY_ALPHA);
    EXPECT_EQ(clip.mode.opacity, 255);
    EXPECT_EQ(clip.mode.rgb_only, 0);
    EXPECT_EQ(clip.x, 13);
    EXPECT_EQ(clip.y, 24);
    for (const RenderHost::Transfer& t : host_.transfers) EXPECT_EQ(t.flags, PF_MF_Alpha_STRAIGHT);
}

TEST_F(InnerShadowTest, BlendModesAreTranslated) {
    const struct {
        int item;
        PF_TransferMode mode;
    } rows[] = {{1, 2},   {2, 2},  {3, 4},   {4, 6},   {5, 2},   {6, 7},   {7, 8},  {8, 9}, {9, 2},
                {10, 10}, {11, 5}, {12, 28}, {13, 24}, {14, 30}, {15, 36}, {16, 2}, {0, 2}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.item);
        host_.panel[PARAM_BLEND_MODE].u.pd.value = row.item;
        host_.transfers.clear();
        ASSERT_EQ(Run(), PF_Err_NONE);
        ASSERT_EQ(host_.transfers.size(), 3u);
        EXPECT_EQ(host_.transfers[1].mode.xfer, row.mode);
    }
}

TEST_F(InnerShadowTest, AlphaIsFullBeforeTheShadow) {
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 60; ++x) output_.At8(x, y) = {1, 2, 3, 4};
    }
    bool opaque = false;
    host_.onTransfer = [&](const RenderHost::Transfer& t) {
        if (t.mode.xfer != PF_Xfer_MULTIPLY) return;
        const PF_Pixel& p = output_.At8(59, 49);
        opaque = p.alpha == 255 && p.red == 0 && output_.At8(0, 0).alpha == 255;
    };
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(opaque);
}

TEST_F(InnerShadowTest, InvertsOnceThenDrawsThreePassesPerSample) {
    ASSERT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Draws().size(), 1u + 2 * 3);
    EXPECT_EQ(fake::CallsTo("glFinish").size(), 1u);
    EXPECT_EQ(fake::CallsTo("glClear(").size(), 1u + 5);
    EXPECT_THAT(fake::Gl().uniformValues.at("scaleW"), ElementsAre(1.0f));
    EXPECT_THAT(fake::Gl().uniformValues.at("scaleH"), ElementsAre(1.0f));
    EXPECT_THAT(fake::Gl().uniformValues.at("steps"), ElementsAre(4));
    EXPECT_THAT(fake::Gl().uniformValues.at("stride"), ElementsAre(static_cast<float>(5.0 / 4 / 50)));
    EXPECT_EQ(fake::Gl().uniformValues.at("xform").at(0), 1) << "as large as the output";
}

TEST_F(InnerShadowTest, ZeroSizedOutputIsToldAndNotComposited) {
    output_.world.width = 0;
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Message(), "UM2 Inner Error: in/out FBO too small");
    EXPECT_TRUE(host_.transfers.empty());
    output_.world.width = 60;
}

TEST_F(InnerShadowTest, ZeroSizedBuffersAreTold) {
    // A fifth of four pixels truncates to nothing.
    output_.world.width = 4;
    host_.panel[PARAM_RESOLUTION].u.pd.value = 1;
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_EQ(Message(), "UM2 Inner Error: in/out FBO too small");
    EXPECT_TRUE(host_.transfers.empty());
    output_.world.width = 60;
}

TEST_F(InnerShadowTest, NoSamplesStillShowTheLayer) {
    Slide(PARAM_SAMPLES, 0);
    EXPECT_EQ(Run(), PF_Err_NONE);
    EXPECT_TRUE(Draws().empty());
    EXPECT_EQ(host_.transfers.size(), 3u);
}

TEST_F(InnerShadowTest, FailuresComeBack) {
    const struct {
        const char* name;
        PF_Err expected;
        void (*fail)(RenderHost&);
    } rows[] = {
        {"copy", RenderHost::kInjected, [](RenderHost& h) { h.copyError = RenderHost::kInjected; }},
        {"source in front", RenderHost::kInjected, [](RenderHost& h) { h.failTransfer = 1; }},
        {"shadow", RenderHost::kInjected, [](RenderHost& h) { h.failTransfer = 2; }},
        {"clip", RenderHost::kInjected, [](RenderHost& h) { h.failTransfer = 3; }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        host_.ResetFailures();
        host_.transfers.clear();
        row.fail(host_);
        EXPECT_EQ(Run(), row.expected);
        EXPECT_EQ(static_cast<int>(host_.transfers.size()), host_.failTransfer) << "nothing after the failure";
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        EXPECT_TRUE(fake::Gl().liveTextures.empty());
        EXPECT_TRUE(fake::Gl().liveFramebuffers.empty());
    }
}

TEST_F(InnerShadowTest, FailingIterateIsReturnedAtTheAlphaFixUp) {
    static int walks;
    walks = 0;
    static PF_Iterate8Suite1 inner;
    inner = host_.iterate8Suite;
    host_.iterate8Suite.iterate = [](PF_InData* in, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area,
                                     void* refcon, PF_IteratePixel8Func fn, PF_EffectWorld* dst) -> PF_Err {
        if (++walks == 3) return 780;
        return inner.iterate(in, base, final, src, area, refcon, fn, dst);
    };
    EXPECT_EQ(Run(), 780);
    EXPECT_EQ(host_.transfers.size(), 1u);
}

TEST_F(InnerShadowTest, WorldsThatCannotBeMadeThrowTheHostsCode) {
    host_.newWorldError = 4;
    try {
        Run();
        ADD_FAILURE() << "nothing thrown";
    } catch (PF_Err err) {
        EXPECT_EQ(err, 4);
    }
}

TEST_F(InnerShadowTest, MissingWorldSuiteThrows13) {
    host_.Refuse("PF World Suite");
    try {
        Run();
        ADD_FAILURE() << "nothing thrown";
    } catch (PF_Err err) {
        EXPECT_EQ(err, 13);
    }
    host_.Allow("PF World Suite");
}

TEST_F(InnerShadowTest, BuffersThatCannotBeHad) {
    for (int bad = 0; bad < 6; ++bad) {
        SCOPED_TRACE(bad);
        fake::Gl().framebufferStatus.assign(static_cast<size_t>(bad), GL_FRAMEBUFFER_COMPLETE);
        fake::Gl().framebufferStatus.push_back(GL_FRAMEBUFFER_UNSUPPORTED);
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        fake::Gl().framebufferStatus.clear();
        EXPECT_TRUE(host_.transfers.empty());
    }
}

TEST_F(InnerShadowTest, NoMemoryForTheTransferBuffers) {
    for (int call : {1, 2}) {
        SCOPED_TRACE(call);
        host_.RestartCounts();
        host_.failNewHandle = call;
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        EXPECT_TRUE(host_.transfers.empty());
        EXPECT_TRUE(host_.Balanced());
    }
}

TEST_F(InnerShadowTest, SixteenBitsAreRefused) {
    host_.renderInput.bitdepth = 16;
    EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
    EXPECT_EQ(Message().rfind("Init world called on PF_EffectWorld of incompatible depth, likely 16bpc", 0), 0u);
}

}  // namespace

}  // namespace umbrant::effect
