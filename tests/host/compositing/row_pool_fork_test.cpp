// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A fork while another thread makes the pool. CTest runs this in a process that has none yet.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "host/compositing/row_pool.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

int Worked() {
    std::atomic<int> rows = 0;
    ForEachRowRange(64, [&](int begin, int end) { rows += end - begin; });
    return rows;
}

TEST(RowPoolFork, AChildOfTheFirstWorkWorks) {
    const auto process = [](std::chrono::microseconds moment) {
        // Many threads take long to start.
        SetRowThreads(64);
        std::atomic<bool> hasBegun = false;
        std::thread other([&] {
            hasBegun = true;
            Worked();
        });
        while (!hasBegun) std::this_thread::yield();
        std::this_thread::sleep_for(moment);
        const int code = RunInChild([] { return Worked() == 64 ? 0 : 1; }, std::chrono::seconds(30));
        other.join();
        return code == 0 ? 0 : 1;
    };
    // A sanitizer's allocator has no handlers for forks: a lock of its own would stay held in the child.
    for (int i = 0; i < (kIsSanitized ? 0 : 100); ++i) {
        const int code = RunInChild([&] { return process(std::chrono::microseconds(20 * i)); });
        ASSERT_EQ(code, 0) << "forked after " << 20 * i << " us";
    }
}

TEST(RowPoolFork, AGrandchildHasAPoolOfItsOwnToo) {
    const auto grandchild = [] { return Worked() == 64 ? 0 : 1; };
    const auto child = [&] { return Worked() == 64 ? RunInChild(grandchild, std::chrono::seconds(30)) : 2; };
    // The race checker cannot follow threads that a forked child starts.
    if (!kIsSanitized) {
        EXPECT_EQ(RunInChild(child), 0);
    }
}

}  // namespace

}  // namespace umbrant::host
