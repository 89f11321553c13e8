// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// CGL's calls without a driver: contexts are numbers, the current one is kept per thread, every call is written to the
// call log, and any of them fails on demand.

#include <atomic>
#include <cstdint>

#include "platform/cgl_api.h"

namespace fake {

/// What to answer, and the counts. Plain data behind one lock in the calls; tests set it while nothing runs.
struct CglState {
    // What to fail with; kCGLNoError succeeds.
    CGLError chooseError = kCGLNoError;
    CGLError createError = kCGLNoError;
    CGLError setCurrentError = kCGLNoError;  ///< only for non-null contexts
    CGLError destroyError = kCGLNoError;
    int32_t virtualScreens = 1;  ///< the count that a choice reports, also a failed one

    bool lostByFork = false;  ///< what `OpenGLLostByFork` answers

    int formatsMade = 0;
    int contextsMade = 0;               ///< their numbers run from 1
    int liveContexts = 0;               ///< contexts with a reference left
    int liveReferences = 0;             ///< references to all of them
    CGLContextObj lastShare = nullptr;  ///< what the last `CGLCreateContext` was to share with
};
CglState& Cgl();

/// The number of a context, from 1; 0 for null.
int ContextNumber(CGLContextObj context);

}  // namespace fake
