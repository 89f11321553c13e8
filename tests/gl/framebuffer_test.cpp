// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/framebuffer.h"

#include <stdexcept>
#include <type_traits>

#include "tests/gl/fake_fixture.h"

namespace umbrant::effect {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

static_assert(PING == 0 && PONG == 1);
static_assert(!std::is_copy_constructible_v<Framebuffer> && std::is_nothrow_move_constructible_v<Framebuffer>);

constexpr char kAlreadyAllocated[] = "FBO init called on already allocated FBO";
constexpr char kBufferCount[] = "FBO init requested with either too many or too few buffers";
constexpr char kBindFBORange[] = "UM2 Error: called BindFBO() with buffer index out of range (ping pong)";

using FramebufferTest = FakeGLTest;

TEST_F(FramebufferTest, StartsEmpty) {
    Framebuffer fb;
    EXPECT_FALSE(fb.initialised);
    EXPECT_EQ(fb.width, 0);
    EXPECT_EQ(fb.height, 0);
    EXPECT_EQ(fb.numBuffers, 0);
    EXPECT_EQ(fb.bitDepth, 0);
    EXPECT_EQ(fb.lastError, "");
    EXPECT_FALSE(fb.zeroSized);
    EXPECT_THAT(fb.fbos, IsEmpty());
    EXPECT_THAT(fb.textures, IsEmpty());
    EXPECT_EQ(fb.downloadHandle, nullptr);
}

TEST_F(FramebufferTest, InitMakesBothBuffers) {
    Framebuffer fb;
    EXPECT_TRUE(fb.FramebufferInit(6, 4, 2, 32, &outData_));
    EXPECT_EQ(Message(), "");
    EXPECT_TRUE(fb.initialised);
    EXPECT_EQ(fb.width, 6);
    EXPECT_EQ(fb.height, 4);
    EXPECT_EQ(fb.numBuffers, 2);
    EXPECT_EQ(fb.bitDepth, 32);
    EXPECT_FALSE(fb.zeroSized);
    EXPECT_THAT(fb.fbos, ElementsAre(1u, 2u));
    EXPECT_THAT(fb.textures, ElementsAre(1u, 2u));
    std::vector<std::string> expected;
    for (const std::string& i : {std::string("1"), std::string("2")}) {
        for (const std::string& call :
             {"glGenFramebuffers(" + i + ")", "glGenTextures(" + i + ")",
              "glBindFramebuffer(GL_FRAMEBUFFER, " + i + ")", "glBindTexture(GL_TEXTURE_2D, " + i + ")",
              std::string("glTexImage2D(GL_TEXTURE_2D, 0, GL_R16, 6, 4, 0, GL_RED, GL_UNSIGNED_SHORT, 0)"),
              std::string("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR)"),
              std::string("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)"),
              std::string("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_MIRRORED_REPEAT)"),
              std::string("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT)"),
              "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, " + i + ", 0)",
              std::string("glBindTexture(GL_TEXTURE_2D, 0)"), std::string("glCheckFramebufferStatus(GL_FRAMEBUFFER)"),
              std::string("glBindFramebuffer(GL_FRAMEBUFFER, 0)")}) {
            expected.push_back(call);
        }
    }
    EXPECT_EQ(fake::Calls(), expected);
}

struct SizeCase {
    const char* name;
    int width;
    int height;
};

void PrintTo(const SizeCase& row, std::ostream* out) {
    *out << row.name;
}

class ZeroSized : public FakeGLTest, public ::testing::WithParamInterface<SizeCase> {};

TEST_P(ZeroSized, IsInitialisedWithoutBuffers) {
    Framebuffer fb;
    EXPECT_TRUE(fb.FramebufferInit(GetParam().width, GetParam().height, 2, 8, &outData_));
    EXPECT_EQ(Message(), "");
    EXPECT_TRUE(fb.zeroSized);
    EXPECT_TRUE(fb.initialised);
    EXPECT_EQ(fb.numBuffers, 0);
    EXPECT_THAT(fake::Calls(), IsEmpty());
    fb.BindFBO(PING, true, &outData_);
    EXPECT_EQ(Message(), kBindFBORange);
    outData_ = {};
    fb.BindTAO(PING, &outData_);
    EXPECT_EQ(Message(), "UM2 Error: called bindTAO() with texture index out of range (ping pong)");
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, ZeroSized,
                         ::testing::Values(SizeCase{"no width", 0, 100}, SizeCase{"no height", 100, 0},
                                           SizeCase{"negative width", -1, 100}, SizeCase{"nothing", 0, 0}));

TEST_F(FramebufferTest, ZeroSizedIsNeverCleared) {
    Framebuffer fb;
    fb.FramebufferInit(0, 100, 2, 8, &outData_);
    fb.CleanUp();
    EXPECT_TRUE(fb.FramebufferInit(10, 10, 2, 8, &outData_));
    EXPECT_TRUE(fb.zeroSized);
    EXPECT_EQ(fb.numBuffers, 0);
    EXPECT_THAT(fb.fbos, IsEmpty());
}

TEST_F(FramebufferTest, BufferCountsOtherThanOneAndTwoAreRefused) {
    for (int count : {-1, 0, 3}) {
        SCOPED_TRACE(count);
        Framebuffer fb;
        outData_ = {};
        EXPECT_FALSE(fb.FramebufferInit(6, 4, count, 8, &outData_));
        EXPECT_EQ(Message(), kBufferCount);
        EXPECT_EQ(fb.lastError, kBufferCount);
        EXPECT_FALSE(fb.initialised);
        EXPECT_EQ(fb.width, 6) << "stored even when the init then fails";
        EXPECT_EQ(fb.numBuffers, count);
        EXPECT_EQ(fb.bitDepth, 8);
        EXPECT_THAT(fake::Calls(), IsEmpty());
    }
}

TEST_F(FramebufferTest, RefusedInitStillNotesAZeroSize) {
    Framebuffer fb;
    EXPECT_FALSE(fb.FramebufferInit(0, 4, 3, 8, &outData_));
    EXPECT_TRUE(fb.zeroSized);
    EXPECT_EQ(Message(), kBufferCount);
}

TEST_F(FramebufferTest, SecondInitIsRefusedAndTheBuffersStay) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 2, 8, &outData_);
    EXPECT_FALSE(fb.FramebufferInit(8, 8, 1, 32, &outData_));
    EXPECT_EQ(Message(), kAlreadyAllocated);
    EXPECT_TRUE(fb.initialised);
    EXPECT_THAT(fb.fbos, ElementsAre(1u, 2u));
    EXPECT_THAT(fake::Gl().liveTextures, ElementsAre(1u, 2u));
    EXPECT_EQ(fb.width, 8) << "the numbers are stored before the check";
}

