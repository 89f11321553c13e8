// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A whole render with neither host nor driver, in which something fails: what the effect returns, what it reports, and
// that nothing stays open.

#include "render/smart_render.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/render/fake_render.h"
#include "tests/support/thrown_code.h"

namespace umbrant::effect {

namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST_F(SmartRenderTest, SixteenBitsAreRefused) {
    host_.renderInput.bitdepth = 16;
    EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
    EXPECT_THAT(Message(), StartsWith("Init world called on PF_EffectWorld of incompatible depth, likely 16bpc"));
    EXPECT_TRUE(host_.transfers.empty());
}

TEST_F(SmartRenderTest, UploadFailuresAreOutOfMemory) {
    host_.failNewHandle = 1;
    EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
    host_.failNewHandle = 0;
    host_.iterateError = 777;
    EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY) << "the upload's own error is not passed on";
    EXPECT_TRUE(host_.transfers.empty());
}

TEST_F(SmartRenderTest, ReadBackFailuresArePassedOn) {
    host_.failNewHandle = 2;
    EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
    host_.failNewHandle = 0;

    // Fails from the second walk on: the read-back's.
    static int walks;
    walks = 0;
    static PF_Iterate8Suite1 inner;
    inner = host_.iterate8Suite;
    host_.iterate8Suite.iterate = [](PF_InData* in, A_long base, A_long final, PF_EffectWorld* src, const PF_Rect* area,
                                     void* refcon, PF_IteratePixel8Func fn, PF_EffectWorld* dst) -> PF_Err {
        if (++walks == 2) return 779;
        return inner.iterate(in, base, final, src, area, refcon, fn, dst);
    };
    EXPECT_EQ(Run(), 779);
    EXPECT_TRUE(host_.transfers.empty());
}

TEST_F(SmartRenderTest, IncompleteFramebufferIsOutOfMemory) {
    for (int bad = 0; bad < 5; ++bad) {
        SCOPED_TRACE(bad);
        fake::Gl().framebufferStatus.assign(static_cast<size_t>(bad), GL_FRAMEBUFFER_COMPLETE);
        fake::Gl().framebufferStatus.push_back(GL_FRAMEBUFFER_UNSUPPORTED);
        fake::ClearCalls();
        EXPECT_EQ(Run(), PF_Err_OUT_OF_MEMORY);
        EXPECT_TRUE(Draws().empty());
        EXPECT_EQ(fake::CallsTo("glCheckFramebufferStatus").size(), 5u) << "every init is attempted";
        fake::Gl().framebufferStatus.clear();
    }
    EXPECT_THAT(Message(), HasSubstr("FBO bad, res: "));
}

TEST_F(SmartRenderTest, WithoutThreadStateTheFrameFails) {
    DeleteContext(host_.global->context);
    host_.global->context = nullptr;
    Soil();
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_TRUE(Transparent());
    EXPECT_EQ(local_render_data, nullptr);
}

TEST_F(SmartRenderTest, NullContextIsNeverTriedAgain) {
    fake::Cgl().createError = kCGLBadAlloc;
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    fake::Cgl().createError = kCGLNoError;
    fake::ClearCalls();
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_TRUE(fake::CallsTo("CGLCreateContext").empty());
}

TEST_F(SmartRenderTest, InAForkedChildOpenGLIsRefusedAtOnce) {
    fake::Cgl().lostByFork = true;
    fake::ClearCalls();
    Soil();
    EXPECT_EQ(Run(), PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(
        Message(),
        "UM2 Error: this process was forked from one that uses OpenGL, which does not work in it. Fork before the "
        "effect is set up, start a new program, or draw with the processor");
    EXPECT_TRUE(fake::Calls().empty()) << fake::Calls().front();
    EXPECT_TRUE(Transparent());
    EXPECT_TRUE(host_.transfers.empty());
}

TEST_F(SmartRenderTest, HostErrorsComeBackAsTheyAre) {
    const struct {
        const char* name;
        void (*fail)(RenderHost&);
    } rows[] = {
        {"parameter checkout", [](RenderHost& h) { h.failCheckoutParam = 20; }},
        {"parameter checkin", [](RenderHost& h) { h.failCheckinParam = 20; }},
        {"input pixels", [](RenderHost& h) { h.failCheckoutPixels = 1; }},
        {"texture pixels", [](RenderHost& h) { h.failCheckoutPixels = 2; }},
        {"output", [](RenderHost& h) { h.checkoutOutputError = RenderHost::kInjected; }},
        {"fill", [](RenderHost& h) { h.fillError = RenderHost::kInjected; }},
        {"colour", [](RenderHost& h) { h.colourError = RenderHost::kInjected; }},
        {"layer checkin", [](RenderHost& h) { h.checkinPixelsError = RenderHost::kInjected; }},
        {"transfer", [](RenderHost& h) { h.failTransfer = 1; }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        host_.ResetFailures();
        row.fail(host_);
        EXPECT_EQ(Run(), RenderHost::kInjected);
        EXPECT_EQ(host_.layersOut, 0);
        EXPECT_EQ(host_.paramsOut, 0);
        EXPECT_TRUE(host_.Balanced());
    }
}

TEST_F(SmartRenderTest, MissingSuitesThrow516AndLeakNothing) {
    for (const char* name :
         {"PF ColorParamSuite", "PF Handle Suite", "PF Iterate8 Suite", "PF World Transform Suite"}) {
        SCOPED_TRACE(name);
        host_.Refuse(name);
        try {
            Run();
            ADD_FAILURE() << "nothing thrown";
        } catch (PF_Err err) {
            EXPECT_EQ(err, 516);
        }
        host_.Allow(name);
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        EXPECT_EQ(host_.layersOut, 0);
        EXPECT_TRUE(fake::Gl().liveTextures.empty());
        EXPECT_TRUE(fake::Gl().liveFramebuffers.empty());
    }
    host_.inData.pica_basicP = nullptr;
    EXPECT_EQ(ThrownBy([&] { Run(); }), 516);
}

}  // namespace

}  // namespace umbrant::effect
