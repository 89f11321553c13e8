// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/exr/exr_file.h"

namespace umbrant::host {

namespace {

/// Every failure is also returned; without this the library prints it.
void Ignore(exr_const_context_t, exr_result_t, const char*) {}

}  // namespace

std::string ExrReason(exr_result_t failure) {
    switch (failure) {
        case EXR_ERR_OUT_OF_MEMORY:
            return "not enough memory";
        case EXR_ERR_READ_IO:
            return "the file ends too early";
        default:
            return "the contents are damaged";
    }
}

exr_context_initializer_t QuietExr() {
    exr_context_initializer_t context = EXR_DEFAULT_CONTEXT_INITIALIZER;
    context.error_handler_fn = Ignore;
    return context;
}

}  // namespace umbrant::host
