// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Off-screen GL contexts, through CGL's calls. Failures are printed to standard output and never returned, except as a
// null context from `CreateContext`; callers test for null. Any thread.

#include "platform/cgl_api.h"

/// The pixel format asked for when none is given: the 3.2 core profile and nothing else; zero-terminated.
extern const CGLPixelFormatAttribute attributes_default[3];

/// A new context that shares objects with `share` (null: with none), for the attribute list `attribs` (null:
/// `attributes_default`). Null when it could not be made. It carries two references; `DeleteContext` takes both.
CGLContextObj CreateContext(CGLContextObj share, const CGLPixelFormatAttribute* attribs);

/// Takes both references of a context from `CreateContext`; null is ignored.
void DeleteContext(CGLContextObj context);

/// Makes the context current on the calling thread; null leaves none current.
void SetCurrentContext(CGLContextObj context);

/// The calling thread's current context, or null.
CGLContextObj GetCurrentContext();

/// Whether the context is non-null; nothing else is checked.
bool IsContextValid(CGLContextObj context);
