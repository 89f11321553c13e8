// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// One render thread's GL state: a private context with the effect's programs and quad. Made on the thread's first
// render, destroyed when the thread ends, never read from another thread.

#include <memory>

#include "gl/program.h"
#include "hostapi/commands.h"
#include "platform/cgl_api.h"
#include "platform/gl_api.h"
#include "render/shadow_shaders.h"

struct LocalGLStruct {
    CGLContextObj context = nullptr;                   ///< this thread's context; null when it could not be made
    Program programs[umbrant::effect::kProgramCount];  ///< by slot, in the order of `InitPrograms`
    GLuint quadVAO = 0;                                ///< written by `InitQuad`, meaningful only with a context
    GLuint quadVBO = 0;
};

/// Deletes a record's GL objects and context, with that context current; none is current afterwards. Does nothing to a
/// record without a context. A failing step ends the process.
// Kept: neither the record's memory is freed nor its programs destroyed; a small leak per thread.
struct tls_ctx_deleter {
    void operator()(LocalGLStruct* record) const noexcept;
};

/// The calling thread's record; null until `InitThreadLocalRenderData` finds a probe context in the global data.
extern thread_local std::unique_ptr<LocalGLStruct, tls_ctx_deleter> local_render_data;

/// Makes sure that this thread has its record and makes its context current. The first call that finds a probe context
/// in the global data makes context, programs and quad; until then nothing happens. A context that could not be made
/// and programs that did not compile are never tried again. Callers must check the record and its context for null.
void InitThreadLocalRenderData(PF_InData* in_data, PF_OutData* out_data);
