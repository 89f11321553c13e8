// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_file.h"

#include <atomic>
#include <cstdlib>

namespace umbrant::host {

namespace {

// Of any file since one was opened last: with it the library's word for a lack of memory is believed.
std::atomic<bool> memoryWasMissing{false};

void* Allocate(std::size_t bytes) {
    void* const memory = std::malloc(bytes);
    if (!memory) memoryWasMissing = true;
    return memory;
}

void Free(void* memory) {
    std::free(memory);
}

/// Every failure is also returned; without this the library prints it.
void Ignore(exr_const_context_t, exr_result_t, const char*) {}

}  // namespace

std::string ExrReason(exr_result_t failure) {
    switch (failure) {
        case EXR_ERR_OUT_OF_MEMORY:
            // The library also returns this for damaged blocks, whose values do not fit where they should.
            return memoryWasMissing ? "not enough memory" : "the contents are damaged";
        case EXR_ERR_READ_IO:
            return "the file ends too early";
        default:
            return "the contents are damaged";
    }
}

exr_context_initializer_t QuietExr() {
    exr_context_initializer_t context = EXR_DEFAULT_CONTEXT_INITIALIZER;
    context.error_handler_fn = Ignore;
    context.alloc_fn = Allocate;
    context.free_fn = Free;
    memoryWasMissing = false;
    return context;
}

}  // namespace umbrant::host
