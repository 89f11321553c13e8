// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The suite of suites: every other table is acquired and released here. The command record carries it as `pica_basicP`,
// which may be null.
// Slot order is the ABI, also of the slots that nothing calls: hostapi/abi_asserts.cpp proves every offset. A non-zero
// result is an error.

#include "hostapi/basic_types.h"

inline constexpr char kSPBasicSuiteName[] = "SP Basic Suite";
inline constexpr int32_t kSPBasicSuiteVersion = 4;

struct SPBasicSuite {
    /// Looks a table up by name and version and counts one more user. The table stays the host's, unchanging until it
    /// is released. An unknown name or version gives an error and leaves nothing to release. [any]
    SPErr (*AcquireSuite)(const char* name, int32_t version, const void** suite);
    /// Counts one user less; each successful acquisition is answered by exactly one release. [any]
    SPErr (*ReleaseSuite)(const char* name, int32_t version);
    /// Not 0 when both strings are equal. [any]
    SPBoolean (*IsEqual)(const char* token1, const char* token2);
    /// Allocates `size` bytes. The caller frees them with FreeBlock; on an error `*block` is not to be used. [any]
    SPErr (*AllocateBlock)(size_t size, void** block);
    /// Frees a block of AllocateBlock or ReallocateBlock. [any]
    SPErr (*FreeBlock)(void* block);
    /// Grows or shrinks a block, perhaps moving it; on an error the old block is still the caller's. [any]
    SPErr (*ReallocateBlock)(void* block, size_t newSize, void** newblock);
    /// Fills a slot that a table does not implement; it always returns an error. [any]
    SPErr (*Undefined)(void);
};
