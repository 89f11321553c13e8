// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Makes a context and prints the name of what draws in it; exit code 1, with CGL's words, when none can be made.

#include <cstdio>

#include "platform/cgl_api.h"
#include "platform/gl_api.h"

int main() {
    const CGLPixelFormatAttribute attributes[] = {kCGLPFAOpenGLProfile, kCGLOGLPVersion_3_2_Core, 0};
    CGLPixelFormatObj format = nullptr;
    int32_t screens = 0;
    CGLContextObj context = nullptr;
    // Twice: a failed choice must not print its complaint again.
    CGLChoosePixelFormat(attributes, &format, &screens);
    CGLError error = CGLChoosePixelFormat(attributes, &format, &screens);
    if (error == kCGLNoError) error = CGLCreateContext(format, nullptr, &context);
    if (error == kCGLNoError) error = CGLSetCurrentContext(context);
    if (error != kCGLNoError) {
        std::printf("%s\n", CGLErrorString(error));
        return 1;
    }
    std::printf("%s\n", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    return CGLDestroyContext(context) == kCGLNoError ? 0 : 2;
}
