// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/context.h"

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Context : public ::testing::Test {
 protected:
    void SetUp() override {
        SetCurrentContext(nullptr);
        fake::Reset();
    }
    void TearDown() override { SetCurrentContext(nullptr); }
};

TEST_F(Context, DefaultAttributesAskForTheCoreProfileAndNothingElse) {
    EXPECT_THAT(attributes_default, ElementsAre(99, 0x3200, 0));
}

TEST_F(Context, CreateChoosesCreatesAndRetainsOnceMore) {
    CGLContextObj context = CreateContext(nullptr, nullptr);
    EXPECT_TRUE(IsContextValid(context));
    EXPECT_THAT(fake::Calls(), ElementsAre("CGLChoosePixelFormat(99, 12800, 0)", "CGLCreateContext(format 1, null)",
                                           "CGLRetainContext(context 1)"));
    EXPECT_EQ(fake::Cgl().liveReferences, 2);
    EXPECT_EQ(GetCurrentContext(), nullptr) << "creating makes nothing current";
    DeleteContext(context);
    EXPECT_EQ(fake::Cgl().liveContexts, 0);
    // The calls above hold no destruction of the pixel format: each context leaves its format behind.
    CreateContext(nullptr, nullptr);
    EXPECT_EQ(fake::Cgl().formatsMade, 2);
}

TEST_F(Context, ExplicitAttributesAndShareAreUsed) {
    CGLContextObj first = CreateContext(nullptr, nullptr);
    fake::ClearCalls();
    const CGLPixelFormatAttribute attributes[] = {73, kCGLPFAOpenGLProfile, 0x1000, 0};
    CreateContext(first, attributes);
    EXPECT_THAT(fake::Calls(), ElementsAre("CGLChoosePixelFormat(73, 99, 4096, 0)",
                                           "CGLCreateContext(format 2, context 1)", "CGLRetainContext(context 2)"));
    EXPECT_EQ(fake::Cgl().lastShare, first);
}

TEST_F(Context, FailedPixelFormatStillTriesToCreate) {
    fake::Cgl().chooseError = kCGLBadAttribute;
    fake::Cgl().virtualScreens = 0;
    CaptureStdout out;
    EXPECT_EQ(CreateContext(nullptr, nullptr), nullptr);
    EXPECT_EQ(out.Text(), "0 - invalid pixel format attribute\n0 - invalid pixel format\n");
    EXPECT_THAT(fake::Calls(), ElementsAre("CGLChoosePixelFormat(99, 12800, 0)", "CGLCreateContext(null, null)",
                                           "CGLRetainContext(null)"));
}

TEST_F(Context, FailedCreationPrintsTheScreenCountAndYieldsNull) {
    fake::Cgl().createError = kCGLBadAlloc;
    fake::Cgl().virtualScreens = 3;
    CaptureStdout out;
    EXPECT_EQ(CreateContext(nullptr, nullptr), nullptr);
    EXPECT_EQ(out.Text(), "3 - invalid memory allocation\n");
}

TEST_F(Context, DeletingNullCallsNothing) {
    DeleteContext(nullptr);
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

TEST_F(Context, NullIsNotValidAndAsksNobody) {
    EXPECT_FALSE(IsContextValid(nullptr));
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

TEST_F(Context, DeleteReleasesOnceAndDestroys) {
    CGLContextObj context = CreateContext(nullptr, nullptr);
    fake::ClearCalls();
    DeleteContext(context);
    EXPECT_THAT(fake::Calls(), ElementsAre("CGLReleaseContext(context 1)", "CGLDestroyContext(context 1)"));
    EXPECT_EQ(fake::Cgl().liveReferences, 0);
}

TEST_F(Context, FailedDestructionIsPrinted) {
    CGLContextObj context = CreateContext(nullptr, nullptr);
    fake::Cgl().destroyError = kCGLBadContext;
    CaptureStdout out;
    DeleteContext(context);
    EXPECT_EQ(out.Text(), "Destroy CTX Failed-invalid context\n");
}

TEST_F(Context, SetCurrentSwitchesAndClears) {
    CGLContextObj first = CreateContext(nullptr, nullptr);
    CGLContextObj second = CreateContext(nullptr, nullptr);
    SetCurrentContext(first);
    EXPECT_EQ(GetCurrentContext(), first);
    SetCurrentContext(second);
    EXPECT_EQ(GetCurrentContext(), second);
    SetCurrentContext(nullptr);
    EXPECT_EQ(GetCurrentContext(), nullptr);
}

TEST_F(Context, FailedSwitchIsPrintedAndLeavesTheCurrentOne) {
    CGLContextObj first = CreateContext(nullptr, nullptr);
    SetCurrentContext(first);
    fake::Cgl().setCurrentError = kCGLBadContext;
    CaptureStdout out;
    SetCurrentContext(CreateContext(nullptr, nullptr));
    EXPECT_EQ(out.Text(), "Cannot Set CTX - invalid context\n");
    EXPECT_EQ(GetCurrentContext(), first);
}

}  // namespace

}  // namespace umbrant::effect
