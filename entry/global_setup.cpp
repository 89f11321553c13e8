// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the module does once in its life: the flags, the probe of the driver, and taking both back.

#include "entry/global_setup.h"

#include <cstring>
#include <new>

#include "entry/fixed_text.h"
#include "entry/global_data.h"
#include "entry/suites/suite_handler.h"
#include "entry/suites/without_throwing.h"
#include "entry/version.h"
#include "gl/context.h"
#include "platform/fork.h"
#include "platform/gl_api.h"
#include "render/processor/processor_path.h"
#include "render/processor/renderer_request.h"

using namespace umbrant::effect;

std::recursive_mutex globalMutex;
AEGP_PluginID my_id;

namespace umbrant::effect {

namespace {

// In a forked child nobody gives back what another thread of the parent held. Where the forking thread held it itself,
// the child is inside that render and gives back a lock that it has not, which does nothing.
void ForgetLockInChild() {
    new (&globalMutex) std::recursive_mutex;
}
const bool watchingForks = (OnFork(ForgetLockInChild), true);

/// Copies one of the driver's strings, cut to the field. A driver without an answer leaves the field as it is, empty.
template <size_t kSize>
void CopyDriverString(GLenum name, char (&field)[kSize]) {
    const auto* text = reinterpret_cast<const char*>(glGetString(name));
    if (text != nullptr) CopyText(text, field);
}

/// What the panel shows with the CPU renderer. No driver is asked, so none is loaded.
void DescribeProcessor(GlobalData* record) {
    record->withoutOpenGL = 1;
    CopyText("Umbrant", record->gl_vendor);
    CopyText(ProcessorName().c_str(), record->gl_renderer);
    CopyText("not used", record->gl_version);
    CopyText("not used", record->glsl_version);
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

/// The record of one set-up. Until `Keep`, everything that was made for it is given back at the end of the scope.
class NewRecord {
 public:
    explicit NewRecord(const PF_HandleSuite1* handles)
        : handles_(handles), handle_(handles->host_new_handle(sizeof(GlobalData))) {}
    ~NewRecord() {
        if (handle_ == nullptr) return;
        if (context_ != nullptr) DeleteContext(context_);
        writtenRecords.Forget(handle_);
        WithoutThrowing([this] { Unlock(); });
        WithoutThrowing([this] { handles_->host_dispose_handle(handle_); });
    }
    NewRecord(const NewRecord&) = delete;
    NewRecord& operator=(const NewRecord&) = delete;

    PF_Handle Handle() const { return handle_; }

    /// Fills the record in, under a lock that stays. Where there is no lock nothing is written: the unlocked handle's
    /// pointer need not be valid. Returns the host's error when it cannot say what draws.
    PF_Err Fill(PF_InData* in_data) {
        writtenRecords.Forget(handle_);
        auto* record = static_cast<GlobalData*>(handles_->host_lock_handle(handle_));
        if (record == nullptr) return PF_Err_NONE;
        locked_ = true;
        std::memset(record, 0, sizeof(GlobalData));
        writtenRecords.Note(handle_);
        RendererRequest request;
        request.choice = RendererChoice::kOpenGL;
        if (PF_Err err = ReadRendererRequest(in_data, &request)) return err;
        if (request.choice == RendererChoice::kProcessor) {
            DescribeProcessor(record);
            return PF_Err_NONE;
        }
        ProbeDriver(record);
        context_ = record->context;
        return PF_Err_NONE;
    }
    void Unlock() {
        if (locked_) {
            locked_ = false;
            handles_->host_unlock_handle(handle_);
        }
    }
    void Keep() { handle_ = nullptr; }

 private:
    const PF_HandleSuite1* handles_;
    PF_Handle handle_;
    CGLContextObj context_ = nullptr;
    bool locked_ = false;
};

}  // namespace

PF_Err GlobalSetup(PF_InData* in_data, PF_OutData* out_data) {
    out_data->my_version = kVersionPacked;
    out_data->out_flags = kOutFlags;
    out_data->out_flags2 = kOutFlags2;
    if (in_data->appl_id == kAppID_Premiere) out_data->out_flags = PF_OutFlag_I_AM_OBSOLETE;

    AEGP_SuiteHandler suites(in_data->pica_basicP);
    const PF_HandleSuite1* handles = suites.HandleSuite1();
    NewRecord record(handles);
    if (record.Handle() == nullptr) return PF_Err_NONE;
    if (PF_Err err = record.Fill(in_data)) return err;
    const PF_Handle previous = out_data->global_data;
    out_data->global_data = record.Handle();
    try {
        record.Unlock();
    } catch (...) {
        out_data->global_data = previous;
        throw;
    }
    record.Keep();
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
    // Kept in the child of a fork: the context, whose driver is not there.
    if (writtenRecords.Contains(handle) && record->context != nullptr && !OpenGLLostByFork()) {
        SetCurrentContext(record->context);
        DeleteContext(record->context);
        SetCurrentContext(nullptr);
    }
    writtenRecords.Forget(handle);
    RunBoth([&] { handles->host_unlock_handle(handle); },
            [&] { RunBoth([&] { handles->host_dispose_handle(handle); }, [&] { in_data->global_data = nullptr; }); });
    return PF_Err_NONE;
}

}  // namespace umbrant::effect
