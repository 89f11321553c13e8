// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/fork_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "tests/support/child_process.h"

namespace umbrant::host {

namespace {

using namespace std::chrono_literals;

/// Holds the lock on a thread of its own, again and again, until it goes; counts up twice while it holds it.
class Holder {
 public:
    explicit Holder(ForkLock& lock, std::chrono::microseconds pause = 200us)
        : thread_([this, &lock, pause] {
              while (!stop_) {
                  const std::lock_guard guard(lock);
                  ++steps;
                  std::this_thread::sleep_for(pause);
                  ++steps;
              }
          }) {
        while (steps == 0) std::this_thread::yield();
    }
    ~Holder() {
        stop_ = true;
        thread_.join();
    }

    std::atomic<long> steps = 0;

 private:
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

int Take(ForkLock& lock) {
    const std::lock_guard guard(lock);
    return 0;
}

TEST(ForkLock, AChildFindsItFreeAndWhatItGuardsWhole) {
    for (const ForkRank rank :
         {ForkRank::kModules, ForkRank::kEffect, ForkRank::kModule, ForkRank::kSession, ForkRank::kTable}) {
        ForkLock lock(rank);
        Holder holder(lock);
        for (int fork = 0; fork < 20; ++fork) {
            EXPECT_EQ(RunInChild([&] { return holder.steps % 2 != 0 ? 1 : Take(lock); }, 60s), 0);
        }
        EXPECT_EQ(Take(lock), 0) << "the parent goes on";
    }
}

TEST(ForkLock, AThreadThatForksWhileItHoldsOneHoldsItInTheChild) {
    ForkLock own(ForkRank::kModule);
    ForkLock later(ForkRank::kTable);
    Holder holder(later);
    {
        const std::lock_guard guard(own);
        EXPECT_EQ(RunInChild([&] { return Take(later); }, 60s), 0) << "one of a later rank is waited for";
    }
    EXPECT_EQ(Take(own), 0) << "released once";
}

TEST(ForkLock, AForkUnderALockWaitsForNoneOfAnEarlierRank) {
    ForkLock first(ForkRank::kModules);
    ForkLock second(ForkRank::kModule);
    const std::lock_guard guard(second);
    std::atomic<bool> waits = false;
    std::thread other([&] {
        const std::lock_guard outer(first);
        waits = true;
        const std::lock_guard inner(second);
    });
    while (!waits) std::this_thread::yield();
    EXPECT_EQ(RunInChild([] { return 0; }, 60s), 0) << "it would wait for a thread that waits for this one";
    second.unlock();
    other.join();
    second.lock();
}

TEST(ForkLock, LocksComeAndGoWhileAnotherThreadForks) {
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) {
            ForkLock outer(ForkRank::kModules);
            const std::lock_guard guard(outer);
            std::vector<std::unique_ptr<ForkLock>> locks;
            for (int i = 0; i < 10; ++i) locks.push_back(std::make_unique<ForkLock>());
        }
    });
    for (int fork = 0; fork < 50; ++fork) {
        EXPECT_EQ(RunInChild(
                      [] {
                          ForkLock made;
                          return Take(made);
                      },
                      60s),
                  0);
    }
    stop = true;
    other.join();
}

}  // namespace

}  // namespace umbrant::host
