// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A suite of this project's own, which only its host offers: what a host with two renderers asks of the module, and
// worlds row by row instead of pixel by pixel. Other hosts do not know the name, and the module does without.
// docs/host-program.md describes both sides.
// An effect that acquires it at set-up writes into no layer that it checks out: it may get the host's own pixels.
// Slot order is the ABI. A non-zero result is an error of hostapi/errors.h, and only after a zero may an out-parameter
// be read.

#include "hostapi/basic_types.h"
#include "hostapi/pixels.h"

inline constexpr char kUmbrantHostSuiteName[] = "Umbrant Host Suite";
inline constexpr int32_t kUmbrantHostSuiteVersion1 = 1;
inline constexpr int32_t kUmbrantHostSuiteVersion2 = 2;

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

/// What the effect does with row `y` of a world: `pixels` is its first pixel, in the world's format. A non-zero result
/// ends the walk.
typedef PF_Err (*UMBRANT_RowFunction)(void* refcon, A_long y, void* pixels);

/// Asked for only where there is version 1.
struct UMBRANT_HostSuite2 {
    /// As in version 1. [any]
    PF_Err (*GetRenderer)(PF_ProgPtr effect_ref, UMBRANT_Renderer* rendererP);
    /// Calls `function` for every row of `worldP`, in no order, on several threads at once; returns its first error. A
    /// null function, or a world that is not the host's, is PF_Err_BAD_CALLBACK_PARAM. [any]
    PF_Err (*WalkRows)(PF_ProgPtr effect_ref, PF_EffectWorld* worldP, void* refcon, UMBRANT_RowFunction function);
};
