// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The CGL types and calls that the module uses, under CGL's own names. On macOS they are the system's; elsewhere
// platform/linux (EGL) or platform/fake (tests) answers them with the same meaning.

#if defined(__APPLE__)
#include "platform/macos/cgl.h"
#else
#include "platform/linux/cgl.h"
#endif
