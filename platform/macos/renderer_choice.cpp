// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Every Mac has OpenGL: there is nothing to choose.

#include "platform/renderer_choice.h"

namespace umbrant::effect {

RendererChoice ChosenRenderer() {
    return RendererChoice::kOpenGL;
}

}  // namespace umbrant::effect
