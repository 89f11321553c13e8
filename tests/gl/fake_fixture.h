// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A fixture on the fake CGL and GL: fresh for every test, with a context current so that calls outside one show up.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gl/context.h"
#include "hostapi/commands.h"
#include "platform/fake/call_log.h"
#include "platform/fake/cgl_fake.h"
#include "platform/fake/gl_fake.h"
#include "tests/support/capture_stdout.h"

namespace umbrant::effect {

class FakeGLTest : public ::testing::Test {
 protected:
    void SetUp() override {
        SetCurrentContext(nullptr);
        fake::Reset();
        SetCurrentContext(CreateContext(nullptr, nullptr));
        fake::ClearCalls();
    }
    void TearDown() override { EXPECT_EQ(fake::Gl().callsWithoutContext, 0); }

    /// The return message's first characters.
    std::string Message(size_t length) const { return std::string(outData_.return_msg, length); }
    std::string Message() const { return outData_.return_msg; }

    PF_OutData outData_{};
};

}  // namespace umbrant::effect
