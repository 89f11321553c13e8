// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The time of the host.

#include "openfx/abi/core.h"

inline constexpr char kOfxTimeLineSuite[] = "OfxTimeLineSuite";

struct OfxTimeLineSuiteV1 {
    OfxStatus (*getTime)(void*, double*);
    OfxStatus (*gotoTime)(void*, double);
    OfxStatus (*getTimeBounds)(void*, double*, double*);
};
