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

/// How far the weights of the driver's linear filter lie from the exact ones at most, measured with the current
/// context. OpenGL leaves their precision to the driver: the software renderer computes in float, hardware has some 8
/// bits.
double FilterError();

/// Whether a context can be made on this machine; `reason` says why not.
bool GLAvailable(const char** reason);
