// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "gl/thread_state.h"

#include <thread>

#include "entry/global_data.h"
#include "tests/gl/fake_fixture.h"
#include "tests/support/child_process.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Every render here runs on a thread of its own, so that its end is part of the test.
class ThreadState : public ::testing::Test {
 protected:
    void SetUp() override {
        fake::Reset();
        global_ = host_.inData.global_data = host_.MakeHandle(sizeof(GlobalData));
        writtenRecords.Note(global_);
        Global().context = CreateContext(nullptr, nullptr);  // context 1, the probe
        fake::ClearCalls();
    }
    void TearDown() override {
        writtenRecords.Forget(global_);
        EXPECT_EQ(fake::Gl().callsWithoutContext, 0);
    }

    GlobalData& Global() { return *static_cast<GlobalData*>(host_.BytesOf(global_)); }
    void Init() { InitThreadLocalRenderData(&host_.inData, &host_.outData); }

    template <typename Function>
    static void OnThread(Function function) {
        std::thread(function).join();
    }

    TestHost host_;
    PF_Handle global_ = nullptr;
};

TEST_F(ThreadState, FirstRenderMakesContextProgramsAndQuad) {
    OnThread([this] {
        EXPECT_EQ(local_render_data, nullptr);
        Init();
        ASSERT_NE(local_render_data, nullptr);
        EXPECT_EQ(fake::ContextNumber(local_render_data->context), 2);
        EXPECT_EQ(fake::ContextNumber(GetCurrentContext()), 2) << "current afterwards";
        EXPECT_EQ(fake::Cgl().lastShare, nullptr) << "shared with no other";
        GLuint id = 0;
        for (const Program& program : local_render_data->programs) {
            EXPECT_TRUE(program.initialised);
            EXPECT_EQ(program.id, ++id);
        }
        EXPECT_EQ(fake::CallsTo("glCompileShader").size(), 10u);
        EXPECT_EQ(local_render_data->quadVAO, 1u);
        EXPECT_EQ(local_render_data->quadVBO, 1u);
        const std::vector<std::string> calls = fake::Calls();
        EXPECT_EQ(calls[0], "CGLChoosePixelFormat(99, 12800, 0)");
        EXPECT_EQ(calls[3], "CGLSetCurrentContext(context 2)");
        EXPECT_EQ(calls[4], "glCreateShader(GL_VERTEX_SHADER)");
        EXPECT_EQ(calls.back(), "glBindVertexArray(0)");
    });
}

TEST_F(ThreadState, SecondRenderOnlyMakesTheContextCurrent) {
    OnThread([this] {
        Init();
        SetCurrentContext(nullptr);
        const LocalGLStruct* record = local_render_data.get();
        fake::ClearCalls();
        Init();
        EXPECT_THAT(fake::Calls(), ElementsAre("CGLSetCurrentContext(context 2)"));
        EXPECT_EQ(local_render_data.get(), record);
    });
}

TEST_F(ThreadState, ThreadEndDeletesQuadProgramsAndContext) {
    OnThread([this] {
        Init();
        SetCurrentContext(nullptr);
        fake::ClearCalls();
    });
    EXPECT_THAT(fake::Calls(),
                ElementsAre("CGLSetCurrentContext(context 2)", "glDeleteVertexArrays(1)", "glDeleteBuffers(1)",
                            "glDeleteProgram(1)", "glDeleteProgram(2)", "glDeleteProgram(3)", "glDeleteProgram(4)",
                            "glDeleteProgram(5)", "CGLReleaseContext(context 2)", "CGLDestroyContext(context 2)"));
    EXPECT_EQ(fake::Cgl().liveContexts, 1) << "the probe context is not touched";
}

// The child has none of the driver's threads: a call that deletes anything could wait for them.
TEST_F(ThreadState, AForkedChildHasNoRecordAndDeletesNothing) {
    OnThread([this] {
        Init();
        ASSERT_NE(local_render_data, nullptr);
        const LocalGLStruct* const before = local_render_data.get();
        fake::ClearCalls();
        EXPECT_EQ(RunInChild([] { return local_render_data ? 1 : fake::Calls().empty() ? 0 : 2; }), 0);
        EXPECT_EQ(local_render_data.get(), before) << "the parent's is untouched";
        EXPECT_THAT(fake::Calls(), IsEmpty());
    });
}

TEST_F(ThreadState, TheDeleterAbandonsTheRecord) {
    OnThread([this] {
        Init();
        // Looked at after the deletion: the record is neither freed nor are its programs destroyed.
        LocalGLStruct* record = local_render_data.get();
        record->programs[0].label = "still here";
        local_render_data.reset();
        EXPECT_EQ(local_render_data, nullptr);
        EXPECT_EQ(record->programs[0].label, "still here");
        for (const Program& program : record->programs) {
            EXPECT_EQ(program.id, 0u);
            EXPECT_FALSE(program.initialised);
        }
        EXPECT_EQ(GetCurrentContext(), nullptr);
        delete record;  // only the test frees it
    });
}

TEST_F(ThreadState, TheDeleterSkipsProgramsWithoutAnId) {
    OnThread([this] {
        Init();
        local_render_data->programs[2].Release();
        fake::ClearCalls();
    });
    EXPECT_THAT(fake::CallsTo("glDeleteProgram"),
                ElementsAre("glDeleteProgram(1)", "glDeleteProgram(2)", "glDeleteProgram(4)", "glDeleteProgram(5)"));
}

