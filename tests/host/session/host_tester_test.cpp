// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host as an effect sees it: a module that asks every service and complains.

#include "tests/host/session/session_fixture.h"

namespace umbrant::host {

namespace {

class HostTester : public ::testing::TestWithParam<Depth> {};

TEST_P(HostTester, HasNothingToComplainAbout) {
    const auto module = LoadTestModule("host_tester");
    ASSERT_TRUE(module) << module.error().sentence;
    void* library = dlopen(module->File().c_str(), RTLD_NOW | RTLD_NOLOAD);
    const auto complaints = reinterpret_cast<const char* (*)()>(dlsym(library, "HostTesterComplaints"));
    const auto questions = reinterpret_cast<int (*)()>(dlsym(library, "HostTesterQuestions"));
    {
        auto session = EffectSession::Start(*module);
        ASSERT_TRUE(session) << session.error().sentence;
        const World layer = World::Create(20, 10, GetParam());
        FrameRequest request;
        request.layer = &layer;
        request.region = PF_LRect{3, 2, 40, 9};
        const auto frame = session->Render(request);
        ASSERT_TRUE(frame) << frame.error().sentence;
        EXPECT_TRUE(session->Open().IsBalanced()) << session->Open().Text();
    }
    EXPECT_STREQ(complaints(), "");
    EXPECT_GT(questions(), 200);
    dlclose(library);
}

INSTANTIATE_TEST_SUITE_P(Depths, HostTester, ::testing::Values(Depth::k8, Depth::k16, Depth::k32));

}  // namespace

}  // namespace umbrant::host
