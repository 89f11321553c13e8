// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What code deep in the module throws: a host error as a plain integer.

#include "hostapi/basic_types.h"

/// What `call` throws as an error of the host; -1 when it throws nothing. Other exceptions pass.
template <typename Call>
PF_Err ThrownBy(Call call) {
    try {
        call();
    } catch (PF_Err err) {
        return err;
    }
    return -1;
}
