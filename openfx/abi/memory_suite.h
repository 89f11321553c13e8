// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Memory of the host.

#include <cstddef>

#include "openfx/abi/core.h"

inline constexpr char kOfxMemorySuite[] = "OfxMemorySuite";

struct OfxMemorySuiteV1 {
    OfxStatus (*memoryAlloc)(void*, size_t, void**);
    OfxStatus (*memoryFree)(void*);
};