TEST_F(FramebufferTest, SecondInitWithAWrongCountTellsOfTheCount) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 2, 8, &outData_);
    EXPECT_FALSE(fb.FramebufferInit(6, 4, 3, 8, &outData_));
    EXPECT_EQ(fb.lastError, kBufferCount);
}

TEST_F(FramebufferTest, IncompleteBufferFailsButTheOtherIsStillMade) {
    fake::Gl().framebufferStatus = {GL_FRAMEBUFFER_UNSUPPORTED};
    Framebuffer fb;
    EXPECT_FALSE(fb.FramebufferInit(600, 40, 2, 8, &outData_));
    EXPECT_EQ(Message(), "FBO bad, res: 600 40");
    EXPECT_EQ(fb.lastError, "FBO bad, res: 600 40");
    EXPECT_FALSE(fb.initialised);
    EXPECT_THAT(fb.fbos, ElementsAre(1u, 2u));
    fb.CleanUp();
    EXPECT_THAT(fake::Gl().liveFramebuffers, IsEmpty());
    EXPECT_THAT(fake::Gl().liveTextures, IsEmpty());
}

TEST_F(FramebufferTest, BindFBOSetsTheViewportAndClears) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 2, 8, &outData_);
    fake::ClearCalls();
    fb.BindFBO(PONG, true, &outData_);
    EXPECT_THAT(fake::Calls(), ElementsAre("glBindFramebuffer(GL_FRAMEBUFFER, 2)", "glViewport(0, 0, 6, 4)",
                                           "glClearColor(0, 0, 0, 0)", "glClear(GL_COLOR_BUFFER_BIT)"));
    fake::ClearCalls();
    fb.BindFBO(PING, false, &outData_);
    EXPECT_THAT(fake::Calls(), ElementsAre("glBindFramebuffer(GL_FRAMEBUFFER, 1)", "glViewport(0, 0, 6, 4)"));
    EXPECT_EQ(Message(), "");
}

TEST_F(FramebufferTest, BindFBOBeyondTheBuffersBindsNothing) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 1, 8, &outData_);
    fake::ClearCalls();
    fb.BindFBO(PONG, true, &outData_);
    EXPECT_EQ(Message(), kBindFBORange);
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

