// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Framebuffers between a test host and the fake OpenGL: whatever happens, both balances are checked at the end.

#include <gtest/gtest.h>

#include <string>

#include "gl/framebuffer.h"
#include "tests/gl/fake_fixture.h"
#include "tests/support/test_host.h"
#include "tests/support/test_world.h"

namespace umbrant::effect {

/// A host next to the fakes, and the settings that the upload reads.
class TransferTest : public FakeGLTest {
 protected:
    void SetUp() override {
        FakeGLTest::SetUp();
        params_.in_data = &host_.inData;
        params_.suites = &suites_;
        params_.bitDepth = 8;
    }
    void TearDown() override {
        suites_.ReleaseAllSuites();
        std::string why;
        EXPECT_TRUE(host_.Balanced(&why)) << why;
        FakeGLTest::TearDown();
    }
    PF_Err Upload(Framebuffer& fb, TestWorld& world) { return fb.FBO_Init_PF_World(&world.world, &params_, &outData_); }

    TestHost host_;
    AEGP_SuiteHandler suites_{&host_.basic};
    myParams params_;
};

}  // namespace umbrant::effect
