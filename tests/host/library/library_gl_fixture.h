// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Effects by OpenGL, contexts that are counted, and a program's own context.

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <filesystem>
#include <iterator>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

/// Contexts that this process has made, through any library.
int MadeContexts();
/// Those that have not been destroyed.
int OpenContexts();
/// How often the calling thread has made a context current, or none.
int MadeCurrentHere();

inline umbrant::Effect GlEffect() {
    return umbrant::Effect({UMBRANT_MODULE_FILE, umbrant::Renderer::kOpenGL, false, {}});
}

inline int RunningThreads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

class LibraryGl : public testing::Test {
 protected:
    void SetUp() override {
        // The row in which the effect reports its renderer reads "NULL" where it could make no context.
        for (const umbrant::Parameter& parameter : GlEffect().Parameters()) {
            const bool isNull = !parameter.itemNames.empty() && parameter.itemNames[0] == "NULL";
            if (isNull) GTEST_SKIP() << "no OpenGL driver: the effect's GPU rows read NULL";
        }
    }
};

/// A context of the program's own, of the other kind of OpenGL, current on the calling thread while it lives.
class CallersContext {
 public:
    CallersContext() {
        const auto platformDisplay =
            reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
        display_ = platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        eglInitialize(display_, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_ES_API);
        const EGLint attributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
        context_ = eglCreateContext(display_, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_);
    }
    ~CallersContext() {
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display_, context_);
        eglBindAPI(EGL_OPENGL_API);
    }
    CallersContext(const CallersContext&) = delete;
    CallersContext& operator=(const CallersContext&) = delete;

    bool IsCurrent() const {
        return context_ != EGL_NO_CONTEXT && eglQueryAPI() == EGL_OPENGL_ES_API && eglGetCurrentContext() == context_ &&
               eglGetCurrentDisplay() == display_;
    }

 private:
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLContext context_ = EGL_NO_CONTEXT;
};

}  // namespace umbrant::host
