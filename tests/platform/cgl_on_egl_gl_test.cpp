// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// CGL's calls on this machine's EGL.

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "platform/cgl_api.h"
#include "platform/gl_api.h"

namespace umbrant::effect {

namespace {

CGLContextObj Make(CGLContextObj share = nullptr) {
    const CGLPixelFormatAttribute attributes[] = {kCGLPFAOpenGLProfile, kCGLOGLPVersion_3_2_Core, 0};
    CGLPixelFormatObj format = nullptr;
    int32_t screens = 0;
    CGLContextObj context = nullptr;
    CGLChoosePixelFormat(attributes, &format, &screens);
    CGLCreateContext(format, share, &context);
    return context;
}

class CglOnEgl : public ::testing::Test {
 protected:
    void SetUp() override {
        context_ = Make();
        if (!context_) GTEST_SKIP() << "no OpenGL 3.3 core context can be made on this machine";
    }
    void TearDown() override {
        if (context_) CGLReleaseContext(context_);
    }
    CGLContextObj context_ = nullptr;
};

GLint Integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

TEST_F(CglOnEgl, ContextsAre33CoreAtLeast) {
    ASSERT_EQ(CGLSetCurrentContext(context_), kCGLNoError);
    EXPECT_GE(Integer(GL_MAJOR_VERSION) * 10 + Integer(GL_MINOR_VERSION), 33);
    EXPECT_EQ(Integer(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_NE(std::string(reinterpret_cast<const char*>(glGetString(GL_RENDERER))), "");
}

struct AttributeCase {
    const char* name;
    std::vector<CGLPixelFormatAttribute> attributes;
    CGLError error;
};

TEST_F(CglOnEgl, PixelFormatsOtherThanTheCoreProfileAreRefused) {
    const AttributeCase rows[] = {{"3.2 core", {99, 0x3200, 0}, kCGLNoError},
                                  {"nothing asked: CGL would mean its legacy profile", {0}, kCGLBadPixelFormat},
                                  {"legacy", {99, 0x1000, 0}, kCGLBadValue},
                                  {"an unknown attribute", {73, 99, 0x3200, 0}, kCGLBadAttribute}};
    for (const AttributeCase& row : rows) {
        SCOPED_TRACE(row.name);
        CGLPixelFormatObj format = nullptr;
        int32_t screens = -1;
        EXPECT_EQ(CGLChoosePixelFormat(row.attributes.data(), &format, &screens), row.error);
        EXPECT_EQ(format != nullptr, row.error == kCGLNoError);
        EXPECT_EQ(screens, row.error == kCGLNoError ? 1 : 0);
    }
    EXPECT_EQ(CGLChoosePixelFormat(nullptr, nullptr, nullptr), kCGLBadAddress);
}

TEST_F(CglOnEgl, AContextOfTheHostsIsGivenAndPutBack) {
    // Another owner's context on the same display, made current behind this layer's back.
    ASSERT_EQ(CGLSetCurrentContext(context_), kCGLNoError);
    const EGLDisplay display = eglGetCurrentDisplay();
    ASSERT_EQ(CGLSetCurrentContext(nullptr), kCGLNoError);
    ASSERT_TRUE(eglBindAPI(EGL_OPENGL_API));
    const EGLContext host = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
    ASSERT_NE(host, EGL_NO_CONTEXT);
    ASSERT_TRUE(eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, host));

    const CGLContextObj remembered = CGLGetCurrentContext();
    ASSERT_NE(remembered, nullptr);
    EXPECT_EQ(CGLSetCurrentContext(context_), kCGLNoError);
    EXPECT_EQ(CGLGetCurrentContext(), context_);
    EXPECT_NE(eglGetCurrentContext(), host);
    EXPECT_EQ(CGLSetCurrentContext(remembered), kCGLNoError);
    EXPECT_EQ(eglGetCurrentContext(), host);

    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display, host);
    EXPECT_EQ(CGLGetCurrentContext(), nullptr);
}

TEST_F(CglOnEgl, CreationNeedsAFormatAndALiveShare) {
    CGLContextObj context = context_;
    EXPECT_EQ(CGLCreateContext(nullptr, nullptr, &context), kCGLBadPixelFormat);
    EXPECT_EQ(context, nullptr);
    CGLContextObj dead = Make();
    CGLReleaseContext(dead);
    EXPECT_EQ(Make(dead), nullptr);
    EXPECT_EQ(CGLCreateContext(nullptr, nullptr, nullptr), kCGLBadAddress);
}

TEST_F(CglOnEgl, ReferencesAreCounted) {
    CGLContextObj context = Make();
    EXPECT_EQ(CGLRetainContext(context), context);
    EXPECT_EQ(CGLRetainContext(nullptr), nullptr);
    CGLReleaseContext(context);
    EXPECT_EQ(CGLSetCurrentContext(context), kCGLNoError) << "one reference is left";
    EXPECT_EQ(CGLDestroyContext(context), kCGLNoError);
    EXPECT_EQ(CGLGetCurrentContext(), nullptr) << "the last reference to the current context";
    EXPECT_EQ(CGLDestroyContext(context), kCGLBadContext);
    EXPECT_EQ(CGLDestroyContext(nullptr), kCGLBadContext);
    EXPECT_EQ(CGLSetCurrentContext(context), kCGLBadContext);
}

TEST_F(CglOnEgl, DestroyingAnotherContextLeavesTheCurrentOne) {
    CGLContextObj other = Make();
    CGLSetCurrentContext(context_);
    CGLDestroyContext(other);
    EXPECT_EQ(CGLGetCurrentContext(), context_);
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
}

TEST_F(CglOnEgl, ContextsKeepTheirObjectsApartUnlessShared) {
    CGLSetCurrentContext(context_);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    CGLContextObj apart = Make();
    CGLSetCurrentContext(apart);
    EXPECT_FALSE(glIsTexture(texture));
    CGLContextObj shared = Make(context_);
    CGLSetCurrentContext(shared);
    EXPECT_TRUE(glIsTexture(texture));
    CGLDestroyContext(shared);
    CGLDestroyContext(apart);
}

TEST_F(CglOnEgl, StateSurvivesSwitching) {
    CGLSetCurrentContext(context_);
    glClearColor(0.25f, 0.5f, 0.75f, 1);
    CGLContextObj other = Make();
    CGLSetCurrentContext(other);
    glClearColor(1, 1, 1, 1);
    CGLSetCurrentContext(nullptr);
    EXPECT_EQ(CGLGetCurrentContext(), nullptr);
    CGLSetCurrentContext(context_);
    float colour[4] = {};
    glGetFloatv(GL_COLOR_CLEAR_VALUE, colour);
    EXPECT_FLOAT_EQ(colour[0], 0.25f);
    CGLDestroyContext(other);
}

TEST_F(CglOnEgl, TwoThreadsHaveContextsAtOnce) {
    CGLSetCurrentContext(context_);
    std::thread([this] {
        EXPECT_EQ(CGLGetCurrentContext(), nullptr) << "the current context is the thread's own";
        EXPECT_EQ(CGLSetCurrentContext(context_), kCGLBadState) << "another thread has it";
        CGLContextObj own = Make();
        EXPECT_EQ(CGLSetCurrentContext(own), kCGLNoError);
        EXPECT_EQ(CGLGetCurrentContext(), own);
        EXPECT_NE(glGetString(GL_VERSION), nullptr);
        CGLDestroyContext(own);
    }).join();
    EXPECT_EQ(CGLGetCurrentContext(), context_);
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
}

TEST_F(CglOnEgl, AThreadThatEndsGivesItsCurrentContextFree) {
    std::thread([this] { EXPECT_EQ(CGLSetCurrentContext(context_), kCGLNoError); }).join();
    EXPECT_EQ(CGLSetCurrentContext(context_), kCGLNoError);
}

TEST_F(CglOnEgl, AContextDestroyedElsewhereWhileCurrentGoesWhenItIsLeft) {
    CGLContextObj other = Make();
    CGLSetCurrentContext(other);
    std::thread([other] { CGLReleaseContext(other); }).join();
    EXPECT_EQ(CGLGetCurrentContext(), other);
    EXPECT_EQ(CGLSetCurrentContext(context_), kCGLNoError);
    EXPECT_EQ(CGLSetCurrentContext(other), kCGLBadContext);
}

/// An owner that is made before and destroyed after the platform layer's own thread state.
struct Owner {
    CGLContextObj context = nullptr;
    CGLError* result = nullptr;
    ~Owner() {
        if (!context) return;
        *result = CGLSetCurrentContext(context);
        if (!glGetString(GL_VERSION)) *result = kCGLBadState;
        CGLReleaseContext(context);
        if (CGLGetCurrentContext()) *result = kCGLBadContext;
    }
};
thread_local Owner owner;

TEST_F(CglOnEgl, AnOwnerMayStillUseItsContextAtTheEndOfItsThread) {
    CGLError result = -1;
    std::thread([&result] {
        owner.result = &result;
        owner.context = Make();
        CGLSetCurrentContext(owner.context);
    }).join();
    EXPECT_EQ(result, kCGLNoError);
}

}  // namespace

}  // namespace umbrant::effect
