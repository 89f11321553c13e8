// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "platform/fake/renderer_choice_fake.h"

RendererChoice& fake::Renderer() {
    static RendererChoice choice = RendererChoice::kOpenGL;
    return choice;
}

RendererChoice ChosenRenderer() {
    return fake::Renderer();
}
