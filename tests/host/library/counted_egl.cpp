// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The module's calls to EGL pass through these functions of the test program, which count them and go on to the
// library.

#include <EGL/egl.h>
#include <dlfcn.h>

#include <atomic>

#include "tests/host/library/library_gl_fixture.h"

namespace umbrant::host {

namespace {

std::atomic<int> made = 0;
std::atomic<int> open = 0;
thread_local int madeCurrent = 0;

}  // namespace

int MadeContexts() {
    return made;
}

int OpenContexts() {
    return open;
}

int MadeCurrentHere() {
    return madeCurrent;
}

#define COUNTED extern "C" __attribute__((visibility("default")))

/// The library's own function. The module's library is nobody else's, so it is asked for by name.
template <typename Function>
Function OfLibrary(Function, const char* name) {
    static void* const library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function>(dlsym(library, name));
}

COUNTED EGLContext EGLAPIENTRY eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                                const EGLint* attributes) {
    static const auto driver = OfLibrary(&eglCreateContext, "eglCreateContext");
    const EGLContext context = driver(display, config, share, attributes);
    if (context != EGL_NO_CONTEXT) {
        ++made;
        ++open;
    }
    return context;
}

COUNTED EGLBoolean EGLAPIENTRY eglDestroyContext(EGLDisplay display, EGLContext context) {
    static const auto driver = OfLibrary(&eglDestroyContext, "eglDestroyContext");
    --open;
    return driver(display, context);
}

COUNTED EGLBoolean EGLAPIENTRY eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                                              EGLContext context) {
    static const auto driver = OfLibrary(&eglMakeCurrent, "eglMakeCurrent");
    ++madeCurrent;
    return driver(display, draw, read, context);
}

}  // namespace umbrant::host
