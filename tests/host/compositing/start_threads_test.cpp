// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Threads that the system refuses: what was started goes on. The limit is a real one, in a child that is another user,
// since root has none.

#include "host/process/start_threads.h"

#include <gtest/gtest.h>

#include <atomic>

#include "host/compositing/row_pool.h"
#include "tests/support/limited_child.h"

namespace umbrant::host {

namespace {

TEST(StartThreads, StartsAllAndSaysToEachWhichItIs) {
    std::atomic<int> sum{0};
    std::vector<std::jthread> threads = StartThreads(5, [&](int index) { sum += 1 << index; });
    EXPECT_EQ(threads.size(), 5u);
    threads.clear();
    EXPECT_EQ(sum, 31);
    EXPECT_TRUE(StartThreads(0, [](int) {}).empty());
    EXPECT_TRUE(StartThreads(-1, [](int) {}).empty());
}

TEST(StartThreads, EndsTheAttemptsWithTheFirstThatIsRefused) {
    EXPECT_LIMITED_CHILD(3, {
        std::atomic<bool> end{false};
        std::vector<std::jthread> threads = StartThreads(10, [&](int) {
            while (!end) std::this_thread::yield();
        });
        const std::size_t had = threads.size();
        const bool another = StartThread([] {}).has_value();
        end = true;
        threads.clear();
        return had == 3 && !another;
    });
}

TEST(StartThreads, AThreadThatHasJustEndedTakesNoPlace) {
    // The system counts a thread a moment longer than a join waits; that shows about once in ten thousand rounds.
    EXPECT_LIMITED_CHILD(3, {
        for (int round = 0; round < 30000; ++round) {
            std::atomic<bool> end{false};
            std::vector<std::jthread> threads = StartThreads(3, [&](int) {
                while (!end) std::this_thread::yield();
            });
            end = true;
            const std::size_t had = threads.size();
            threads.clear();
            if (had != 3) return false;
        }
        return true;
    });
}

int reports = 0;
ThreadShortage reported;

TEST(RowPool, GoesOnWithTheThreadsThatItCanHave) {
    // In a child the pool is made anew.
    const int wanted = RowThreads() - 1;
    for (const int allowed : {0, 1}) {
        SCOPED_TRACE(allowed);
        EXPECT_LIMITED_CHILD(allowed, {
            ReportThreadShortage([](const ThreadShortage& shortage) {
                ++reports;
                reported = shortage;
            });
            std::vector<int> seen(1000);
            for (int round = 0; round < 3; ++round) {
                RunRows(1000, [&](int index, int thread) {
                    seen[static_cast<std::size_t>(index)] += thread <= wanted ? 1 : 100;
                    return true;
                });
            }
            if (seen != std::vector<int>(1000, 3)) return false;
            if (wanted <= allowed) return reports == 0;
            return reports == 1 && reported.wanted == wanted && reported.allowed == allowed;
        });
    }
}

TEST(RowPool, AChildOfForkHasItsOwn) {
    std::atomic<int> rows{0};
    const auto count = [&](int, int) {
        ++rows;
        return true;
    };
    RunRows(100, count);
    EXPECT_CHILD({
        rows = 0;
        RunRows(100, count);
        return rows == 100;
    });
    RunRows(100, count);
    EXPECT_EQ(rows, 200);
}

}  // namespace

}  // namespace umbrant::host
