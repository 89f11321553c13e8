// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Which renderer draws a frame: what the host asks for through its private suite where it has one, else the platform's
// choice. Asked once a frame, so that two instances in one process may differ, and at global set-up, which loads the
// OpenGL driver only when it is going to be used.

#include "hostapi/commands.h"
#include "platform/renderer_choice.h"

namespace umbrant::effect {

struct RendererRequest {
    RendererChoice choice = RendererChoice::kRefused;
    bool isOwnHost = false;  ///< the host offers the private suite
};

/// Writes `*request`. Acquires and releases one suite at most, and reports nothing where the host does not offer it.
/// Returns the host's error when it offers the suite and its call fails. A build without the CPU renderer asks
/// nobody.
PF_Err ReadRendererRequest(PF_InData* in_data, RendererRequest* request);

}  // namespace umbrant::effect
