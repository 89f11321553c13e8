// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// CGL as the Linux platform layer answers it, and OpenGL as this machine's driver does. Nothing of Apple's OpenGL is
// proven by it.

#include <dlfcn.h>

#include <bit>
#include <map>

#include "platform/cgl_api.h"
#include "tests/packaging/mapped/mac_system.h"

namespace {

template <typename Function>
void* Address(Function* function) {
    return std::bit_cast<void*>(function);
}

}  // namespace

void* GraphicsSymbol(const std::string& name) {
    static const std::map<std::string, void*> cgl = {
        {"_CGLChoosePixelFormat", Address(&CGLChoosePixelFormat)},
        {"_CGLCreateContext", Address(&CGLCreateContext)},
        {"_CGLDestroyContext", Address(&CGLDestroyContext)},
        {"_CGLErrorString", Address(&CGLErrorString)},
        {"_CGLGetCurrentContext", Address(&CGLGetCurrentContext)},
        {"_CGLReleaseContext", Address(&CGLReleaseContext)},
        {"_CGLRetainContext", Address(&CGLRetainContext)},
        {"_CGLSetCurrentContext", Address(&CGLSetCurrentContext)},
    };
    if (const auto found = cgl.find(name); found != cgl.end()) return found->second;
    if (!name.starts_with("_gl")) return nullptr;
    static void* library = dlopen("libOpenGL.so.0", RTLD_NOW);
    return library ? dlsym(library, name.c_str() + 1) : nullptr;
}
