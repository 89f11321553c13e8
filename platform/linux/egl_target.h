// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which EGL display contexts are made on: a hardware device when one works, Mesa's software renderer otherwise.
// The environment variable UMBRANT_GL, read once, forces one: "software" or "hardware".

#include <EGL/egl.h>

namespace umbrant::effect {

/// Where contexts are made. The display is initialised and never terminated, since contexts of threads may outlive
/// everything else.
struct EglTarget {
    EGLDisplay display;
    EGLConfig config;  ///< `EGL_NO_CONFIG_KHR` where the display takes that
};

/// The chosen target, always the same once one was found; null while none works. Leaves the calling thread's current
/// EGL context as it was. Any thread.
const EglTarget* ChooseEglTarget();

/// Whether a target was ever asked for, and so perhaps a driver begun. Any thread.
bool HasBegunEgl();

/// A 3.3 core context on the target, for use without a surface; `EGL_NO_CONTEXT` on failure. Any thread.
EGLContext MakeCoreContext(const EglTarget& target, EGLContext share);

/// Makes a context current on the calling thread without a surface; `EGL_NO_CONTEXT` leaves none.
bool MakeCurrent(const EglTarget& target, EGLContext context);

}  // namespace umbrant::effect
