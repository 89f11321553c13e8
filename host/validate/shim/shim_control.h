// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the checks control the library that they put between a module and the C library and the driver. Found by name in
// the running process; absent unless the process was started with the library preloaded.

#include <cstddef>

/// What can be made to fail in a driver.
enum ShimFault {
    SHIM_NONE,
    SHIM_NO_CONTEXT,              ///< eglCreateContext gives none
    SHIM_COMPILE_FAILS,           ///< every shader says that it did not compile
    SHIM_LINK_FAILS,              ///< every program says that it did not link
    SHIM_INCOMPLETE_FRAMEBUFFER,  ///< every framebuffer says that it is incomplete
    SHIM_OUT_OF_MEMORY,           ///< textures get no memory, and glGetError says so
    SHIM_SMALL_TEXTURES,          ///< the largest texture has 8 pixels
    SHIM_LOST_CONTEXT,            ///< contexts were reset: nothing is drawn or read any more
    SHIM_FAULT_COUNT
};

extern "C" {
/// Calls whose return address is in [begin, end) are the module's.
using ShimSetModule = void (*)(const void* begin, const void* end);
/// The k-th allocation of the module from now on fails, once; 0 for none. Counting begins anew.
using ShimFailAllocation = void (*)(long k);
/// Allocations of the module since ShimFailAllocation.
using ShimCountAllocations = long (*)();
/// From now on the driver fails so.
using ShimSetFault = void (*)(int fault);
/// How often calls were met that the fault is about, since it was set.
using ShimCountFaults = long (*)();
}

inline constexpr char kShimSetModule[] = "umbrantShimSetModule";
inline constexpr char kShimFailAllocation[] = "umbrantShimFailAllocation";
inline constexpr char kShimCountAllocations[] = "umbrantShimCountAllocations";
inline constexpr char kShimSetFault[] = "umbrantShimSetFault";
inline constexpr char kShimCountFaults[] = "umbrantShimCountFaults";
