// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Host memory behind movable handles.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

inline constexpr char kPFHandleSuiteName[] = "PF Handle Suite";
inline constexpr int32_t kPFHandleSuiteVersion1 = 2;

struct PF_HandleSuite1 {
    PF_Handle (*host_new_handle)(A_HandleSize size);
    void* (*host_lock_handle)(PF_Handle pf_handle);
    void (*host_unlock_handle)(PF_Handle pf_handle);
    void (*host_dispose_handle)(PF_Handle pf_handle);
    A_HandleSize (*host_get_handle_size)(PF_Handle pf_handle);
    PF_Err (*host_resize_handle)(A_HandleSize new_sizeL, PF_Handle* handlePH);
};
