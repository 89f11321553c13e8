// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What lives from global set-up to global set-down: the driver's strings and the probe context that read them.

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

#include "hostapi/basic_types.h"
#include "hostapi/suites/handle_suite.h"
#include "platform/cgl_api.h"

/// The effect's global data, in a host handle. Zero-filled when created; the strings are NUL-terminated and cut to fit.
struct GlobalData {
    char gl_version[100];    ///< GL_VERSION of the probe context; "not used" with the CPU renderer
    char gl_vendor[100];     ///< GL_VENDOR
    char gl_renderer[100];   ///< GL_RENDERER; the first render writes its own context's here
    char glsl_version[100];  ///< GL_SHADING_LANGUAGE_VERSION
    CGLContextObj context;   ///< the probe context, or null: then OpenGL is not usable at all
    A_u_char withoutOpenGL;  ///< 1 when set-up was asked for the processor: there is no probe context then
    /// 1 once a render has recorded its renderer. Written under the render mutex; parameter rows are fixed earlier.
    A_u_char rendererRecorded;
};

namespace umbrant::effect {

/// The handles whose record global set-up has written. Behind any other handle, one that could not be locked then
/// included, the memory may hold anything: whoever reads global data takes it for an empty record. [any]
class WrittenRecords {
 public:
    void Note(PF_Handle handle) {
        const std::lock_guard lock(mutex_);
        handles_.push_back(handle);
    }
    void Forget(PF_Handle handle) {
        const std::lock_guard lock(mutex_);
        handles_.erase(std::remove(handles_.begin(), handles_.end(), handle), handles_.end());
        if (handles_.empty()) handles_.shrink_to_fit();
    }
    bool Contains(PF_Handle handle) const {
        const std::lock_guard lock(mutex_);
        return std::find(handles_.begin(), handles_.end(), handle) != handles_.end();
    }

 private:
    mutable std::mutex mutex_;
    std::vector<PF_Handle> handles_;
};
// Kept: never destroyed, because a host may set the module down from one of its own objects of static duration. Without
// handles it holds no memory.
alignas(WrittenRecords) inline std::byte writtenRecordsMemory[sizeof(WrittenRecords)];
inline WrittenRecords& writtenRecords = *new (writtenRecordsMemory) WrittenRecords;

/// The record behind a handle of global data, locked for the length of a scope: the handle's own pointer is valid only
/// under a lock.
class LockedGlobalData {
 public:
    LockedGlobalData(const PF_HandleSuite1* handles, PF_Handle handle) : handles_(handles), handle_(handle) {
        if (writtenRecords.Contains(handle)) record_ = static_cast<GlobalData*>(handles->host_lock_handle(handle));
    }
    ~LockedGlobalData() {
        if (record_ == nullptr) return;
        try {
            handles_->host_unlock_handle(handle_);
        } catch (...) {
            // A host that throws must not end the program here: another exception may be in flight.
        }
    }
    LockedGlobalData(const LockedGlobalData&) = delete;
    LockedGlobalData& operator=(const LockedGlobalData&) = delete;

    /// Null for an empty record.
    GlobalData* Get() const { return record_; }

 private:
    const PF_HandleSuite1* handles_;
    PF_Handle handle_;
    GlobalData* record_ = nullptr;
};

}  // namespace umbrant::effect
