// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host's tables in a child that is forked while another thread changes them.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "host/compositing/world.h"
#include "host/suites/aegp/tokens.h"
#include "host/suites/pf/handles.h"
#include "host/suites/services.h"
#include "tests/support/child_process.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

using namespace std::chrono_literals;

void UseHandles() {
    const PF_Handle handle = NewHandle(64);
    LockHandle(handle);
    UnlockHandle(handle);
    DisposeHandle(handle);
}

void UseWorlds() {
    World::Create(3, 2, Depth::k8);
}

void UseSessions() {
    Services services;
    services.Report("nothing");
}

void UseTokens() {
    Services services;
    DisposeToken(NewToken(TokenKind::kStream, &services, 0), TokenKind::kStream, "a test");
}

TEST(SuitesFork, TheTablesAreWholeInAChild) {
    if (kIsSanitized) {
        GTEST_SKIP() << "the sanitizer's allocator has no handlers for forks: a lock of its own stays held in the "
                        "child";
    }
    const struct {
        const char* name;
        void (*use)();
    } rows[] = {{"handles", UseHandles}, {"worlds", UseWorlds}, {"sessions", UseSessions}, {"tokens", UseTokens}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::atomic<bool> stop = false;
        std::thread other([&] {
            while (!stop) row.use();
        });
        int code = 0;
        for (int fork = 0; fork < 50 && code == 0; ++fork) {
            code = RunInChild([&] { return row.use(), 0; }, 60s);
        }
        EXPECT_EQ(code, 0);
        stop = true;
        other.join();
    }
}

}  // namespace

}  // namespace umbrant::host
