// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Host memory behind handles. A PF_Handle is the address of the host's master pointer, which leads to the data; the
// data may move while nobody has it locked, so an address is kept only between lock and unlock. Slot order is the ABI,
// also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

inline constexpr char kPFHandleSuiteName[] = "PF Handle Suite";
inline constexpr int32_t kPFHandleSuiteVersion1 = 2;

struct PF_HandleSuite1 {
    /// A handle to `size` bytes, their content unspecified; null when memory is short. The caller frees it with
    /// host_dispose_handle or hands it to the host in a field that says so. [any]
    PF_Handle (*host_new_handle)(A_HandleSize size);
    /// Pins the data and returns its address; null when that fails. Answered by one host_unlock_handle. [any]
    void* (*host_lock_handle)(PF_Handle pf_handle);
    /// Ends one lock; the address is dead afterwards. Reports nothing. [any]
    void (*host_unlock_handle)(PF_Handle pf_handle);
    /// Frees handle and data. Reports nothing. [any]
    void (*host_dispose_handle)(PF_Handle pf_handle);
    /// The data's size in bytes. [any]
    A_HandleSize (*host_get_handle_size)(PF_Handle pf_handle);
    /// Changes the size, keeping the content up to the smaller one; `*handlePH` may be replaced. An error leaves the
    /// old handle valid. [any]
    PF_Err (*host_resize_handle)(A_HandleSize new_sizeL, PF_Handle* handlePH);
};
