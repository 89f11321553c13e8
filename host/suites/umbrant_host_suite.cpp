// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "Umbrant Host Suite" 1 and 2: what this host asks of its own module, and worlds by rows.

#include "hostapi/suites/umbrant_host_suite.h"

#include <atomic>

#include "host/suites/offered_rows.h"
#include "host/suites/pf/iterate.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

std::atomic<int> withoutRows{0};

PF_Err GetRenderer(PF_ProgPtr effectRef, UMBRANT_Renderer* renderer) {
    EffectRef* effect = EffectRef::Of(effectRef, "GetRenderer");
    if (!effect || !renderer) return PF_Err_BAD_CALLBACK_PARAM;
    *renderer = effect->services->renderer;
    return PF_Err_NONE;
}

PF_Err WalkRows(PF_ProgPtr effectRef, PF_EffectWorld* world, void* refcon, UMBRANT_RowFunction function) {
    if (!EffectRef::Of(effectRef, "WalkRows") || !world || !function) return PF_Err_BAD_CALLBACK_PARAM;
    if (PixelFormatOf(*world) == PF_PixelFormat_INVALID) return PF_Err_BAD_CALLBACK_PARAM;
    const TimedCall timed(PixelCall::kWalk);
    return RunForEffect(world->height, [&](int y, int) { return function(refcon, y, RowOf<char>(*world, y)); });
}

template <FixedText Call, auto Function>
using Slot = Served<kUmbrantHostSuiteName, Call, Function>;

}  // namespace

WithoutRows::WithoutRows() {
    ++withoutRows;
}
WithoutRows::~WithoutRows() {
    --withoutRows;
}

bool OffersRows() {
    return withoutRows == 0;
}

const UMBRANT_HostSuite1 kUmbrantHostSuite = {
    .GetRenderer = Slot<"GetRenderer", GetRenderer>(),
};

const UMBRANT_HostSuite2 kUmbrantHostSuite2 = {
    .GetRenderer = Slot<"GetRenderer", GetRenderer>(),
    .WalkRows = Slot<"WalkRows", WalkRows>(),
};

}  // namespace umbrant::host
