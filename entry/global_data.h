// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What lives from global set-up to global set-down: the driver's strings and the probe context that read them.

#include "hostapi/basic_types.h"
#include "platform/cgl_api.h"

/// The effect's global data, in a host handle. Zero-filled when created; the strings are NUL-terminated and cut to fit.
struct GlobalData {
    char gl_version[100];    ///< GL_VERSION of the probe context
    char gl_vendor[100];     ///< GL_VENDOR
    char gl_renderer[100];   ///< GL_RENDERER; the first render writes its own context's here
    char glsl_version[100];  ///< GL_SHADING_LANGUAGE_VERSION
    CGLContextObj context;   ///< the probe context, or null: then OpenGL is not usable at all
    /// 1 once a render has recorded its renderer. Written under the render mutex; parameter rows are fixed earlier.
    A_u_char rendererRecorded;
};
