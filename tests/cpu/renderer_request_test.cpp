// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Who decides what draws: the host's private suite where it has one and a preference, else the platform's choice. Seen
// by whether a frame calls GL.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "hostapi/suites/umbrant_host_suite.h"
#include "platform/fake/renderer_choice_fake.h"
#include "tests/render/fake_render.h"

namespace umbrant::effect {

namespace {

constexpr char kAcquired[] = "AcquireSuite Umbrant Host Suite 1";
constexpr char kReleased[] = "ReleaseSuite Umbrant Host Suite 1";

UMBRANT_Renderer preference = UMBRANT_Renderer_ANY;
PF_Err answer = PF_Err_NONE;

PF_Err GetRenderer(PF_ProgPtr effect_ref, UMBRANT_Renderer* renderer) {
    EXPECT_EQ(effect_ref, TestHost::Current().inData.effect_ref);
    TestHost::Current().Log("GetRenderer");
    *renderer = preference;
    return answer;
}

class RendererRequest : public SmartRenderTest {
 protected:
    RendererRequest() {
        preference = UMBRANT_Renderer_ANY;
        answer = PF_Err_NONE;
    }
    void OfferSuite() { host_.Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1, &suite_); }

    /// Draws a frame; whether it was drawn by OpenGL.
    bool DrawsByGl() {
        fake::ClearCalls();
        host_.calls.clear();
        EXPECT_EQ(Run(), PF_Err_NONE);
        EXPECT_STREQ(host_.outData.return_msg, "");
        EXPECT_EQ(host_.CountOf(kAcquired), 1);
        return !fake::Calls().empty();
    }

    const UMBRANT_HostSuite1 suite_{GetRenderer};
};

TEST_F(RendererRequest, TheHostsPreferenceWins) {
    OfferSuite();
    fake::Renderer() = RendererChoice::kRefused;
    preference = UMBRANT_Renderer_PROCESSOR;
    EXPECT_FALSE(DrawsByGl());
    preference = UMBRANT_Renderer_OPENGL;
    EXPECT_TRUE(DrawsByGl()) << "each frame is asked about";
    preference = UMBRANT_Renderer_PROCESSOR;
    EXPECT_FALSE(DrawsByGl());
}

TEST_F(RendererRequest, WithoutAPreferenceThePlatformDecides) {
    OfferSuite();
    for (const UMBRANT_Renderer none :
         {UMBRANT_Renderer{UMBRANT_Renderer_ANY}, UMBRANT_Renderer{7}, UMBRANT_Renderer{-1}}) {
        preference = none;
        fake::Renderer() = RendererChoice::kProcessor;
        EXPECT_FALSE(DrawsByGl()) << none;
        fake::Renderer() = RendererChoice::kOpenGL;
        EXPECT_TRUE(DrawsByGl()) << none;
    }
}

TEST_F(RendererRequest, AHostWithoutTheSuiteSeesOneQuietQuestion) {
    preference = UMBRANT_Renderer_PROCESSOR;
    EXPECT_TRUE(DrawsByGl());
    EXPECT_EQ(host_.CountOf(kReleased), 0);
    host_.OfferNull(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1);
    EXPECT_TRUE(DrawsByGl());
    fake::Renderer() = RendererChoice::kProcessor;
    EXPECT_FALSE(DrawsByGl());
    EXPECT_EQ(host_.CountOf("GetRenderer"), 0);
    host_.suiteBalance.clear();  // a null table that was handed out is nothing to give back
}

TEST_F(RendererRequest, TheSuiteIsGivenBackBeforeAnythingIsDrawn) {
    OfferSuite();
    preference = UMBRANT_Renderer_PROCESSOR;
    EXPECT_FALSE(DrawsByGl());
    const auto at = std::find(host_.calls.begin(), host_.calls.end(), kAcquired);
    ASSERT_LT(at + 2, host_.calls.end());
    EXPECT_EQ(at[1], "GetRenderer");
    EXPECT_EQ(at[2], kReleased);
}

TEST_F(RendererRequest, OpenGLIsMissedWhereSetUpWasForTheProcessor) {
    OfferSuite();
    host_.global->context = nullptr;
    preference = UMBRANT_Renderer_OPENGL;
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_STREQ(host_.outData.return_msg, "") << "a machine without OpenGL";
    host_.global->withoutOpenGL = 1;
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_STREQ(host_.outData.return_msg,
                 "UM2 Error: the effect was set up to draw with the processor, so OpenGL is not there. Ask for OpenGL "
                 "before it is set up, or draw with the processor");
    host_.outData.return_msg[0] = '\0';
    preference = UMBRANT_Renderer_PROCESSOR;
    EXPECT_FALSE(DrawsByGl()) << "the next frame";
}

TEST_F(RendererRequest, AnErrorEndsTheFrame) {
    OfferSuite();
    preference = UMBRANT_Renderer_PROCESSOR;
    answer = RenderHost::kInjected;
    fake::ClearCalls();
    EXPECT_EQ(Run(), RenderHost::kInjected);
    EXPECT_EQ(host_.CountOf(kReleased), 1);
    EXPECT_THAT(fake::Calls(), ::testing::IsEmpty());
    EXPECT_TRUE(host_.transfers.empty());
}

}  // namespace

}  // namespace umbrant::effect
