// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "Umbrant Host Suite" 1: what this host asks of its own module.

#include "hostapi/suites/umbrant_host_suite.h"

#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

PF_Err GetRenderer(PF_ProgPtr effectRef, UMBRANT_Renderer* renderer) {
    EffectRef* effect = EffectRef::Of(effectRef, "GetRenderer");
    if (!effect || !renderer) return PF_Err_BAD_CALLBACK_PARAM;
    *renderer = effect->services->renderer;
    return PF_Err_NONE;
}

template <FixedText Call, auto Function>
using Slot = Served<kUmbrantHostSuiteName, Call, Function>;

}  // namespace

const UMBRANT_HostSuite1 kUmbrantHostSuite = {
    .GetRenderer = Slot<"GetRenderer", GetRenderer>(),
};

}  // namespace umbrant::host
