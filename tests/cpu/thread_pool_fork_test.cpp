// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The pool in forked children, which have none of its threads, and where no more threads can be had.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <thread>

#include "cpu/thread_pool.h"
#include "platform/fake/call_log.h"
#include "platform/fake/renderer_choice_fake.h"
#include "render/processor/processor_path.h"
#include "tests/cpu/processor_scene.h"
#include "tests/support/child_process.h"

namespace umbrant::effect {

namespace {

// A pool that never ends would only end with the deadline, so it is no longer than a slow machine needs.
constexpr std::chrono::seconds kDeadline(60);

int Sum(int tasks) {
    std::atomic<int> sum{0};
    RunTasks(tasks, [&](int task, int) { sum += task; });
    return sum;
}

class ForkedPool : public ::testing::Test, protected SceneRenderer {
 protected:
    ForkedPool() {
        fake::Reset();
        fake::Renderer() = RendererChoice::kProcessor;
        LimitPoolThreads(4);
    }
    ~ForkedPool() override {
        LimitPoolThreads(0);
        EndProcessorThreads();
        fake::Reset();
    }
};

TEST_F(ForkedPool, WorksInAChildAfterItWorkedInTheParent) {
    ASSERT_EQ(Sum(100), 4950);
    const auto child = [] {
        if (Sum(100) != 4950) return 1;
        if (PoolThreads() != 4) return 2;
        EndPool();
        return Sum(100) == 4950 ? 0 : 3;
    };
    EXPECT_EQ(RunInChild(child, kDeadline), 0);
    EXPECT_EQ(Sum(100), 4950) << "the parent's goes on";
}

TEST_F(ForkedPool, CanBeEndedInAChild) {
    ASSERT_EQ(Sum(100), 4950);
    const auto child = [] {
        EndPool();
        return 0;
    };
    EXPECT_EQ(RunInChild(child, kDeadline), 0);
}

TEST_F(ForkedPool, WorksInAGrandchildToo) {
    ASSERT_EQ(Sum(100), 4950);
    const auto child = [] {
        if (Sum(100) != 4950) return 1;
        return RunInChild([] { return Sum(100) == 4950 ? 0 : 2; }, kDeadline) == 0 ? 0 : 3;
    };
    EXPECT_EQ(RunInChild(child, kDeadline), 0);
}

TEST_F(ForkedPool, WorksInAChildThatIsForkedWhileAnotherThreadRuns) {
    std::atomic<bool> stop = false;
    std::thread other([&] {
        while (!stop) Sum(50);
    });
    // Of so many forks some fall into every part of a run.
    for (int fork = 0; fork < 40; ++fork) {
        const int code = RunInChild([] { return Sum(100) == 4950 ? 0 : 1; }, kDeadline);
        EXPECT_EQ(code, 0);
        if (code != 0) break;
    }
    stop = true;
    other.join();
}

TEST_F(ForkedPool, DrawsTheSamePictureInAChild) {
    const RandomScene scene = MakeRandomScene(3);
    const Plane here = Draw(scene);
    const auto child = [&] { return Draw(scene).values == here.values ? 0 : 1; };
    EXPECT_EQ(RunInChild(child, kDeadline), 0);
}

// Threads of this process.
int LiveThreads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

// From now on this process may have `more` threads more than it has. The superuser knows no such limit, so it becomes a
// user that has nothing else; the processes that another user has are not counted in a namespace of its own.
bool LimitThreads(int more) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NPROC, &limit) != 0) return false;
    if (geteuid() == 0) {
        const auto nobodyElse = static_cast<uid_t>(1900000000 + getpid());
        if (setresuid(nobodyElse, nobodyElse, nobodyElse) != 0) return false;
    } else if (unshare(CLONE_NEWUSER) != 0) {
        return false;
    }
    limit.rlim_cur = static_cast<rlim_t>(LiveThreads() + more);
    return setrlimit(RLIMIT_NPROC, &limit) == 0;
}

constexpr int kCannotLimit = 77;

// How many threads a run of the pool makes in a child that may make `more`, plus 10; less says what went wrong.
int ThreadsMade(int more) {
    return RunInChild(
        [more] {
            LimitPoolThreads(6);
            if (!LimitThreads(more)) return kCannotLimit;
            const int before = LiveThreads();
            if (Sum(1000) != 499500) return 1;
            // Runs without an end to attempts would be noticed by their errors.
            for (int run = 0; run < 100; ++run) {
                if (Sum(100) != 4950) return 2;
            }
            return 10 + LiveThreads() - before;
        },
        kDeadline);
}

TEST_F(ForkedPool, WorksWithTheThreadsThatCouldBeHad) {
    const int some = ThreadsMade(2);
    if (some == kCannotLimit) GTEST_SKIP() << "user namespaces are off";
    EXPECT_EQ(some, 10 + 2);
}

TEST_F(ForkedPool, WorksWithTheCallersThreadAlone) {
    const int none = ThreadsMade(0);
    if (none == kCannotLimit) GTEST_SKIP() << "user namespaces are off";
    EXPECT_EQ(none, 10);
}

TEST_F(ForkedPool, MakesThemAllWhenThereIsRoomAgain) {
    const int code = RunInChild(
        [] {
            LimitPoolThreads(4);
            rlimit before{};
            getrlimit(RLIMIT_NPROC, &before);
            if (!LimitThreads(0)) return kCannotLimit;
            const int threads = LiveThreads();
            if (Sum(100) != 4950 || LiveThreads() != threads) return 1;
            if (setrlimit(RLIMIT_NPROC, &before) != 0) return 2;
            EndPool();
            if (Sum(100) != 4950) return 3;
            return LiveThreads() == threads + 3 ? 0 : 4;
        },
        kDeadline);
    if (code == kCannotLimit) GTEST_SKIP() << "user namespaces are off";
    EXPECT_EQ(code, 0);
}

}  // namespace

}  // namespace umbrant::effect
