// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// "DRAWBOT Draw Suite" 1: from a drawing reference to its supplier and its surface.

#include "hostapi/suites/drawbot_draw_suite.h"

#include "host/suites/drawbot/canvas.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

SPErr GetSupplier(DRAWBOT_DrawRef reference, DRAWBOT_SupplierRef* supplier) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(reference, "GetSupplier");
    if (!canvas || !supplier) return PF_Err_BAD_CALLBACK_PARAM;
    *supplier = canvas->Supplier();
    return kSPNoError;
}

SPErr GetSurface(DRAWBOT_DrawRef reference, DRAWBOT_SurfaceRef* surface) {
    DrawbotCanvas* canvas = DrawbotCanvas::Of(reference, "GetSurface");
    if (!canvas || !surface) return PF_Err_BAD_CALLBACK_PARAM;
    *surface = canvas->Surface();
    return kSPNoError;
}

template <FixedText Call, auto Function>
using Slot = Served<kDRAWBOT_DrawSuiteName, Call, Function>;

}  // namespace

const DRAWBOT_DrawbotSuite1 kDrawbotDrawSuite = {
    .GetSupplier = Slot<"GetSupplier", GetSupplier>(),
    .GetSurface = Slot<"GetSurface", GetSurface>(),
};

}  // namespace umbrant::host
