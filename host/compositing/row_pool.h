// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Work on the rows of a picture, spread over the processor's cores by a small pool of threads that lives as long as the
// program.

#include <functional>

namespace umbrant::host {

/// How many threads work at a time, the calling one included; at least 1.
int RowThreads();
/// Asks for another number of threads than the machine has cores; before the first work, else it does nothing.
void SetRowThreads(int threads);

/// Calls `work(index, thread)` once for every index in [0, count), on several threads at once and in no fixed order,
/// and returns when all calls have returned. `thread` is in [0, RowThreads()), and no two calls that run at the same
/// time under one RunRows share it. Indices are handed out in runs of neighbours. Called from inside a `work`, it runs
/// on the calling thread alone. Safe to call from several threads at once.
///
/// An exception in `work` stops the handing out of indices and is thrown again here, on the calling thread.
/// `work` returns false to stop early: calls in progress finish, and no others start.
void RunRows(int count, const std::function<bool(int index, int thread)>& work);

/// Calls `work(begin, end)` for runs of neighbouring rows that together make up [0, count).
void ForEachRowRange(int count, const std::function<void(int begin, int end)>& work);

}  // namespace umbrant::host