TEST_F(ThreadState, EachThreadHasItsOwn) {
    OnThread([this] {
        Init();
        EXPECT_EQ(fake::ContextNumber(local_render_data->context), 2);
        OnThread([this] {
            EXPECT_EQ(local_render_data, nullptr);
            Init();
            EXPECT_EQ(fake::ContextNumber(local_render_data->context), 3);
        });
        EXPECT_EQ(fake::ContextNumber(GetCurrentContext()), 2);
        EXPECT_EQ(fake::Cgl().liveContexts, 2);
    });
    EXPECT_EQ(fake::Cgl().liveContexts, 1);
    EXPECT_THAT(fake::Gl().livePrograms, IsEmpty());
}

TEST_F(ThreadState, WithoutAProbeContextNothingHappensAndTheNextCallTriesAgain) {
    const CGLContextObj probe = Global().context;
    Global().context = nullptr;
    OnThread([this, probe] {
        CaptureStdout out;
        Init();
        EXPECT_EQ(out.Text(), "");
        EXPECT_EQ(local_render_data, nullptr);
        EXPECT_THAT(fake::Calls(), IsEmpty());
        EXPECT_STREQ(host_.outData.return_msg, "");
        Global().context = probe;
        Init();
        EXPECT_NE(local_render_data, nullptr);
    });
}

TEST_F(ThreadState, WithoutGlobalDataNothingHappens) {
    const auto expectNothing = [this](const char* why) {
        SCOPED_TRACE(why);
        OnThread([this] {
            Init();
            EXPECT_EQ(local_render_data, nullptr);
        });
        EXPECT_THAT(fake::Calls(), IsEmpty());
    };
    writtenRecords.Forget(global_);
    expectNothing("a record that set-up did not write");
    writtenRecords.Note(global_);
    host_.inData.global_data = nullptr;
    expectNothing("no handle");
    host_.inData.global_data = global_;
    host_.PointUnlockedHandlesTo(nullptr);
    expectNothing("a handle whose pointer is null while it is unlocked");
    EXPECT_THAT(host_.calls, IsEmpty()) << "read without a lock";
}

TEST_F(ThreadState, AContextThatCannotBeMadeIsNeverTriedAgain) {
    fake::Cgl().createError = kCGLBadAlloc;
    OnThread([this] {
        CaptureStdout out;
        Init();
        EXPECT_EQ(out.Text(), "1 - invalid memory allocation\n");
        ASSERT_NE(local_render_data, nullptr) << "the record stays";
        EXPECT_EQ(local_render_data->context, nullptr);
        EXPECT_THAT(fake::CallsTo("gl"), IsEmpty());
        fake::Cgl().createError = kCGLNoError;
        fake::ClearCalls();
        Init();
        EXPECT_THAT(fake::Calls(), ElementsAre("CGLSetCurrentContext(null)"));
        EXPECT_EQ(local_render_data->context, nullptr);
        fake::ClearCalls();
    });
    EXPECT_THAT(fake::Calls(), IsEmpty()) << "the deleter does nothing without a context";
}

TEST_F(ThreadState, NoPixelFormatGivesBothMessages) {
    fake::Cgl().chooseError = kCGLBadPixelFormat;
    fake::Cgl().virtualScreens = 0;
    OnThread([this] {
        CaptureStdout out;
        Init();
        EXPECT_EQ(out.Text(), "0 - invalid pixel format\n0 - invalid pixel format\n");
        ASSERT_NE(local_render_data, nullptr);
        EXPECT_EQ(local_render_data->context, nullptr);
    });
}

TEST_F(ThreadState, AFailingSwitchIsPrintedOnly) {
    OnThread([this] {
        Init();
        fake::Cgl().setCurrentError = kCGLBadContext;
        CaptureStdout out;
        Init();
        EXPECT_EQ(out.Text(), "Cannot Set CTX - invalid context\n");
        EXPECT_NE(local_render_data->context, nullptr);
        fake::Cgl().setCurrentError = kCGLNoError;
    });
}

TEST_F(ThreadState, AFailingDestructionAtThreadEndIsPrintedOnly) {
    CaptureStdout out;
    OnThread([this] {
        Init();
        fake::Cgl().destroyError = kCGLBadContext;
    });
    EXPECT_EQ(out.Text(), "Destroy CTX Failed-invalid context\n");
}

TEST_F(ThreadState, FailedProgramsAreKeptAndNotRetried) {
    fake::Gl().linkFailure = [](GLuint program) {
        return program == 2 ? std::optional<std::string>("no link") : std::nullopt;
    };
    OnThread([this] {
        CaptureStdout out;
        Init();
        EXPECT_EQ(out.Text(), "ERROR::SHADER::PROGRAM::LINKING_FAILED\nno link\n");
        EXPECT_STREQ(host_.outData.return_msg, "no link");
        EXPECT_FALSE(local_render_data->programs[1].initialised);
        EXPECT_TRUE(local_render_data->programs[4].initialised) << "the others are still built";
        EXPECT_EQ(local_render_data->quadVAO, 1u) << "and so is the quad";
        fake::ClearCalls();
        Init();
        EXPECT_THAT(fake::CallsTo("glLinkProgram"), IsEmpty());
    });
    EXPECT_THAT(fake::Calls(), Contains("glDeleteProgram(2)"));
}

}  // namespace

}  // namespace umbrant::effect
