// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#pragma once

// Host memory for the length of a scope: whatever happens inside, the handle is unlocked and disposed of. What the host
// throws there is dropped.

#include <cstdint>

#include "entry/suites/without_throwing.h"
#include "hostapi/suites/handle_suite.h"

namespace umbrant::effect {

/// Bytes of `width` x `height` elements, formed in 64 bits; 0 when either is below 1.
constexpr A_HandleSize ElementBytes(int32_t width, int32_t height, A_HandleSize bytesPerElement) {
    if (width < 1 || height < 1) return 0;
    return static_cast<A_HandleSize>(width) * static_cast<A_HandleSize>(height) * bytesPerElement;
}

/// A new handle of the host's, owned. Check for null; locked only when `Lock` was called and gave an address.
class LockedHandle {
 public:
    LockedHandle(const PF_HandleSuite1* suite, A_HandleSize bytes)
        : suite_(suite), handle_(suite->host_new_handle(bytes)) {}
    ~LockedHandle() {
        if (address_) WithoutThrowing([this] { suite_->host_unlock_handle(handle_); });
        if (handle_) WithoutThrowing([this] { suite_->host_dispose_handle(handle_); });
    }
    LockedHandle(const LockedHandle&) = delete;
    LockedHandle& operator=(const LockedHandle&) = delete;

    PF_Handle Get() const { return handle_; }
    /// Locks the handle, once; null when it is null or the host refuses.
    void* Lock() {
        if (handle_) address_ = suite_->host_lock_handle(handle_);
        return address_;
    }
    /// Gives the handle up, neither unlocked nor disposed of.
    void Abandon() {
        address_ = nullptr;
        handle_ = nullptr;
    }

 private:
    const PF_HandleSuite1* suite_;
    PF_Handle handle_;
    void* address_ = nullptr;
};

}  // namespace umbrant::effect
