// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Threads and locks of the host.

#include "openfx/abi/core.h"

inline constexpr char kOfxMultiThreadSuite[] = "OfxMultiThreadSuite";

/// Thread index, number of threads, the argument of `multiThread`.
using OfxThreadFunctionV1 = void(unsigned int, unsigned int, void*);

struct OfxMultiThreadSuiteV1 {
    OfxStatus (*multiThread)(OfxThreadFunctionV1*, unsigned int, void*);
    OfxStatus (*multiThreadNumCPUs)(unsigned int*);
    OfxStatus (*multiThreadIndex)(unsigned int*);
    int (*multiThreadIsSpawnedThread)();
    OfxStatus (*mutexCreate)(OfxMutexHandle*, int);
    OfxStatus (*mutexDestroy)(OfxMutexHandle);
    OfxStatus (*mutexLock)(OfxMutexHandle);
    OfxStatus (*mutexUnLock)(OfxMutexHandle);
    OfxStatus (*mutexTryLock)(OfxMutexHandle);
};
