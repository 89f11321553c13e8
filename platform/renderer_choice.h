// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Whether the host asked for shadows drawn by the CPU renderer. Without such a request everything goes through OpenGL.

namespace umbrant::effect {

enum class RendererChoice {
    kOpenGL,
    kProcessor,
    kRefused,  ///< asked for something that there is not; one line on standard error has said so
};

/// What was asked for when this was called first. Linux: the environment variable UMBRANT_RENDERER, "gl" or "cpu".
RendererChoice ChosenRenderer();

}  // namespace umbrant::effect
