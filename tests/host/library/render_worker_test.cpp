// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's thread: one for many callers, none before it is needed, and another one in a forked child.

#include "host/library/render_worker.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/limited_child.h"
#include "tests/support/sanitized.h"

namespace umbrant::host {

namespace {

/// Writes down that its thread has ended.
struct AtEnd {
    std::atomic<bool>* hasEnded = nullptr;
    ~AtEnd() {
        if (hasEnded) *hasEnded = true;
    }
};
thread_local AtEnd atEnd;

std::thread::id ThreadOf(RenderWorker& worker) {
    std::thread::id id;
    EXPECT_TRUE(worker.Run([&] { id = std::this_thread::get_id(); }));
    return id;
}

TEST(RenderWorker, RunsEverythingOnOneOtherThread) {
    RenderWorker worker;
    const std::thread::id first = ThreadOf(worker);
    EXPECT_NE(first, std::this_thread::get_id());
    std::thread([&] { EXPECT_EQ(ThreadOf(worker), first); }).join();
    worker.RunAnyhow([&] { EXPECT_EQ(std::this_thread::get_id(), first); });
}

TEST(RenderWorker, ManyCallersWaitForTheirOwnWork) {
    RenderWorker worker;
    int unguarded = 0;
    std::atomic<int> wrong = 0;
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) {
        callers.emplace_back([&] {
            for (int n = 0; n < 500; ++n) {
                bool isDone = false;
                if (!worker.Run([&] {
                        ++unguarded;
                        isDone = true;
                    })) {
                    ++wrong;
                }
                wrong += !isDone;
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(unguarded, 2000);
}

TEST(RenderWorker, WhatWorkThrowsIsThrownToItsCaller) {
    RenderWorker worker;
    const std::thread::id before = ThreadOf(worker);
    try {
        static_cast<void>(worker.Run([] { throw std::runtime_error("in the work"); }));
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "in the work");
    }
    EXPECT_THROW(static_cast<void>(worker.Run([] { throw std::bad_alloc(); })), std::bad_alloc);
    worker.RunAnyhow([] { throw 7; });
    EXPECT_EQ(ThreadOf(worker), before) << "the thread goes on";
}

TEST(RenderWorker, TheThreadEndsWithIt) {
    std::atomic<bool> hasEnded = false;
    {
        RenderWorker worker;
        EXPECT_TRUE(worker.Run([&] { atEnd.hasEnded = &hasEnded; }));
        EXPECT_FALSE(hasEnded);
    }
    EXPECT_TRUE(hasEnded) << "what belongs to the thread has gone when the destructor returns";
}

TEST(RenderWorker, AChildHasAThreadOfItsOwn) {
    auto worker = std::make_unique<RenderWorker>();
    ThreadOf(*worker);
    const auto child = [&] {
        int done = 0;
        if (!worker->Run([&] { ++done; }) || !worker->Run([&] { ++done; })) return 1;
        worker.reset();
        return done == 2 ? 0 : 2;
    };
    // The race checker cannot follow threads that a forked child starts.
    if (!kIsSanitized) {
        EXPECT_EQ(RunInChild(child), 0);
    }
    EXPECT_EQ(RunInChild([&] { return worker.reset(), 0; }), 0) << "without having run anything there";
    ThreadOf(*worker);
}

TEST(RenderWorker, ARefusedThreadIsAFailureOrDoneWithout) {
    EXPECT_LIMITED_CHILD(0, {
        RenderWorker worker;
        int done = 0;
        const auto failed = worker.Run([&] { ++done; });
        const std::thread::id here = std::this_thread::get_id();
        std::thread::id there;
        worker.RunAnyhow([&] { there = std::this_thread::get_id(); });
        worker.RunAnyhow([] { throw 7; });
        return !failed && failed.error().kind == ErrorKind::kInternal && done == 0 && there == here &&
               failed.error().sentence ==
                   "the thread that renders with OpenGL cannot be started: the system refuses more threads; allow "
                   "more, or use the CPU renderer";
    });
}

}  // namespace

}  // namespace umbrant::host
