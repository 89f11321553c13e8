// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "platform/linux/egl_target.h"

#include <EGL/eglext.h>
#include <dlfcn.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "platform/gl_api.h"

namespace umbrant::effect {

namespace {

enum class Preference { kAny, kSoftware, kHardware, kRefused };

Preference ReadPreference() {
    const char* value = std::getenv("UMBRANT_GL");
    if (!value || *value == '\0') return Preference::kAny;
    if (std::strcmp(value, "software") == 0) return Preference::kSoftware;
    if (std::strcmp(value, "hardware") == 0) return Preference::kHardware;
    std::fprintf(stderr, "UMBRANT_GL is \"%s\"; it must be \"software\" or \"hardware\"\n", value);
    return Preference::kRefused;
}

bool HasExtension(const char* list, const char* name) {
    if (!list) return false;
    const size_t length = std::strlen(name);
    for (const char* at = list; (at = std::strstr(at, name)) != nullptr; at += length) {
        const bool starts = at == list || at[-1] == ' ';
        const bool ends = at[length] == ' ' || at[length] == '\0';
        if (starts && ends) return true;
    }
    return false;
}

template <typename Function>
Function Load(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

/// The calling thread's EGL state, put back at the end of the scope: the thread may belong to a host that draws itself.
class RestoredThread {
 public:
    RestoredThread()
        : api_(eglQueryAPI()),
          display_(eglGetCurrentDisplay()),
          context_(eglGetCurrentContext()),
          draw_(eglGetCurrentSurface(EGL_DRAW)),
          read_(eglGetCurrentSurface(EGL_READ)) {}
    ~RestoredThread() {
        if (context_ != EGL_NO_CONTEXT) eglMakeCurrent(display_, draw_, read_, context_);
        eglBindAPI(api_);
    }
    RestoredThread(const RestoredThread&) = delete;
    RestoredThread& operator=(const RestoredThread&) = delete;

 private:
    EGLenum api_;
    EGLDisplay display_;
    EGLContext context_;
    EGLSurface draw_;
    EGLSurface read_;
};

bool PrepareDisplay(EGLDisplay display, EglTarget* target) {
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) return false;
    const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
    if (!HasExtension(extensions, "EGL_KHR_surfaceless_context")) return false;
    if (!eglBindAPI(EGL_OPENGL_API)) return false;
    target->display = display;
    target->config = EGL_NO_CONFIG_KHR;
    if (HasExtension(extensions, "EGL_KHR_no_config_context")) return true;
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, EGL_DONT_CARE, EGL_NONE};
    EGLint count = 0;
    return eglChooseConfig(display, wanted, &target->config, 1, &count) && count == 1;
}

bool IsSoftwareRenderer(const char* renderer) {
    for (const char* word : {"llvmpipe", "softpipe", "swrast", "Software Rasterizer"}) {
        if (std::strstr(renderer, word)) return true;
    }
    return false;
}

// Whether the display gives a context that can be made current, drawn by the wanted kind of renderer. A device that is
// not marked as software may still be software, for lack of a driver; its renderer's name shows it.
bool Works(EGLDisplay display, Preference kind, EglTarget* target) {
    if (!PrepareDisplay(display, target)) return false;
    const EGLContext context = MakeCoreContext(*target, EGL_NO_CONTEXT);
    if (context == EGL_NO_CONTEXT) return false;
    bool works = false;
    if (MakeCurrent(*target, context)) {
        const auto* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        works =
            renderer && (kind == Preference::kAny || IsSoftwareRenderer(renderer) == (kind == Preference::kSoftware));
        MakeCurrent(*target, EGL_NO_CONTEXT);
    }
    eglDestroyContext(display, context);
    return works;
}

std::vector<EGLDeviceEXT> Devices() {
    const auto queryDevices = Load<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    EGLint count = 0;
    if (!queryDevices || !queryDevices(0, nullptr, &count) || count < 1) return {};
    std::vector<EGLDeviceEXT> devices(static_cast<size_t>(count));
    if (!queryDevices(count, devices.data(), &count)) return {};
    devices.resize(static_cast<size_t>(count));
    return devices;
}

bool FindDevice(Preference kind, EglTarget* target) {
    const char* client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto queryString = Load<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    const auto platformDisplay = Load<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    if (!HasExtension(client, "EGL_EXT_platform_device") || !queryString || !platformDisplay) return false;
    for (EGLDeviceEXT device : Devices()) {
        const bool software = HasExtension(queryString(device, EGL_EXTENSIONS), "EGL_MESA_device_software");
        if (software != (kind == Preference::kSoftware)) continue;
        if (Works(platformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr), kind, target)) return true;
    }
    return false;
}

bool FindSurfaceless(Preference kind, EglTarget* target) {
    const char* client = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto platformDisplay = Load<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    if (!HasExtension(client, "EGL_MESA_platform_surfaceless") || !platformDisplay) return false;
    return Works(platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr), kind, target);
}

bool FindTarget(EglTarget* target) {
    static const Preference preference = ReadPreference();
    if (preference == Preference::kRefused) return false;
    const RestoredThread restored;
    if (preference != Preference::kSoftware && FindDevice(Preference::kHardware, target)) return true;
    if (preference == Preference::kHardware) return false;
    return FindDevice(Preference::kSoftware, target) || FindSurfaceless(preference, target);
}

// A driver keeps threads, an open display and what it does at the end of the process for good, so its code must stay
// when this module is unloaded: also that of a driver that was asked and is not the one that was wanted.
void PinDrivers() {
    dlopen("libEGL.so.1", RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

std::mutex mutex;
std::atomic<bool> begun{false};

}  // namespace

bool HasBegunEgl() {
    return begun;
}

const EglTarget* ChooseEglTarget() {
    static EglTarget chosen;
    static bool found = false;
    begun = true;
    const std::lock_guard lock(mutex);
    if (!found) {
        PinDrivers();
        found = FindTarget(&chosen);
    }
    return found ? &chosen : nullptr;
}

EGLContext MakeCoreContext(const EglTarget& target, EGLContext share) {
    const EGLint attributes[] = {
        EGL_CONTEXT_MAJOR_VERSION,           3,       EGL_CONTEXT_MINOR_VERSION, 3, EGL_CONTEXT_OPENGL_PROFILE_MASK,
        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    if (!eglBindAPI(EGL_OPENGL_API)) return EGL_NO_CONTEXT;
    return eglCreateContext(target.display, target.config, share, attributes);
}

bool MakeCurrent(const EglTarget& target, EGLContext context) {
    return eglBindAPI(EGL_OPENGL_API) && eglMakeCurrent(target.display, EGL_NO_SURFACE, EGL_NO_SURFACE, context);
}

}  // namespace umbrant::effect
