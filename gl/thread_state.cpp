// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/thread_state.h"

#include <mutex>

#include "entry/global_data.h"
#include "gl/context.h"
#include "gl/quad.h"
#include "platform/fork.h"

using namespace umbrant::effect;

thread_local std::unique_ptr<LocalGLStruct, tls_ctx_deleter> local_render_data;

namespace {

// Whether global set-up could make a context at all. Intended: the handle's pointer is read without a lock.
bool HasProbeContext(PF_Handle globalData) {
    if (!writtenRecords.Contains(globalData) || !*globalData) return false;
    return reinterpret_cast<const GlobalData*>(*globalData)->context != nullptr;
}

// Kept: what a forked child's thread had in the parent; its driver is not there to delete it.
void ForgetRecordInChild() {
    static_cast<void>(local_render_data.release());
}
const bool watchingForks = (OnFork(ForgetRecordInChild), true);

}  // namespace

void tls_ctx_deleter::operator()(LocalGLStruct* record) const noexcept {
    if (!record->context) return;
    SetCurrentContext(record->context);
    DeleteQuad(&record->quadVAO, &record->quadVBO);
    for (Program& program : record->programs) {
        if (program.id != 0) glDeleteProgram(program.id);
        program.id = 0;
        program.initialised = false;
    }
    DeleteContext(record->context);
    // Kept: the record is abandoned here.
}

void InitThreadLocalRenderData(PF_InData* in_data, PF_OutData* out_data) {
    static std::mutex tls_mutex;
    const std::lock_guard lock(tls_mutex);
    if (local_render_data) {
        SetCurrentContext(local_render_data->context);
        return;
    }
    if (!HasProbeContext(in_data->global_data)) return;

    // The record stays also when its context could not be made, so that this thread never tries again.
    local_render_data.reset(new LocalGLStruct);
    LocalGLStruct& record = *local_render_data;
    record.context = CreateContext(nullptr, nullptr);
    if (!record.context) return;
    SetCurrentContext(record.context);
    InitPrograms(record.programs, out_data);
    InitQuad(&record.quadVAO, &record.quadVBO);
}
