// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's code for each kind of failure.

#include <gtest/gtest.h>

#include "host/library/errors.h"

namespace umbrant::host {

namespace {

TEST(LibraryErrorCodes, EveryKindHasItsOwn) {
    EXPECT_EQ(static_cast<int>(CodeOf(ErrorKind::kEffect)), 1);
    EXPECT_EQ(static_cast<int>(CodeOf(ErrorKind::kUsage)), 2);
    EXPECT_EQ(static_cast<int>(CodeOf(ErrorKind::kFile)), 3);
    EXPECT_EQ(static_cast<int>(CodeOf(ErrorKind::kModule)), 4);
    EXPECT_EQ(static_cast<int>(CodeOf(ErrorKind::kInternal)), 5);
}

TEST(LibraryErrorCodes, AFailureIsThrownWithItsCodeAndSentence) {
    const Result<int> failed = Failure{ErrorKind::kInternal, "not enough memory"};
    try {
        static_cast<void>(Need(failed));
        FAIL() << "nothing was thrown";
    } catch (const Error& error) {
        EXPECT_EQ(error.Code(), ErrorCode::kInternal);
        EXPECT_STREQ(error.what(), "not enough memory");
    }
}

}  // namespace

}  // namespace umbrant::host
