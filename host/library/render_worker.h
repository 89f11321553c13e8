// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The thread on which a set-up of a module draws with OpenGL. A context stays current on the thread that drew, and the
// threads that call the library belong to programs with contexts of their own.

#include <functional>

#include "host/process/fork_lock.h"
#include "host/result.h"

namespace umbrant::host {

/// One thread, started with the first work. In a child of fork() it is another one, started there. [any]
class RenderWorker {
 public:
    RenderWorker() = default;
    /// Waits until the thread has ended, and with it its context. No call may be in progress.
    ~RenderWorker();
    RenderWorker(const RenderWorker&) = delete;
    RenderWorker& operator=(const RenderWorker&) = delete;

    /// Runs `work` on the thread, after the works of other callers, and returns when it is done. What it throws is
    /// thrown here. Fails with `ErrorKind::kInternal`, and has not run it, when the system refuses the thread.
    Result<Done> Run(const std::function<void()>& work);

    /// The same for work that cannot be left out: on the calling thread where the system refuses another. What it
    /// throws is dropped.
    void RunAnyhow(const std::function<void()>& work) noexcept;

 private:
    class Loop;
    /// This process's; null when the system refuses the thread.
    Loop* Started();

    ForkLock mutex_;  ///< around what follows
    Loop* loop_ = nullptr;
};

}  // namespace umbrant::host
