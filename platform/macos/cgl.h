// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// CGL as the system declares it. The deprecation of OpenGL is known and silenced. A build on another system has no
// framework headers and takes our own declarations of the same calls.

#ifndef GL_SILENCE_DEPRECATION
#define GL_SILENCE_DEPRECATION 1
#endif
#if __has_include(<OpenGL/OpenGL.h>)
#include <OpenGL/OpenGL.h>
#else
#include "platform/macos/cgl_declarations.h"
#endif
