// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What this process takes of the machine.

/// Bytes of memory in use, shared libraries included; 0 where the system does not tell.
long ResidentBytes();
/// Files that are open.
int OpenFiles();
/// Threads that run.
int RunningThreads();
/// The most bytes of memory that were in use so far.
long PeakBytes();
/// Lets this process take a few GiB more than it has, and no more, so that a mistake does not stop the machine.
void LimitMemory();
