// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A suite of this project's own, which only its host offers: what a host with two renderers asks of the module. Other
// hosts do not know the name, and the module does without. docs/host-program.md describes both sides.
// Slot order is the ABI. A non-zero result is an error of hostapi/errors.h, and only after a zero may an out-parameter
// be read.

#include "hostapi/basic_types.h"

inline constexpr char kUmbrantHostSuiteName[] = "Umbrant Host Suite";
inline constexpr int32_t kUmbrantHostSuiteVersion1 = 1;

/// What draws a frame. Other values mean the same as UMBRANT_Renderer_ANY.
enum {
    UMBRANT_Renderer_ANY = 0,  ///< the host has no preference; the environment variable UMBRANT_RENDERER decides
    UMBRANT_Renderer_OPENGL = 1,
    UMBRANT_Renderer_PROCESSOR = 2
};
typedef A_long UMBRANT_Renderer;

struct UMBRANT_HostSuite1 {
    /// Which renderer draws the frame that is being rendered, during a render. At global set-up: whether there will be
    /// frames by OpenGL; after UMBRANT_Renderer_PROCESSOR no driver is loaded, and such a frame fails. [any]
    PF_Err (*GetRenderer)(PF_ProgPtr effect_ref, UMBRANT_Renderer* rendererP);
};
