// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The one-suite functions and the drawing bundle.

#include "entry/suites/aefx_suite.h"

#include <algorithm>
#include <iterator>

using namespace umbrant::effect;

namespace umbrant::effect {

namespace {

constexpr char kCannotAcquire[] = "Not able to acquire AEFX Suite.";
constexpr char kCannotRelease[] = "Not able to release AEFX Suite.";
constexpr char kNullDrawbotSuites[] = "NULL suite pointer passed to AEFX_AcquireDrawbotSuites";

struct SuiteName {
    const char* name;
    int32_t version;
};

constexpr SuiteName kDrawSuite = {kDRAWBOT_DrawSuiteName, kDRAWBOT_DrawSuite_Version1};
constexpr SuiteName kSupplierSuite = {kDRAWBOT_SupplierSuiteName, kDRAWBOT_SupplierSuite_Version1};
constexpr SuiteName kSurfaceSuite = {kDRAWBOT_SurfaceSuiteName, kDRAWBOT_SurfaceSuite_Version1};
constexpr SuiteName kPathSuite = {kDRAWBOT_PathSuiteName, kDRAWBOT_PathSuite_Version1};

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

}  // namespace umbrant::effect

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

namespace umbrant::effect {

namespace {

/// Acquires one suite of the bundle into its field.
template <typename SuiteT>
PF_Err Acquire(PF_InData* in_data, PF_OutData* out_data, const SuiteName& wanted, const SuiteT** field) {
    const void* suite = nullptr;
    const PF_Err err = AcquireSuiteOrReport(in_data, out_data, wanted.name, wanted.version, nullptr, &suite);
    *field = static_cast<const SuiteT*>(suite);
    return err;
}

/// Releases the suite of one field, if there is one, and clears the field.
template <typename SuiteT>
PF_Err Release(PF_InData* in_data, PF_OutData* out_data, const SuiteName& held, const SuiteT** field) {
    if (*field == nullptr) return PF_Err_NONE;
    if (in_data->pica_basicP != nullptr) *field = nullptr;
    return AEFX_ReleaseSuite(in_data, out_data, held.name, held.version, nullptr, nullptr);
}

}  // namespace

}  // namespace umbrant::effect

PF_Err AEFX_AcquireDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, AEFX_DrawbotSuites* suites) {
    if (suites == nullptr) {
        Report(in_data, out_data, kNullDrawbotSuites);
        return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    }
    *suites = {};
    PF_Err err = Acquire(in_data, out_data, kDrawSuite, &suites->draw);
    if (err == PF_Err_NONE) err = Acquire(in_data, out_data, kSupplierSuite, &suites->supplier);
    if (err == PF_Err_NONE) err = Acquire(in_data, out_data, kSurfaceSuite, &suites->surface);
    if (err == PF_Err_NONE) err = Acquire(in_data, out_data, kPathSuite, &suites->path);
    return err;
}

PF_Err AEFX_ReleaseDrawbotSuites(PF_InData* in_data, PF_OutData* out_data, AEFX_DrawbotSuites* suites) {
    if (suites == nullptr) return PF_Err_UNRECOGNIZED_PARAM_TYPE;
    const PF_Err errors[] = {
        Release(in_data, out_data, kDrawSuite, &suites->draw),
        Release(in_data, out_data, kSupplierSuite, &suites->supplier),
        Release(in_data, out_data, kSurfaceSuite, &suites->surface),
        Release(in_data, out_data, kPathSuite, &suites->path),
    };
    const PF_Err* first = std::find_if(std::begin(errors), std::end(errors), [](PF_Err err) { return err != 0; });
    return first != std::end(errors) ? *first : PF_Err_NONE;
}
