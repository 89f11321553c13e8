// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The choice, set by a test.

#include "platform/renderer_choice.h"

namespace fake {

/// What `ChosenRenderer` answers; OpenGL after `Reset`.
umbrant::effect::RendererChoice& Renderer();

}  // namespace fake
