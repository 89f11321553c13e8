// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "render/processor/renderer_request.h"

#include "entry/suites/suite_scoper.h"
#include "hostapi/suites/umbrant_host_suite.h"
#include "render/processor/processor_path.h"

namespace umbrant::effect {

namespace {

/// `UMBRANT_Renderer_ANY` where the host has no such suite.
PF_Err AskHost(PF_InData* in_data, UMBRANT_Renderer* renderer, bool* isOwnHost) {
    *renderer = UMBRANT_Renderer_ANY;
    const AEFX_SuiteScoper<UMBRANT_HostSuite1, true> suite(in_data, kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1,
                                                           nullptr, nullptr);
    *isOwnHost = suite.get() != nullptr;
    if (!suite.get()) return PF_Err_NONE;
    return suite->GetRenderer(in_data->effect_ref, renderer);
}

}  // namespace

PF_Err ReadRendererRequest(PF_InData* in_data, RendererRequest* request) {
    UMBRANT_Renderer asked = UMBRANT_Renderer_ANY;
    if (HasProcessorPath()) {
        if (PF_Err err = AskHost(in_data, &asked, &request->isOwnHost)) return err;
    }
    if (asked == UMBRANT_Renderer_OPENGL) {
        request->choice = RendererChoice::kOpenGL;
    } else if (asked == UMBRANT_Renderer_PROCESSOR) {
        request->choice = RendererChoice::kProcessor;
    } else {
        request->choice = ChosenRenderer();
    }
    return PF_Err_NONE;
}

}  // namespace umbrant::effect
