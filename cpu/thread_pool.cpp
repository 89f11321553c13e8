// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The pool. Between the short runs of one frame its threads wait a moment awake, so that a run costs microseconds, and
// then sleep.

#include "cpu/thread_pool.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace umbrant::effect {

namespace {

constexpr std::chrono::microseconds kAwake{50};
// A frame takes many runs; none but the first of a second asks again for threads that could not be had.
constexpr std::chrono::seconds kUntilNextAttempt{1};

// Read before the first frame, so that no fork falls into it.
const int cores = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));

class Pool {
 public:
    ~Pool() { End(); }

    int Threads() const {
        const int limit = limit_;
        return limit > 0 ? limit : cores;
    }

    void Limit(int threads) {
        End();
        limit_ = threads;
    }

    void Run(int count, const std::function<void(int, int)>& work) {
        const std::lock_guard running(running_);
        if (count <= 1 || Threads() == 1) {
            for (int task = 0; task < count; ++task) work(task, 0);
            return;
        }
        Start();
        work_ = &work;
        count_ = count;
        next_ = 0;
        busy_ = static_cast<int>(threads_.size());
        {
            const std::lock_guard lock(mutex_);
            generation_.fetch_add(1, std::memory_order_release);
        }
        wake_.notify_all();
        Work(0);
        // The others are at their last task.
        while (busy_.load(std::memory_order_acquire) > 0) std::this_thread::yield();
        if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    }

    void End() {
        const std::lock_guard running(running_);
        {
            const std::lock_guard lock(mutex_);
            ending_ = true;
        }
        wake_.notify_all();
        for (std::thread& thread : threads_) thread.join();
        threads_.clear();
        ending_ = false;
        nextAttempt_ = {};
    }

    // Kept: the records of the threads, which never end here.
    void StartAfresh() {
        const int limit = limit_;
        new (this) Pool;
        limit_ = limit;
    }

 private:
    // One by one: the first that cannot be made ends the attempt, and the work is done with those that there are.
    void Start() {
        int worker = static_cast<int>(threads_.size()) + 1;
        if (worker >= Threads() || std::chrono::steady_clock::now() < nextAttempt_) return;
        try {
            for (; worker < Threads(); ++worker) {
                threads_.emplace_back([this, worker, seen = generation_.load()] { Serve(worker, seen); });
            }
        } catch (const std::exception&) {
            nextAttempt_ = std::chrono::steady_clock::now() + kUntilNextAttempt;
        }
    }

    void Work(int worker) {
        for (;;) {
            const int task = next_.fetch_add(1, std::memory_order_relaxed);
            if (task >= count_) return;
            try {
                (*work_)(task, worker);
            } catch (...) {
                const std::lock_guard lock(mutex_);
                if (!failure_) failure_ = std::current_exception();
                next_ = count_;
            }
        }
    }

    bool Due(unsigned seen) const { return ending_ || generation_.load(std::memory_order_acquire) != seen; }

    void Serve(int worker, unsigned seen) {
        for (;;) {
            const auto sleep = std::chrono::steady_clock::now() + kAwake;
            while (!Due(seen) && std::chrono::steady_clock::now() < sleep) std::this_thread::yield();
            {
                std::unique_lock lock(mutex_);
                wake_.wait(lock, [&] { return Due(seen); });
            }
            if (ending_) return;
            ++seen;
            Work(worker);
            busy_.fetch_sub(1, std::memory_order_release);
        }
    }

    std::mutex running_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<std::thread> threads_;
    std::chrono::steady_clock::time_point nextAttempt_;
    std::atomic<unsigned> generation_{0};
    std::atomic<bool> ending_{false};
    std::atomic<int> next_{0};
    std::atomic<int> busy_{0};
    const std::function<void(int, int)>* work_ = nullptr;
    std::exception_ptr failure_;
    int count_ = 0;
    std::atomic<int> limit_{0};
};

// Destroyed when the module is unloaded, which joins threads that no set-down has joined.
Pool pool;

}  // namespace

int PoolThreads() {
    return pool.Threads();
}

void LimitPoolThreads(int threads) {
    pool.Limit(threads);
}

void RunTasks(int count, const std::function<void(int task, int worker)>& work) {
    pool.Run(count, work);
}

void EndPool() {
    pool.End();
}

void ForgetPoolInChild() {
    pool.StartAfresh();
}

}  // namespace umbrant::effect
