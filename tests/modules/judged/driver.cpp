// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A wrong module's OpenGL: a factor of 1 that goes through a one-pixel texture and back, and nothing is asked whether
// it went well.

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include "tests/modules/judged/judged.h"

float FactorFromDriver() {
    static const EGLDisplay display = [] {
        const EGLDisplay opened = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        eglInitialize(opened, nullptr, nullptr);
        return opened;
    }();
    eglBindAPI(EGL_OPENGL_API);
    const EGLContext context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    const unsigned char white[4] = {255, 255, 255, 255};
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, white);
    unsigned char read[4] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, read);
    glDeleteTextures(1, &texture);
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display, context);
    return static_cast<float>(read[0]) / 255;
}
