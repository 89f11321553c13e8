// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "platform/fake/renderer_choice_fake.h"

using namespace umbrant::effect;

RendererChoice& fake::Renderer() {
    static RendererChoice choice = RendererChoice::kOpenGL;
    return choice;
}

RendererChoice umbrant::effect::ChosenRenderer() {
    return fake::Renderer();
}
