// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/gl_context.h"

#include "gl/context.h"
#include "platform/gl_api.h"

bool GLAvailable(const char** reason) {
    static const bool available = [] {
        CGLContextObj context = CreateContext(nullptr, nullptr);
        DeleteContext(context);
        return context != nullptr;
    }();
    *reason = available ? "" : "no OpenGL 3.3 core context can be made on this machine";
    return available;
}

void GLContextTest::SetUp() {
    const char* reason = nullptr;
    if (!GLAvailable(&reason)) GTEST_SKIP() << reason;
    context_ = CreateContext(nullptr, nullptr);
    ASSERT_NE(context_, nullptr);
    SetCurrentContext(context_);
    ASSERT_EQ(GetCurrentContext(), context_);
}

void GLContextTest::TearDown() {
    if (!context_) return;
    SetCurrentContext(context_);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    DeleteContext(context_);
}
