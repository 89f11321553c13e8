// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Cases of every outcome, for tests/tools/test_report_test.py, which runs some of them at a time.

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

TEST(Outcome, Passes) {}

TEST(Outcome, Fails) {
    FAIL() << "on purpose";
}

TEST(Outcome, Skips) {
    GTEST_SKIP() << "there is no such device";
}

TEST(Outcome, Crashes) {
    raise(SIGSEGV);
}

TEST(Outcome, IsKilled) {
    raise(SIGKILL);
}

TEST(Outcome, EndsTheProcess) {
    _exit(0);
}
