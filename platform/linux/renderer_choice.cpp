// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The choice, from the environment.

#include "platform/renderer_choice.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace umbrant::effect {

namespace {

RendererChoice ReadChoice() {
    const char* value = std::getenv("UMBRANT_RENDERER");
    if (!value || *value == '\0' || std::strcmp(value, "gl") == 0) return RendererChoice::kOpenGL;
    // A host that decides by itself writes its decision over this one; for others it is as if nothing was asked for.
    if (std::strcmp(value, "auto") == 0) return RendererChoice::kOpenGL;
    if (std::strcmp(value, "cpu") == 0) return RendererChoice::kProcessor;
    std::fprintf(stderr, "UMBRANT_RENDERER is \"%s\"; it must be \"gl\", \"cpu\" or \"auto\"\n", value);
    return RendererChoice::kRefused;
}

}  // namespace

RendererChoice ChosenRenderer() {
    static const RendererChoice choice = ReadChoice();
    return choice;
}

}  // namespace umbrant::effect
