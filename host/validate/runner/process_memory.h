// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What this process takes of the machine.

#include <filesystem>
#include <optional>

namespace umbrant::host {

/// Whether the program was built with a sanitizer that watches memory or threads: then the file of its runtime library,
/// or this program's when it is linked into it.
std::optional<std::filesystem::path> SanitizerRuntime();

/// Bytes of memory in use, shared libraries included; 0 where the system does not report it. With a sanitizer, which
/// keeps freed memory for a while, the bytes of its heap that are not freed.
long ResidentBytes();
/// Files that are open.
int OpenFiles();
/// Threads that run.
int RunningThreads();
/// The most bytes of memory that were in use so far.
long PeakBytes();
/// Lets this process take a few GiB more than it has, and no more, so that a mistake does not stop the machine.
void LimitMemory();

}  // namespace umbrant::host
