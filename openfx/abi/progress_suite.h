// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A progress bar of the host. `progressUpdate` takes 0 to 1 and answers ReplyNo where the work is to stop.

#include "openfx/abi/core.h"

inline constexpr char kOfxProgressSuite[] = "OfxProgressSuite";

struct OfxProgressSuiteV1 {
    OfxStatus (*progressStart)(void*, const char*);
    OfxStatus (*progressUpdate)(void*, double);
    OfxStatus (*progressEnd)(void*);
};

struct OfxProgressSuiteV2 {
    OfxStatus (*progressStart)(void*, const char*, const char*);
    OfxStatus (*progressUpdate)(void*, double);
    OfxStatus (*progressEnd)(void*);
};
