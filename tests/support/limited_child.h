// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Code under a real limit of the system: in a child process of its own, so that neither the limit nor what is left
// behind is seen by other tests. A child that does not end within a minute has failed.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace limited_child {

/// A user that nobody is and that no other process of the tests becomes: the limit counts a user's threads.
inline uid_t NobodysUser() {
    return 100'000'000 + static_cast<uid_t>(getpid());
}

inline constexpr int kWrong = 1;
inline constexpr int kCannotLimit = 77;

/// Runs `work` in a child, with at most `threads` more threads unless that is negative; its exit code.
inline int Run(int threads, const std::function<bool()>& work) {
    // What is still to be printed is printed once.
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(600);
        if (threads >= 0) {
            // The child's own thread counts too.
            const rlimit limit{static_cast<rlim_t>(threads) + 1, static_cast<rlim_t>(threads) + 1};
            if (setrlimit(RLIMIT_NPROC, &limit) != 0 || setresuid(NobodysUser(), NobodysUser(), NobodysUser()) != 0) {
                _exit(kCannotLimit);
            }
        }
        const int code = work() ? 0 : kWrong;
        // Libraries' static objects may wait for threads that only the parent has.
        if (threads >= 0) _exit(code);
        std::exit(code);
    }
    int status = -1;
    if (child < 0 || waitpid(child, &status, 0) != child) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace limited_child

/// Expects that the block returns true in a child of this process, and that the child's static objects come to an end.
#define EXPECT_CHILD(...) EXPECT_EQ(limited_child::Run(-1, [&]() -> bool __VA_ARGS__), 0)

/// The same in a child that may start so many threads; skips where the child cannot become another user.
#define EXPECT_LIMITED_CHILD(threads, ...)                                                      \
    do {                                                                                        \
        const int limitedChildCode = limited_child::Run(threads, [&]() -> bool __VA_ARGS__);    \
        if (limitedChildCode == limited_child::kCannotLimit) {                                  \
            GTEST_SKIP() << "a limit of threads needs root, which is not bound by its own one"; \
        }                                                                                       \
        EXPECT_EQ(limitedChildCode, 0);                                                         \
    } while (false)
