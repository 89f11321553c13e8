// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The exit codes that kinds of failure lead to, and how a failure gets through the functions between.

#include "host/cli/exit_code.h"

#include <gtest/gtest.h>

#include <memory>

namespace umbrant::host {

namespace {

TEST(ExitCode, EveryKindHasItsOwn) {
    EXPECT_EQ(static_cast<int>(ExitCode::kDone), 0);
    EXPECT_EQ(static_cast<int>(ExitCodeOf(ErrorKind::kEffect)), 1);
    EXPECT_EQ(static_cast<int>(ExitCodeOf(ErrorKind::kUsage)), 2);
    EXPECT_EQ(static_cast<int>(ExitCodeOf(ErrorKind::kFile)), 3);
    EXPECT_EQ(static_cast<int>(ExitCodeOf(ErrorKind::kModule)), 4);
    EXPECT_EQ(static_cast<int>(ExitCodeOf(ErrorKind::kInternal)), 5);
    EXPECT_EQ(static_cast<int>(ExitCode::kInterrupted), 130);
}

Result<std::unique_ptr<int>> Made(int value) {
    if (value < 0) return Failure{ErrorKind::kFile, "below zero"};
    return std::make_unique<int>(value);
}

/// Counts how often it got past the step that may fail.
Result<int> Twice(int value, int& passed) {
    const auto made = TRY(Made(value));
    ++passed;
    return *made * 2;
}

TEST(Result, TryReturnsTheFailureAndElseGivesTheValue) {
    int passed = 0;
    const Result<int> doubled = Twice(21, passed);
    ASSERT_TRUE(doubled);
    EXPECT_EQ(*doubled, 42);
    const Result<int> failed = Twice(-1, passed);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().kind, ErrorKind::kFile);
    EXPECT_EQ(failed.error().sentence, "below zero");
    EXPECT_EQ(passed, 1);
}

TEST(Result, ChainsLikeTheLibrarysOwn) {
    const auto half = [](std::unique_ptr<int> value) -> tl::expected<int, Failure> { return *value / 2; };
    const Result<int> chained = Made(42).and_then(half);
    ASSERT_TRUE(chained);
    EXPECT_EQ(*chained, 21);
    const Result<int> failed = Made(-1).and_then(half);
    EXPECT_EQ(failed.error().sentence, "below zero");
}

TEST(ResultDeathTest, AskingAFailureForItsValueEndsTheProgram) {
    Result<int> failed = Failure{ErrorKind::kUsage, "no"};
    EXPECT_EXIT(static_cast<void>(*failed), testing::KilledBySignal(SIGABRT), "");
}

}  // namespace

}  // namespace umbrant::host
