// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Acquiring and releasing one suite by hand, with a message for the user when the host does not offer it, and the
// bundle of the four drawing suites. The commands use the cache and the scoped holder instead.

#include <cstdint>

#include "hostapi/commands.h"
#include "hostapi/suites/drawbot_draw_suite.h"
#include "hostapi/suites/drawbot_path_suite.h"
#include "hostapi/suites/drawbot_supplier_suite.h"
#include "hostapi/suites/drawbot_surface_suite.h"

/// The four drawing suites. The host has a bundle of its own with more members; this one never reaches it.
struct AEFX_DrawbotSuites {
    const DRAWBOT_DrawbotSuite1* draw;
    const DRAWBOT_SupplierSuite1* supplier;
    const DRAWBOT_SurfaceSuite1* surface;
    const DRAWBOT_PathSuite1* path;
};

/// Acquires one suite through the basic suite of `in_data` into `*suite`. Returns 0, or
/// `PF_Err_BAD_CALLBACK_PARAM` with `*suite` null; then, when `out_data` is given, sets
/// `PF_OutFlag_DISPLAY_ERROR_MESSAGE` and writes `error_message` ("Not able to acquire AEFX Suite." when null) into
/// `return_msg` through the host's sprintf.
PF_Err AEFX_AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int32_t version,
                         const char* error_message, void** suite);

/// Releases one suite and clears `*suite` when `suite` is given. Returns what the host returns; without a basic suite
/// reports `error_message` ("Not able to release AEFX Suite." when null) in the same way and returns
/// `PF_Err_BAD_CALLBACK_PARAM`.
PF_Err AEFX_ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int32_t version,
                         const char* error_message, void** suite);

/// Fills the record with the drawing, supplier, surface and path suites, in that order. Stops at the first failure and
/// returns its error; what was acquired until then stays in the record, everything else in it is null. The record goes
/// to `AEFX_ReleaseDrawbotSuites` in both cases. A null record is `PF_Err_UNRECOGNIZED_PARAM_TYPE` with a message.
PF_Err AEFX_AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, AEFX_DrawbotSuites* suites);

/// Releases the suites that the record holds, in the order in which they were acquired, and clears their fields, so
/// that a second call releases nothing. Returns the first error; tries all four. Without a basic suite the record stays
/// as it is. A null record is `PF_Err_UNRECOGNIZED_PARAM_TYPE`.
PF_Err AEFX_ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, AEFX_DrawbotSuites* suites);

namespace umbrant::effect {

/// What AEFX_AcquireSuite and the scoped holder share.
PF_Err AcquireSuiteOrReport(const PF_InData* in_data, PF_OutData* out_data, const char* name, int32_t version,
                            const char* error_message, const void** suite);

}  // namespace umbrant::effect
