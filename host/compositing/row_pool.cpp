// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/row_pool.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "host/process/fork_lock.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

/// One RunRows call. Lives on the caller's stack until every thread has left it.
struct Job {
    int count;
    int grain;
    const std::function<bool(int first, int last, int thread)>& work;
    std::atomic<int> next{0};
    std::atomic<bool> stopped{false};
    int inside = 0;  ///< pool threads at work on it; guarded by the pool's mutex
    std::mutex failureMutex{};
    std::exception_ptr failure{};

    bool HasMore() const { return !stopped && next < count; }

    void Work(int thread) {
        while (!stopped) {
            const int first = next.fetch_add(grain);
            if (first >= count) return;
            const int last = std::min(first + grain, count);
            try {
                if (!work(first, last, thread)) stopped = true;
            } catch (...) {
                const std::lock_guard lock(failureMutex);
                if (!failure) failure = std::current_exception();
                stopped = true;
            }
        }
    }
};

thread_local bool insideWork = false;
std::atomic<int> wantedThreads = 0;  // 0: as many as there are cores
std::atomic<int> usedThreads = 0;    // 0: not asked for yet
const int cores = static_cast<int>(std::thread::hardware_concurrency());

/// The helper threads. They wait for jobs and end with the program.
class Pool {
 public:
    Pool() {
        // With fewer than these, even with none, the callers do the rest.
        const int wanted = RowThreads() - 1;
        threads_ = StartThreads(wanted, [this](int i) { Serve(i + 1); });
        const int allowed = static_cast<int>(threads_.size());
        if (allowed < wanted) NoteThreadShortage({wanted, allowed});
    }

    ~Pool() {
        {
            const std::lock_guard lock(mutex_);
            ending_ = true;
        }
        wake_.notify_all();
    }

    /// False in a child of fork(), which has none of the threads and perhaps a locked mutex.
    bool IsOwn() const { return process_ == getpid(); }

    void Run(Job& job) {
        {
            const std::lock_guard lock(mutex_);
            jobs_.push_back(&job);
        }
        wake_.notify_all();
        job.Work(0);
        std::unique_lock lock(mutex_);
        jobs_.remove(&job);
        left_.wait(lock, [&] { return job.inside == 0; });
    }

 private:
    void Serve(int thread) {
        insideWork = true;
        std::unique_lock lock(mutex_);
        for (;;) {
            // Asked once: the caller may take a job's last rows at any moment, without the lock.
            Job* job = nullptr;
            wake_.wait(lock, [&] { return ending_ || (job = Pending()) != nullptr; });
            if (ending_) return;
            ++job->inside;
            lock.unlock();
            job->Work(thread);
            lock.lock();
            --job->inside;
            left_.notify_all();
        }
    }

    Job* Pending() const {
        const auto found = std::find_if(jobs_.begin(), jobs_.end(), [](const Job* job) { return job->HasMore(); });
        return found == jobs_.end() ? nullptr : *found;
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable left_;
    std::list<Job*> jobs_;
    bool ending_ = false;
    const pid_t process_ = getpid();
    std::vector<std::jthread> threads_;  ///< the last, so that they end before what they use
};

/// The last pool that was made, and who makes the next. Nothing here is a static object of a function: a child
/// of fork() would wait forever for a thread of its parent that was creating it.
std::atomic<Pool*> made{nullptr};
ForkLock& making = *new ForkLock;  // Kept: never destroyed, because effects may be members of static objects.

/// Ends the pool with the process that made it. Kept in a child of fork(), where none of the threads are, and where a
/// condition that they waited for cannot be destroyed.
const struct EndOfProcess {
    ~EndOfProcess() {
        Pool* pool = made.exchange(nullptr);
        if (pool && pool->IsOwn()) delete pool;
    }
} endOfProcess;

/// The calling process's pool. A child of fork() gets a new one.
Pool& ThePool() {
    Pool* known = made;
    if (known && known->IsOwn()) return *known;
    const std::lock_guard lock(making);
    known = made;
    if (!known || !known->IsOwn()) made = known = new Pool;
    return *known;
}

void RunRanges(int count, const std::function<bool(int first, int last, int thread)>& work) {
    if (count <= 0) return;
    // Several runs per thread, so that a thread which got light rows takes over from one with heavy rows.
    Job job{.count = count, .grain = std::max(1, count / (RowThreads() * 8)), .work = work};
    if (insideWork || RowThreads() == 1 || count == 1) {
        job.Work(0);
    } else {
        Pool& pool = ThePool();
        insideWork = true;
        pool.Run(job);
        insideWork = false;
    }
    if (job.failure) std::rethrow_exception(job.failure);
}

}  // namespace

int RowThreads() {
    int used = usedThreads;
    if (used > 0) return used;
    const int wanted = wantedThreads > 0 ? wantedThreads.load() : std::max(1, cores);
    return usedThreads.compare_exchange_strong(used, wanted) ? wanted : used;
}

void SetRowThreads(int threads) {
    wantedThreads = threads;
}

void ForEachRowRange(int count, const std::function<void(int begin, int end)>& work) {
    RunRanges(count, [&](int begin, int end, int) {
        work(begin, end);
        return true;
    });
}

void RunRows(int count, const std::function<bool(int index, int thread)>& work) {
    std::atomic<bool> stopped{false};
    RunRanges(count, [&](int begin, int end, int thread) {
        for (int index = begin; index < end && !stopped; ++index) {
            if (!work(index, thread)) stopped = true;
        }
        return !stopped;
    });
}

}  // namespace umbrant::host
