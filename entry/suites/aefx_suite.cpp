// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The one-suite functions and the drawing bundle.

#include "entry/suites/aefx_suite.h"

namespace {

constexpr char kCannotAcquire[] = "Not able to acquire AEFX Suite.";
constexpr char kCannotRelease[] = "Not able to release AEFX Suite.";
constexpr char kNullDrawbotSuites[] = "NULL suite pointer passed to AEFX_AcquireDrawbotSuites";

struct SuiteName {
    const char* name;
    int32_t version;
};

/// In the order of the fields of AEFX_DrawbotSuites.
constexpr SuiteName kDrawbotSuites[] = {
    {kDRAWBOT_DrawSuiteName, kDRAWBOT_DrawSuite_Version1},
    {kDRAWBOT_SupplierSuiteName, kDRAWBOT_SupplierSuite_Version1},
    {kDRAWBOT_SurfaceSuiteName, kDRAWBOT_SurfaceSuite_Version1},
    {kDRAWBOT_PathSuiteName, kDRAWBOT_PathSuite_Version1},
};

/// Makes the host show `message` when the command ends.
void Report(const PF_InData* in_data, PF_OutData* out_data, const char* message) {
    if (out_data == nullptr) return;
    out_data->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
    in_data->utils->ansi.sprintf(out_data->return_msg, "%s", message);
}

}  // namespace

PF_Err AcquireSuiteOrReport(const PF_InData* in_data, PF_OutData* out_data, const char* name, int32_t version,
                            const char* error_message, const void** suite) {
    SPBasicSuite* basic = in_data->pica_basicP;
    *suite = nullptr;
    if (basic != nullptr && basic->AcquireSuite(name, version, suite) == kSPNoError && *suite != nullptr) {
        return PF_Err_NONE;
    }
    *suite = nullptr;
    Report(in_data, out_data, error_message != nullptr ? error_message : kCannotAcquire);
    return PF_Err_BAD_CALLBACK_PARAM;
}

PF_Err AEFX_AcquireSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int32_t version,
                         const char* error_message, void** suite) {
    const void* acquired = nullptr;
    const PF_Err err = AcquireSuiteOrReport(in_data, out_data, name, version, error_message, &acquired);
    *suite = const_cast<void*>(acquired);
    return err;
}

PF_Err AEFX_ReleaseSuite(PF_InData* in_data, PF_OutData* out_data, const char* name, int32_t version,
                         const char* error_message, void** suite) {
    SPBasicSuite* basic = in_data->pica_basicP;
    if (basic == nullptr) {
        Report(in_data, out_data, error_message != nullptr ? error_message : kCannotRelease);
        return PF_Err_BAD_CALLBACK_PARAM;
    }
    if (suite != nullptr) *suite = nullptr;
    return basic->ReleaseSuite(name, version);
}

PF_Err AEFX_AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, AEFX_DrawbotSuites* suites) {
    if (suites == nullptr) {
        Report(in_data, out_data, kNullDrawbotSuites);
        return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    }
    *suites = {};
    const void* acquired[4] = {};
    for (int i = 0; i < 4; ++i) {
        const SuiteName& wanted = kDrawbotSuites[i];
        const PF_Err err = AcquireSuiteOrReport(in_data, out_data, wanted.name, wanted.version, nullptr, &acquired[i]);
        if (err != PF_Err_NONE) {
            while (--i >= 0) in_data->pica_basicP->ReleaseSuite(kDrawbotSuites[i].name, kDrawbotSuites[i].version);
            return err;
        }
    }
    suites->draw = static_cast<const DRAWBOT_DrawbotSuite1*>(acquired[0]);
    suites->supplier = static_cast<const DRAWBOT_SupplierSuite1*>(acquired[1]);
    suites->surface = static_cast<const DRAWBOT_SurfaceSuite1*>(acquired[2]);
    suites->path = static_cast<const DRAWBOT_PathSuite1*>(acquired[3]);
    return PF_Err_NONE;
}

PF_Err AEFX_ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data) {
    PF_Err first = PF_Err_NONE;
    for (const SuiteName& held : kDrawbotSuites) {
        const PF_Err err = AEFX_ReleaseSuite(in_data, out_data, held.name, held.version, nullptr, nullptr);
        if (first == PF_Err_NONE) first = err;
    }
    return first;
}
