// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The system's core-profile OpenGL. A build on another system has no framework headers and takes the Khronos header's
// prototypes; that macOS exports what is called is a test's business.

#ifndef GL_SILENCE_DEPRECATION
#define GL_SILENCE_DEPRECATION 1
#endif
#if __has_include(<OpenGL/gl3.h>)
#include <OpenGL/gl3.h>
#else
#define GL_GLEXT_PROTOTYPES 1
#include <GL/glcorearb.h>
#endif
