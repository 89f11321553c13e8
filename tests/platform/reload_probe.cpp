// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Loads the module of the argument, draws a pixel, unloads it, and prints the pixel and whether EGL has stayed. A
// program of its own, as the tests link EGL themselves.

#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
    void* module = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!module) return 2;
    const auto draw = reinterpret_cast<int (*)(int)>(dlsym(module, "DrawPixel"));
    if (!draw) return 2;
    const int pixel = draw(0);
    dlclose(module);
    const bool stays = dlopen("libEGL.so.1", RTLD_LAZY | RTLD_NOLOAD) != nullptr;
    std::printf("%d %s\n", pixel, stays ? "stays" : "unloaded");
}
