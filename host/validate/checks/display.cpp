// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/display.h"

#include <dlfcn.h>

namespace umbrant::host {

namespace {

// The few numbers of EGL that are needed, so that the program builds without its headers.
constexpr unsigned kPlatformSurfaceless = 0x31DD;
constexpr unsigned kOpenGlApi = 0x30A2;
constexpr int kContextMajor = 0x3098, kContextMinor = 0x30FB, kProfileMask = 0x30FD, kCoreProfile = 1, kNone = 0x3038;

/// The library's functions.
struct Functions {
    void* (*getPlatformDisplay)(unsigned platform, void* native, const void* attributes) = nullptr;
    unsigned (*initialize)(void* display, int* major, int* minor) = nullptr;
    unsigned (*bindApi)(unsigned api) = nullptr;
    void* (*createContext)(void* display, void* config, void* share, const int* attributes) = nullptr;
    unsigned (*makeCurrent)(void* display, void* draw, void* read, void* context) = nullptr;
    void* (*getCurrentContext)() = nullptr;
    bool complete = false;
};

template <typename Function>
bool Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

const Functions& Egl() {
    static const Functions functions = [] {
        Functions found;
        // Kept: open for good, as the driver's threads run on in it.
        void* library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
        found.complete = library && Find(library, "eglGetPlatformDisplay", found.getPlatformDisplay) &&
                         Find(library, "eglInitialize", found.initialize) &&
                         Find(library, "eglBindAPI", found.bindApi) &&
                         Find(library, "eglCreateContext", found.createContext) &&
                         Find(library, "eglMakeCurrent", found.makeCurrent) &&
                         Find(library, "eglGetCurrentContext", found.getCurrentContext);
        return found;
    }();
    return functions;
}

}  // namespace

std::unique_ptr<Display> Display::Open() {
    const Functions& egl = Egl();
    if (!egl.complete) return nullptr;
    std::unique_ptr<Display> display(new Display);
    display->display_ = egl.getPlatformDisplay(kPlatformSurfaceless, nullptr, nullptr);
    if (!display->display_ || !egl.initialize(display->display_, nullptr, nullptr) || !egl.bindApi(kOpenGlApi)) {
        return nullptr;
    }
    const int attributes[] = {kContextMajor, 3, kContextMinor, 3, kProfileMask, kCoreProfile, kNone};
    display->context_ = egl.createContext(display->display_, nullptr, nullptr, attributes);
    return display->context_ ? std::move(display) : nullptr;
}

void Display::MakeCurrent() const {
    Egl().bindApi(kOpenGlApi);
    Egl().makeCurrent(display_, nullptr, nullptr, context_);
}

bool Display::IsCurrent() const {
    return Egl().getCurrentContext() == context_;
}

}  // namespace umbrant::host
