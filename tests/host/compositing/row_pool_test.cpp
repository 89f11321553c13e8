// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Rows spread over threads: each exactly once, and nothing of a job is touched when its call has returned.

#include "host/compositing/row_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

namespace umbrant::host {

namespace {

TEST(RowPool, EveryRowIsWorkedOnOnce) {
    for (const int count : {0, 1, 2, 7, 16, 1000}) {
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(count));
        RunRows(count, [&](int index, int thread) {
            EXPECT_GE(thread, 0);
            EXPECT_LT(thread, RowThreads());
            ++visits[static_cast<std::size_t>(index)];
            return true;
        });
        for (const std::atomic<int>& visit : visits) ASSERT_EQ(visit, 1) << "of " << count;
    }
}

// A helper that wakes may find that the caller has just taken the last rows: short jobs one upon another, from two
// callers, make that common.
TEST(RowPool, ShortJobsMayEndWhileHelpersWake) {
    std::atomic<long> done = 0;
    const auto call = [&] {
        for (int i = 0; i < 20000; ++i) {
            RunRows(2 + i % 15, [&](int, int) {
                done.fetch_add(1, std::memory_order_relaxed);
                return true;
            });
        }
    };
    std::thread other(call);
    call();
    other.join();
    long expected = 0;
    for (int i = 0; i < 20000; ++i) expected += 2L * (2 + i % 15);
    EXPECT_EQ(done, expected);
}

TEST(RowPool, TheFirstRefusalStopsTheRest) {
    std::atomic<int> visits = 0;
    RunRows(100000, [&](int, int) {
        ++visits;
        return false;
    });
    EXPECT_LE(visits, RowThreads());
}

TEST(RowPool, AnExceptionReachesTheCaller) {
    const auto throws = [](int index, int) -> bool {
        if (index == 40) throw std::runtime_error("row 40");
        return true;
    };
    EXPECT_THROW(RunRows(64, throws), std::runtime_error);
    int visits = 0;
    RunRows(1, [&](int, int) { return ++visits > 0; });
    EXPECT_EQ(visits, 1) << "the pool goes on working";
}

}  // namespace

}  // namespace umbrant::host
