// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The fake itself: what the other tests take for granted.

#include "platform/fake/cgl_fake.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "platform/fake/call_log.h"
#include "platform/fake/gl_fake.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;

class CglFake : public ::testing::Test {
 protected:
    void SetUp() override {
        CGLSetCurrentContext(nullptr);
        fake::Reset();
    }
    CGLContextObj Make() {
        const CGLPixelFormatAttribute attributes[] = {99, 0x3200, 0};
        CGLPixelFormatObj format = nullptr;
        int32_t screens = 0;
        CGLContextObj context = nullptr;
        CGLChoosePixelFormat(attributes, &format, &screens);
        CGLCreateContext(format, nullptr, &context);
        return context;
    }
};

TEST_F(CglFake, CountsReferences) {
    CGLContextObj context = Make();
    EXPECT_EQ(fake::Cgl().liveReferences, 1);
    CGLRetainContext(context);
    EXPECT_EQ(fake::Cgl().liveReferences, 2);
    CGLReleaseContext(context);
    EXPECT_EQ(fake::Cgl().liveContexts, 1);
    EXPECT_EQ(CGLDestroyContext(context), kCGLNoError);
    EXPECT_EQ(fake::Cgl().liveContexts, 0);
    EXPECT_EQ(CGLDestroyContext(context), kCGLBadContext);
    EXPECT_EQ(CGLSetCurrentContext(context), kCGLBadContext);
}

TEST_F(CglFake, TheLastReferenceLeavesNoneCurrent) {
    CGLContextObj context = Make();
    CGLSetCurrentContext(context);
    CGLDestroyContext(context);
    EXPECT_EQ(CGLGetCurrentContext(), nullptr);
}

TEST_F(CglFake, CurrentIsPerThread) {
    CGLContextObj context = Make();
    CGLSetCurrentContext(context);
    std::thread([] { EXPECT_EQ(CGLGetCurrentContext(), nullptr); }).join();
    EXPECT_EQ(CGLGetCurrentContext(), context);
}

TEST_F(CglFake, CountsGLCallsOutsideAnyContext) {
    glFinish();
    EXPECT_EQ(fake::Gl().callsWithoutContext, 1);
    CGLSetCurrentContext(Make());
    glFinish();
    EXPECT_EQ(fake::Gl().callsWithoutContext, 1);
}

TEST_F(CglFake, ScriptedGLAnswersComeInOrderAndThenEnd) {
    fake::Gl().errors = {GL_INVALID_ENUM, GL_INVALID_VALUE};
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    fake::Gl().framebufferStatus = {GL_FRAMEBUFFER_UNSUPPORTED};
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_UNSUPPORTED));
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
    EXPECT_EQ(glGetString(GL_RENDERER), nullptr);
    fake::Gl().strings[GL_RENDERER] = "a renderer";
    EXPECT_STREQ(reinterpret_cast<const char*>(glGetString(GL_RENDERER)), "a renderer");
}

TEST_F(CglFake, UniformValuesAreKeptByName) {
    glUniform1f(glGetUniformLocation(1, "opacity"), 0.5f);
    glUniform1i(glGetUniformLocation(1, "steps"), 7);
    EXPECT_THAT(fake::Gl().uniformValues["opacity"], ElementsAre(0.5));
    EXPECT_THAT(fake::Gl().uniformValues["steps"], ElementsAre(7));
}

TEST_F(CglFake, ReadPixelsHonoursThePackRowLength) {
    fake::Gl().readPixels = {1, 2, 3, 4};
    glPixelStorei(GL_PACK_ROW_LENGTH, 3);
    unsigned char bytes[6] = {9, 9, 9, 9, 9, 9};
    glReadPixels(0, 0, 2, 2, GL_RED, GL_UNSIGNED_BYTE, bytes);
    EXPECT_THAT(bytes, ElementsAre(1, 2, 9, 3, 4, 9));
}

TEST(CglWords, AreCGLs) {
    const struct {
        CGLError error;
        const char* words;
    } rows[] = {{0, "no error"},
                {10000, "invalid pixel format attribute"},
                {10001, "invalid renderer property"},
                {10002, "invalid pixel format"},
                {10003, "invalid renderer info"},
                {10004, "invalid context"},
                {10005, "invalid drawable"},
                {10006, "invalid graphics device"},
                {10007, "invalid context state"},
                {10008, "invalid numerical value"},
                {10009, "invalid share context"},
                {10010, "invalid enumerant"},
                {10011, "invalid offscreen drawable"},
                {10012, "invalid fullscreen drawable"},
                {10013, "invalid window"},
                {10014, "invalid memory address"},
                {10015, "invalid code module"},
                {10016, "invalid memory allocation"},
                {10017, "invalid CoreGraphics connection"},
                {-1, "unknown error"},
                {10018, "unknown error"}};
    for (const auto& row : rows) EXPECT_STREQ(CGLErrorString(row.error), row.words) << row.error;
}

}  // namespace

}  // namespace umbrant::effect
