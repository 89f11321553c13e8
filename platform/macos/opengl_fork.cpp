// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The system's frameworks, OpenGL among them, are not to be used in a forked child at all.

#include "platform/fork.h"

namespace umbrant::effect {

namespace {

bool forked = false;
const bool watching = (OnFork([] { forked = true; }), true);

}  // namespace

bool OpenGLLostByFork() {
    return watching && forked;
}

}  // namespace umbrant::effect
