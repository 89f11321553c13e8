// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// OpenGL 3.3 core prototypes. Nothing of a later version may be called, macOS ends at 4.1 and our contexts at 3.3, with
// one exception: `glBindTransformFeedback` in the data-driven renderer, which the effect itself does not use.

#if defined(__APPLE__)
#include "platform/macos/gl.h"
#else
#define GL_GLEXT_PROTOTYPES 1
#include <GL/glcorearb.h>
#endif
