// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The few calls of EGL and OpenGL by which a driver says that something went wrong, on their way from a module. What is
// not made to fail goes to the driver.

#include <dlfcn.h>

#include <atomic>
#include <cstring>

#include "host/validate/shim/shim_control.h"

#define SHIM_EXPORT extern "C" __attribute__((visibility("default")))

// The numbers and types that are needed, so that the program builds without a driver's headers.
using GLenum = unsigned;
using GLuint = unsigned;
using GLint = int;
using GLsizei = int;
using EGLBoolean = unsigned;

namespace {

constexpr GLenum kCompileStatus = 0x8B81, kLinkStatus = 0x8B82, kFramebufferUnsupported = 0x8CDD, kOutOfMemory = 0x0505,
                 kMaxTextureSize = 0x0D33, kGuiltyReset = 0x8253;
constexpr GLint kSmallTexture = 8;

std::atomic<int> fault{SHIM_NONE};
std::atomic<long> met{0};
std::atomic<bool> outOfMemoryPending{false};

/// Whether the driver is to fail so now; counts the calls that are about it.
bool Is(ShimFault wanted) {
    if (fault != wanted) return false;
    ++met;
    return true;
}

/// The driver's own function, in whichever library has it.
void* Real(const char* name) {
    static constexpr const char* kLibraries[] = {"libOpenGL.so.0", "libGL.so.1", "libEGL.so.1", "libGLESv2.so.2"};
    for (const char* library : kLibraries) {
        void* handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
        if (!handle) continue;
        void* found = dlsym(handle, name);
        dlclose(handle);
        if (found) return found;
    }
    return nullptr;
}

template <typename Function>
Function Driver(const char* name) {
    return reinterpret_cast<Function>(Real(name));
}

}  // namespace

SHIM_EXPORT void umbrantShimSetFault(int wanted) {
    fault = wanted;
    met = 0;
    outOfMemoryPending = false;
}
SHIM_EXPORT long umbrantShimCountFaults() {
    return met;
}

SHIM_EXPORT void* eglCreateContext(void* display, void* config, void* share, const int* attributes) {
    if (Is(SHIM_NO_CONTEXT)) return nullptr;
    return Driver<void* (*)(void*, void*, void*, const int*)>("eglCreateContext")(display, config, share, attributes);
}
SHIM_EXPORT EGLBoolean eglMakeCurrent(void* display, void* draw, void* read, void* context) {
    // A thread may always let go of its context.
    if (context && Is(SHIM_LOST_CONTEXT)) return 0;
    return Driver<EGLBoolean (*)(void*, void*, void*, void*)>("eglMakeCurrent")(display, draw, read, context);
}
SHIM_EXPORT void glGetShaderiv(GLuint shader, GLenum name, GLint* value) {
    Driver<void (*)(GLuint, GLenum, GLint*)>("glGetShaderiv")(shader, name, value);
    if (name == kCompileStatus && Is(SHIM_COMPILE_FAILS)) *value = 0;
}
SHIM_EXPORT void glGetProgramiv(GLuint program, GLenum name, GLint* value) {
    Driver<void (*)(GLuint, GLenum, GLint*)>("glGetProgramiv")(program, name, value);
    if (name == kLinkStatus && Is(SHIM_LINK_FAILS)) *value = 0;
}
SHIM_EXPORT GLenum glCheckFramebufferStatus(GLenum target) {
    if (Is(SHIM_INCOMPLETE_FRAMEBUFFER)) return kFramebufferUnsupported;
    return Driver<GLenum (*)(GLenum)>("glCheckFramebufferStatus")(target);
}
SHIM_EXPORT void glTexImage2D(GLenum target, GLint level, GLint format, GLsizei width, GLsizei height, GLint border,
                              GLenum pixelFormat, GLenum type, const void* pixels) {
    if (Is(SHIM_OUT_OF_MEMORY)) {
        outOfMemoryPending = true;
        return;
    }
    Driver<void (*)(GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum, const void*)>("glTexImage2D")(
        target, level, format, width, height, border, pixelFormat, type, pixels);
}
SHIM_EXPORT GLenum glGetError() {
    if (outOfMemoryPending.exchange(false)) return kOutOfMemory;
    return Driver<GLenum (*)()>("glGetError")();
}
SHIM_EXPORT void glGetIntegerv(GLenum name, GLint* value) {
    Driver<void (*)(GLenum, GLint*)>("glGetIntegerv")(name, value);
    if (name == kMaxTextureSize && Is(SHIM_SMALL_TEXTURES)) *value = kSmallTexture;
}
SHIM_EXPORT void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type,
                              void* pixels) {
    if (Is(SHIM_LOST_CONTEXT)) return;
    Driver<void (*)(GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, void*)>("glReadPixels")(x, y, width, height, format,
                                                                                            type, pixels);
}
SHIM_EXPORT GLenum glGetGraphicsResetStatus() {
    if (Is(SHIM_LOST_CONTEXT)) return kGuiltyReset;
    const auto real = Driver<GLenum (*)()>("glGetGraphicsResetStatus");
    return real ? real() : 0;
}

/// Modules that look their functions up get the same ones.
SHIM_EXPORT void* eglGetProcAddress(const char* name) {
    static const struct {
        const char* name;
        void* function;
    } kOurs[] = {{"eglCreateContext", reinterpret_cast<void*>(eglCreateContext)},
                 {"eglMakeCurrent", reinterpret_cast<void*>(eglMakeCurrent)},
                 {"glGetShaderiv", reinterpret_cast<void*>(glGetShaderiv)},
                 {"glGetProgramiv", reinterpret_cast<void*>(glGetProgramiv)},
                 {"glCheckFramebufferStatus", reinterpret_cast<void*>(glCheckFramebufferStatus)},
                 {"glTexImage2D", reinterpret_cast<void*>(glTexImage2D)},
                 {"glGetError", reinterpret_cast<void*>(glGetError)},
                 {"glGetIntegerv", reinterpret_cast<void*>(glGetIntegerv)},
                 {"glReadPixels", reinterpret_cast<void*>(glReadPixels)},
                 {"glGetGraphicsResetStatus", reinterpret_cast<void*>(glGetGraphicsResetStatus)}};
    for (const auto& ours : kOurs) {
        if (std::strcmp(ours.name, name) == 0) return ours.function;
    }
    return Driver<void* (*)(const char*)>("eglGetProcAddress")(name);
}
