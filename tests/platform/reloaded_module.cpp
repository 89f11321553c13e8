// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Draws a pixel whenever it is asked to, and on request leaves a context to the end of the calling thread.

#include "platform/cgl_api.h"
#include "platform/gl_api.h"

namespace {

CGLContextObj NewContext() {
    const CGLPixelFormatAttribute attributes[] = {kCGLPFAOpenGLProfile, kCGLOGLPVersion_3_2_Core, 0};
    CGLPixelFormatObj format = nullptr;
    int32_t screens = 0;
    CGLContextObj context = nullptr;
    CGLChoosePixelFormat(attributes, &format, &screens);
    CGLCreateContext(format, nullptr, &context);
    return context;
}

struct ThreadContext {
    CGLContextObj context = nullptr;
    ~ThreadContext() {
        if (!context) return;
        CGLSetCurrentContext(context);
        GLuint buffer = 0;
        glGenBuffers(1, &buffer);
        glDeleteBuffers(1, &buffer);
        CGLDestroyContext(context);
    }
};
thread_local ThreadContext threadContext;

}  // namespace

/// The red byte of a cleared pixel: 255 when all went well, -1 without a context. `keep`: to the end of the thread.
extern "C" __attribute__((visibility("default"))) int DrawPixel(int keep) {
    // Touched before the platform layer's own thread state, and therefore destroyed after it.
    ThreadContext* kept = keep ? &threadContext : nullptr;
    CGLContextObj context = NewContext();
    if (!context || CGLSetCurrentContext(context) != kCGLNoError) return -1;
    GLuint texture = 0;
    GLuint framebuffer = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    unsigned char pixel[4] = {};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    if (kept && !kept->context) {
        kept->context = context;
    } else {
        CGLDestroyContext(context);
    }
    return pixel[0];
}
