// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the module does once in its life: the flags, the probe of the driver, and taking both back.

#include "entry/global_setup.h"

#include <cstring>

#include "entry/global_data.h"
#include "entry/suites/suite_handler.h"
#include "entry/version.h"
#include "gl/context.h"
#include "platform/gl_api.h"
#include "render/processor_path.h"

std::recursive_mutex globalMutex;
AEGP_PluginID my_id;

namespace {

/// Copies one of the driver's strings, cut to the field. A driver without an answer leaves the field as it is, empty.
template <size_t kSize>
void CopyDriverString(GLenum name, char (&field)[kSize]) {
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    if (text == nullptr) return;
    const size_t length = strnlen(text, kSize - 1);
    std::memcpy(field, text, length);
    field[length] = '\0';
}

/// Makes the probe context and reads the driver's strings. The calling thread's current context is the same afterwards.
void ProbeDriver(GlobalData* record) {
    const CGLContextObj previous = GetCurrentContext();
    const CGLContextObj probe = CreateContext(nullptr, nullptr);
    if (IsContextValid(probe)) {
        record->context = probe;
        SetCurrentContext(probe);
        CopyDriverString(GL_VERSION, record->gl_version);
        CopyDriverString(GL_VENDOR, record->gl_vendor);
        CopyDriverString(GL_RENDERER, record->gl_renderer);
        CopyDriverString(GL_SHADING_LANGUAGE_VERSION, record->glsl_version);
    }
    SetCurrentContext(previous);
}

}  // namespace

PF_Err GlobalSetup(PF_InData* in_data, PF_OutData* out_data) {
    out_data->my_version = kVersionPacked;
    out_data->out_flags = kOutFlags;
    out_data->out_flags2 = kOutFlags2;
    if (in_data->appl_id == kAppID_Premiere) out_data->out_flags = PF_OutFlag_I_AM_OBSOLETE;

    AEGP_SuiteHandler suites(in_data->pica_basicP);
    const PF_HandleSuite1* handles = suites.HandleSuite1();
    const PF_Handle handle = handles->host_new_handle(sizeof(GlobalData));
    if (handle == nullptr) return PF_Err_NONE;
    auto* record = static_cast<GlobalData*>(handles->host_lock_handle(handle));
    if (record != nullptr) {
        std::memset(record, 0, sizeof(GlobalData));
        ProbeDriver(record);
    } else if (*handle != nullptr) {
        // Later commands read the record without a lock: it must not hold what the memory held before.
        std::memset(*handle, 0, sizeof(GlobalData));
    }
    out_data->global_data = handle;
    if (record != nullptr) handles->host_unlock_handle(handle);
    return PF_Err_NONE;
}

PF_Err GlobalSetdown(PF_InData* in_data) {
    // Their code may be unloaded next.
    EndProcessorThreads();
    AEGP_SuiteHandler suites(in_data->pica_basicP);
    const PF_HandleSuite1* handles = suites.HandleSuite1();
    const PF_Handle handle = in_data->global_data;
    if (handle == nullptr) return PF_Err_NONE;
    auto* record = static_cast<GlobalData*>(handles->host_lock_handle(handle));
    if (record == nullptr) return PF_Err_NONE;
    if (record->context != nullptr) {
        SetCurrentContext(record->context);
        DeleteContext(record->context);
        SetCurrentContext(nullptr);
    }
    handles->host_unlock_handle(handle);
    handles->host_dispose_handle(handle);
    in_data->global_data = nullptr;
    return PF_Err_NONE;
}
