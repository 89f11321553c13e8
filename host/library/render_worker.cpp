// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/library/render_worker.h"

#include <unistd.h>

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "host/process/start_threads.h"

namespace umbrant::host {

/// The thread and the works that wait for it.
class RenderWorker::Loop {
 public:
    Loop() : thread_(StartThread([this] { Serve(); })) {}
    ~Loop() {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        wake_.notify_all();
    }

    bool HasThread() const { return thread_.has_value(); }
    /// False in a child of fork(), which has not the thread and perhaps a locked mutex.
    bool IsOwn() const { return process_ == getpid(); }

    void Run(const std::function<void()>& work) {
        Task task{work};
        std::unique_lock lock(mutex_);
        tasks_.push_back(&task);
        wake_.notify_all();
        done_.wait(lock, [&] { return task.isDone; });
        lock.unlock();
        if (task.failure) std::rethrow_exception(task.failure);
    }

 private:
    /// Lives on the caller's stack until it is done.
    struct Task {
        const std::function<void()>& work;
        bool isDone = false;
        std::exception_ptr failure{};
    };

    void Serve() {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [&] { return isEnding_ || !tasks_.empty(); });
            if (tasks_.empty()) return;
            Task* task = tasks_.front();
            tasks_.pop_front();
            lock.unlock();
            try {
                task->work();
            } catch (...) {
                task->failure = std::current_exception();
            }
            lock.lock();
            task->isDone = true;
            done_.notify_all();
        }
    }

    const pid_t process_ = getpid();
    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    std::deque<Task*> tasks_;
    bool isEnding_ = false;
    std::optional<std::jthread> thread_;  ///< the last, so that it ends before what it uses
};

RenderWorker::~RenderWorker() {
    // Kept in a child of fork(): a condition that the parent's thread waited for cannot be destroyed.
    if (loop_ && loop_->IsOwn()) delete loop_;
}

RenderWorker::Loop* RenderWorker::Started() {
    const std::lock_guard lock(mutex_);
    if (loop_ && loop_->IsOwn()) return loop_;
    auto loop = std::make_unique<Loop>();
    if (!loop->HasThread()) return nullptr;
    loop_ = loop.release();
    return loop_;
}

Result<Done> RenderWorker::Run(const std::function<void()>& work) {
    Loop* const loop = Started();
    if (!loop) {
        return Failure{ErrorKind::kInternal,
                       "the thread that renders with OpenGL cannot be started: the system refuses more threads; allow "
                       "more, or use the CPU renderer"};
    }
    loop->Run(work);
    return Done{};
}

void RenderWorker::RunAnyhow(const std::function<void()>& work) noexcept {
    bool isRun = false;
    const auto once = [&] {
        isRun = true;
        work();
    };
    try {
        static_cast<void>(Run(once));
    } catch (...) {
        // Dropped, as documented; without a thread or memory for it the work follows here.
    }
    if (isRun) return;
    try {
        work();
    } catch (...) {
        // Dropped, as documented.
    }
}

}  // namespace umbrant::host
