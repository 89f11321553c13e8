// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Renders in forked children, whatever a thread of the parent was doing.

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "entry/entry_points.h"
#include "entry/global_setup.h"
#include "tests/render/render_host.h"
#include "tests/support/child_process.h"

namespace umbrant::effect {

namespace {

// A child that waits for a lock of the parent's waits to the end.
constexpr std::chrono::seconds kDeadline(60);

class ForkedRender : public ::testing::Test {
 protected:
    // Ends with an error of the host's, from inside the command and under its lock.
    PF_Err Render() {
        host_.failCheckoutParam = 1;
        return EffectMain(PF_Cmd_SMART_RENDER, &host_.inData, &host_.outData, nullptr, nullptr, &host_.renderExtra);
    }

    RenderHost host_;
};

TEST_F(ForkedRender, AnotherThreadsLockIsNotWaitedFor) {
    std::atomic<bool> held = false;
    std::atomic<bool> done = false;
    std::thread other([&] {
        const std::lock_guard lock(globalMutex);  // a frame on that thread
        held = true;
        while (!done) std::this_thread::yield();
    });
    while (!held) std::this_thread::yield();
    EXPECT_EQ(RunInChild([&] { return Render() == RenderHost::kInjected ? 0 : 1; }, kDeadline), 0);
    done = true;
    other.join();
    EXPECT_TRUE(globalMutex.try_lock()) << "the parent's is untouched";
    globalMutex.unlock();
}

TEST_F(ForkedRender, TheForkingThreadsLockIsGivenBackInTheChildToo) {
    const auto child = [&] {
        globalMutex.unlock();  // the end of the frame in which it was forked
        std::thread other([&] {
            globalMutex.lock();
            globalMutex.unlock();
        });
        other.join();
        return Render() == RenderHost::kInjected ? 0 : 1;
    };
    globalMutex.lock();
    const int code = RunInChild(child, kDeadline);
    globalMutex.unlock();
    EXPECT_EQ(code, 0);
}

}  // namespace

}  // namespace umbrant::effect
