// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Registration: what the effect is, reported to the host once when it scans the module.

#include "entry/entry_points.h"
#include "entry/version.h"
#include "hostapi/errors.h"

using namespace umbrant::effect;

namespace {

/// The host reads its strings as unsigned characters.
const A_u_char* HostText(const char* text) {
    return reinterpret_cast<const A_u_char*>(text);
}

}  // namespace

PF_Err PluginDataEntryFunction(PF_PluginDataPtr inPtr, PF_PluginDataCB inPluginDataCallBackPtr, SPBasicSuite*,
                               const char*, const char*) {
    try {
        return inPluginDataCallBackPtr(inPtr, HostText(kEffectName), HostText(kEffectMatchName),
                                       HostText(kEffectCategory), HostText(kEffectEntryPoint), kPluginKind_Effect,
                                       kRegisteredApiMajor, kRegisteredApiMinor, kRegisteredReservedInfo);
    } catch (PF_Err err) {
        return err;
    } catch (...) {
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
}
