// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The per-thread state on a real driver: every thread compiles and draws in a context of its own.

#include "gl/thread_state.h"

#include <atomic>
#include <thread>
#include <vector>

#include "entry/global_data.h"
#include "gl/context.h"
#include "gl/framebuffer.h"
#include "gl/quad.h"
#include "tests/support/capture_stdout.h"
#include "tests/support/gl_context.h"
#include "tests/support/test_host.h"

namespace umbrant::effect {

namespace {

class ThreadStateGL : public ::testing::Test {
 protected:
    void SetUp() override {
        const char* reason = nullptr;
        if (!GLAvailable(&reason)) GTEST_SKIP() << reason;
        probe_ = CreateContext(nullptr, nullptr);
        global_ = host_.inData.global_data = host_.MakeHandle(sizeof(GlobalData));
        writtenRecords.Note(global_);
        reinterpret_cast<GlobalData*>(*global_)->context = probe_;
    }
    void TearDown() override {
        writtenRecords.Forget(global_);
        DeleteContext(probe_);
    }

    /// Draws with the thread's copy program; whether a pixel has come out as it should.
    bool Render() {
        PF_OutData out{};
        InitThreadLocalRenderData(&host_.inData, &out);
        if (!local_render_data || GetCurrentContext() != local_render_data->context) return false;
        Framebuffer target;
        if (!target.FramebufferInit(4, 4, 2, 8, &out)) return false;
        target.BindFBO(PONG, true, &out);
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        target.BindFBO(PING, true, &out);
        target.BindTAO(PONG, &out);
        Program& copy = local_render_data->programs[4];
        copy.Use(&out);
        const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        glUniformMatrix4fv(glGetUniformLocation(copy.Get(&out), "xform"), 1, GL_TRUE, identity);
        glBindVertexArray(local_render_data->quadVAO);
        glDrawArrays(GL_TRIANGLE_FAN, 0, kQuadVertices);
        glBindVertexArray(0);
        unsigned char red = 0;
        glReadPixels(3, 3, 1, 1, GL_RED, GL_UNSIGNED_BYTE, &red);
        return red == 255 && glGetError() == GL_NO_ERROR;
    }

    TestHost host_;
    CGLContextObj probe_ = nullptr;
    PF_Handle global_ = nullptr;
};

TEST_F(ThreadStateGL, AllFiveProgramsCompile) {
    std::thread([this] {
        PF_OutData out{};
        CaptureStdout printed;
        InitThreadLocalRenderData(&host_.inData, &out);
        EXPECT_EQ(printed.Text(), "");
        EXPECT_STREQ(out.return_msg, "");
        ASSERT_NE(local_render_data, nullptr);
        for (const Program& program : local_render_data->programs) EXPECT_TRUE(program.initialised);
        EXPECT_TRUE(glIsVertexArray(local_render_data->quadVAO));
        EXPECT_TRUE(glIsBuffer(local_render_data->quadVBO));
    }).join();
}

TEST_F(ThreadStateGL, ThreadsRenderSideBySideAndAgain) {
    std::atomic<int> good{0};
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            good += Render();
            // All contexts are alive at once before any thread goes on.
            for (++ready; ready < 3;) std::this_thread::yield();
            good += Render();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(good, 6);
}

TEST_F(ThreadStateGL, ManyThreadsMayComeAndGo) {
    CaptureStdout printed;
    for (int i = 0; i < 8; ++i) {
        bool good = false;
        std::thread([&] { good = Render(); }).join();
        EXPECT_TRUE(good) << i;
    }
    EXPECT_EQ(printed.Text(), "");
}

TEST_F(ThreadStateGL, AThreadsContextOutlivesTheProbe) {
    std::thread([this] {
        EXPECT_TRUE(Render());
        // As global set-down does it.
        SetCurrentContext(probe_);
        DeleteContext(probe_);
        SetCurrentContext(nullptr);
        probe_ = nullptr;
        EXPECT_TRUE(Render()) << "the record exists already";
    }).join();
}

}  // namespace

}  // namespace umbrant::effect
