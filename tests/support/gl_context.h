// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A test fixture with a real GL context current. Where none can be made the test is reported as skipped, with the
// reason.

#include <gtest/gtest.h>

#include "platform/cgl_api.h"

class GLContextTest : public ::testing::Test {
 protected:
    /// Makes a context and makes it current.
    void SetUp() override;
    /// Fails the test when GL has an error queued, and deletes the context.
    void TearDown() override;

    CGLContextObj context_ = nullptr;
};

/// Whether a context can be made on this machine; `reason` says why not.
bool GLAvailable(const char** reason);