TEST_F(FramebufferTest, BindingTooEarlyIsReported) {
    Framebuffer fb;
    fb.BindFBO(PING, true, &outData_);
    EXPECT_EQ(Message(), "UM2 Error: called BindFBO() on uninitialised FBO");
    outData_ = {};
    fb.BindTAO(PING, &outData_);
    EXPECT_EQ(Message(), "UM2 Error: called bindTAO() on uninitialised FBO/TAO");
    EXPECT_THAT(fake::Calls(), IsEmpty());
}

TEST_F(FramebufferTest, BindTAOIsBoundedByTheTexturesNotByTheBufferCount) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 1, 8, &outData_);
    fake::ClearCalls();
    fb.BindTAO(PING, &outData_);
    EXPECT_THAT(fake::Calls(), ElementsAre("glBindTexture(GL_TEXTURE_2D, 1)"));
    fb.BindTAO(PONG, &outData_);
    EXPECT_EQ(Message(), "UM2 Error: called bindTAO() with texture index out of range (ping pong)");
    // A two-buffer object whose second init has one buffer keeps two textures: BindTAO goes by those.
    Framebuffer reused;
    reused.FramebufferInit(6, 4, 2, 8, &outData_);
    reused.numBuffers = 1;
    outData_ = {};
    reused.BindTAO(PONG, &outData_);
    EXPECT_EQ(Message(), "");
    EXPECT_EQ(fake::Calls().back(), "glBindTexture(GL_TEXTURE_2D, 3)");
}

TEST_F(FramebufferTest, BindFBOBeyondTheVectorThrows) {
    Framebuffer fb;
    fb.initialised = true;
    fb.numBuffers = 1;
    EXPECT_THROW(fb.BindFBO(PING, false, &outData_), std::out_of_range);
}

TEST_F(FramebufferTest, CleanUpZeroesNamesAndKeepsTheRest) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 2, 32, &outData_);
    fake::ClearCalls();
    fb.CleanUp();
    EXPECT_THAT(fake::Calls(), ElementsAre("glDeleteFramebuffers(1)", "glDeleteFramebuffers(2)", "glDeleteTextures(1)",
                                           "glDeleteTextures(2)"));
    EXPECT_THAT(fb.fbos, ElementsAre(0u, 0u));
    EXPECT_THAT(fb.textures, ElementsAre(0u, 0u));
    EXPECT_FALSE(fb.initialised);
    EXPECT_EQ(fb.width, 0);
    EXPECT_EQ(fb.height, 4);
    EXPECT_EQ(fb.numBuffers, 2);
    EXPECT_EQ(fb.bitDepth, 32);
}

TEST_F(FramebufferTest, InitAfterCleanUpLeavesPlaceholders) {
    Framebuffer fb;
    fb.FramebufferInit(6, 4, 2, 8, &outData_);
    fb.CleanUp();
    EXPECT_TRUE(fb.FramebufferInit(6, 4, 2, 8, &outData_));
    EXPECT_THAT(fb.fbos, ElementsAre(3u, 4u, 0u, 1u));
    EXPECT_THAT(fb.textures, ElementsAre(3u, 4u, 0u, 1u));
}

TEST_F(FramebufferTest, DestructorCleansUp) {
    {
        Framebuffer fb;
        fb.FramebufferInit(6, 4, 2, 8, &outData_);
    }
    EXPECT_THAT(fake::Gl().liveFramebuffers, IsEmpty());
    EXPECT_THAT(fake::Gl().liveTextures, IsEmpty());
}

TEST_F(FramebufferTest, AGrowingListKeepsTheObjects) {
    std::vector<Framebuffer> list;
    for (int i = 0; i < 5; ++i) {
        list.emplace_back();
        list.back().FramebufferInit(6 + i, 4, 1, 8, &outData_);
    }
    EXPECT_EQ(fake::Gl().liveTextures.size(), 5u);
    for (size_t i = 0; i < list.size(); ++i) {
        EXPECT_TRUE(list[i].initialised);
        EXPECT_EQ(list[i].width, 6 + static_cast<int>(i));
        EXPECT_THAT(list[i].textures, ElementsAre(static_cast<GLuint>(i + 1)));
    }
    list.clear();
    EXPECT_THAT(fake::Gl().liveTextures, IsEmpty());
}

}  // namespace

}  // namespace umbrant::effect
