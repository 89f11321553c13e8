// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The suite of suites: how every other table of functions is found.
// Slot order is the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

inline constexpr char kSPBasicSuiteName[] = "SP Basic Suite";
inline constexpr int32_t kSPBasicSuiteVersion = 4;

struct SPBasicSuite {
    SPErr (*AcquireSuite)(const char* name, int32_t version, const void** suite);
    SPErr (*ReleaseSuite)(const char* name, int32_t version);
    SPBoolean (*IsEqual)(const char* token1, const char* token2);
    SPErr (*AllocateBlock)(size_t size, void** block);
    SPErr (*FreeBlock)(void* block);
    SPErr (*ReallocateBlock)(void* block, size_t newSize, void** newblock);
    SPErr (*Undefined)(void);
};
