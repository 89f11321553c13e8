// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "cpu/thread_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace umbrant::effect {

namespace {

class ThreadPoolTest : public ::testing::Test {
 protected:
    ~ThreadPoolTest() override { LimitPoolThreads(0); }
};

TEST_F(ThreadPoolTest, EveryTaskRunsOnce) {
    for (int threads : {1, 2, 4}) {
        LimitPoolThreads(threads);
        for (int count : {0, 1, 2, 3, 1000}) {
            std::vector<std::atomic<int>> runs(static_cast<size_t>(count));
            RunTasks(count, [&](int task, int worker) {
                ++runs[static_cast<size_t>(task)];
                EXPECT_GE(worker, 0);
                EXPECT_LT(worker, threads);
            });
            for (const auto& run : runs) ASSERT_EQ(run, 1) << threads << " threads, " << count << " tasks";
        }
    }
}

TEST_F(ThreadPoolTest, ManyShortRunsLoseNothing) {
    LimitPoolThreads(3);
    std::atomic<int> sum{0};
    for (int run = 0; run < 3000; ++run) RunTasks(5, [&](int task, int) { sum += task; });
    EXPECT_EQ(sum, 30000);
}

TEST_F(ThreadPoolTest, NoTwoCallsShareAWorker) {
    LimitPoolThreads(4);
    std::vector<std::atomic<int>> inside(4);
    RunTasks(400, [&](int, int worker) {
        EXPECT_EQ(++inside[static_cast<size_t>(worker)], 1);
        std::this_thread::yield();
        --inside[static_cast<size_t>(worker)];
    });
}

TEST_F(ThreadPoolTest, AnExceptionEndsTheRunAndIsThrownOnce) {
    LimitPoolThreads(2);
    EXPECT_THROW(RunTasks(1000,
                          [](int task, int) {
                              if (task == 3) throw std::runtime_error("no");
                          }),
                 std::runtime_error);
    int runs = 0;
    RunTasks(1, [&](int, int) { ++runs; });
    EXPECT_EQ(runs, 1);
    EXPECT_NO_THROW(RunTasks(10, [](int, int) {}));
}

TEST_F(ThreadPoolTest, StartsAgainAfterItsEnd) {
    LimitPoolThreads(2);
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> runs{0};
        RunTasks(10, [&](int, int) { ++runs; });
        EXPECT_EQ(runs, 10);
        EndPool();
    }
    EndPool();
}

TEST_F(ThreadPoolTest, HasAThreadPerCore) {
    LimitPoolThreads(0);
    EXPECT_EQ(PoolThreads(), std::max(1, static_cast<int>(std::thread::hardware_concurrency())));
}

}  // namespace

}  // namespace umbrant::effect
