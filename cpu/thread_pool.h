// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The CPU renderer's threads: one pool per process, as many threads as the machine has cores, the caller counted. It
// starts with the first work that needs it and is joined on demand, since the code it runs may be unloaded. Where no
// more threads can be had, those that there are do the work, at least the caller's own.

#include <functional>

namespace umbrant::effect {

/// How many threads work at a time, the calling one included; at least 1.
int PoolThreads();

/// Limits `PoolThreads` to `threads` from the next start of the pool on; 0 takes the limit away. For measurements; ends
/// the threads there are. Must not be called while work runs.
void LimitPoolThreads(int threads);

/// Calls `work(task, worker)` once for every task in [0, count), handing them out in order, and returns when all have
/// returned. `worker` is in [0, PoolThreads()); two calls at the same time never share it. One run at a time in the
/// process: renders are serialised. `work` must not run tasks itself; what it throws ends the run and is thrown here.
void RunTasks(int count, const std::function<void(int task, int worker)>& work);

/// Joins the threads. The next run starts them again.
void EndPool();

/// In a forked child, before anything else: the threads are the parent's, so the pool forgets them and whatever it was
/// doing. The next run starts it as if for the first time.
void ForgetPoolInChild();

}  // namespace umbrant::effect
