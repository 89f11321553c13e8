// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The beginning of every suite function that takes a handle.

#include "tests/openfx/host/host.h"

namespace umbrant::ofx {

/// Counts the call and finds the handle's object; null with a status if the function must not go on.
template <typename T>
T* Begin(const char* function, const void* handle, const char* kind, OfxStatus& status) {
    Host& host = *Host::Current();
    status = host.Enter(function);
    if (status != kOfxStatOK) return nullptr;
    T* object = host.Find<T>(handle, function, kind);
    if (object == nullptr) status = kOfxStatErrBadHandle;
    return object;
}

}  // namespace umbrant::ofx
