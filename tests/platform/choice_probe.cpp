// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Prints which renderer is chosen; asked twice, the environment changed in between.

#include <cstdio>
#include <cstdlib>

#include "platform/renderer_choice.h"

using namespace umbrant::effect;

namespace {

const char* Name(RendererChoice choice) {
    switch (choice) {
        case RendererChoice::kOpenGL:
            return "OpenGL";
        case RendererChoice::kProcessor:
            return "processor";
        case RendererChoice::kRefused:
            break;
    }
    return "refused";
}

}  // namespace

int main() {
    const RendererChoice first = ChosenRenderer();
    setenv("UMBRANT_RENDERER", first == RendererChoice::kProcessor ? "gl" : "cpu", 1);
    std::printf("%s %s\n", Name(first), Name(ChosenRenderer()));
}
