// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Messages to people. Arguments: instance or null, type, identifier or null, a printf format and its values. Version 2
// begins with version 1.

#include "openfx/abi/core.h"

inline constexpr char kOfxMessageSuite[] = "OfxMessageSuite";

inline constexpr char kOfxMessageFatal[] = "OfxMessageFatal";
inline constexpr char kOfxMessageError[] = "OfxMessageError";
inline constexpr char kOfxMessageWarning[] = "OfxMessageWarning";
inline constexpr char kOfxMessageMessage[] = "OfxMessageMessage";
inline constexpr char kOfxMessageLog[] = "OfxMessageLog";
inline constexpr char kOfxMessageQuestion[] = "OfxMessageQuestion";

struct OfxMessageSuiteV1 {
    OfxStatus (*message)(void*, const char*, const char*, const char*, ...);
};

struct OfxMessageSuiteV2 {
    OfxStatus (*message)(void*, const char*, const char*, const char*, ...);
    OfxStatus (*setPersistentMessage)(void*, const char*, const char*, const char*, ...);
    OfxStatus (*clearPersistentMessage)(void*);
};
