// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Many frames through three steps: the order of each frame's steps, the limit on those under way, failures, stops.

#include "host/render/pipeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/limited_child.h"

namespace {

/// Whether this thread gets no memory.
thread_local bool hasNoMemory = false;

}  // namespace

void* operator new(std::size_t size) {
    void* memory = hasNoMemory ? nullptr : std::malloc(size > 0 ? size : 1);
    if (!memory) throw std::bad_alloc();
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return hasNoMemory ? nullptr : std::malloc(size > 0 ? size : 1);
}
// Not inlined: the compiler would see malloc's memory freed and take it for a mismatch.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;

/// What happened, in order.
class Log {
 public:
    void Note(char step, std::size_t frame) {
        const std::lock_guard lock(mutex_);
        entries_.emplace_back(step, frame);
    }
    std::vector<std::size_t> Of(char step) const {
        std::vector<std::size_t> frames;
        for (const auto& [kind, frame] : entries_) {
            if (kind == step) frames.push_back(frame);
        }
        return frames;
    }
    std::string OfFrame(std::size_t wanted) const {
        std::string steps;
        for (const auto& [kind, frame] : entries_) {
            if (frame == wanted) steps += kind;
        }
        return steps;
    }

 private:
    std::mutex mutex_;
    std::vector<std::pair<char, std::size_t>> entries_;
};

PipelineStep Noted(Log& log, char step) {
    return [&log, step](std::size_t frame, int) {
        log.Note(step, frame);
        return AfterStep::kGoOn;
    };
}

/// With all the threads that it wants.
void RunAll(std::size_t count, const PipelineShape& shape, const PipelineStep& read, const PipelineStep& draw,
            const PipelineStep& write) {
    const auto run = RunPipeline(count, shape, read, draw, write);
    EXPECT_TRUE(run) << run.error().sentence;
}

const PipelineShape kShapes[] = {{1, 1, 1, 1}, {1, 1, 1, 4}, {1, 2, 2, 6}, {3, 4, 2, 10}, {1, 8, 1, 2}};

TEST(Pipeline, TakesEveryFrameThroughEveryStepOnce) {
    for (const PipelineShape& shape : kShapes) {
        for (const std::size_t count : {0u, 1u, 2u, 50u}) {
            Log log;
            RunAll(count, shape, Noted(log, 'r'), Noted(log, 'd'), Noted(log, 'w'));
            for (std::size_t frame = 0; frame < count; ++frame) EXPECT_EQ(log.OfFrame(frame), "rdw");
            EXPECT_EQ(log.Of('w').size(), count);
        }
    }
}

TEST(Pipeline, OneThreadOfEachKeepsTheOrder) {
    Log log;
    RunAll(20, {1, 1, 1, 5}, Noted(log, 'r'), Noted(log, 'd'), Noted(log, 'w'));
    for (const char step : {'r', 'd', 'w'}) {
        const auto frames = log.Of(step);
        EXPECT_TRUE(std::is_sorted(frames.begin(), frames.end())) << step;
    }
}

TEST(Pipeline, NeverHasMoreUnderWayThanItMay) {
    for (const PipelineShape& shape : kShapes) {
        std::atomic<std::size_t> underWay{0}, most{0};
        const auto begin = [&](std::size_t, int) {
            const std::size_t now = ++underWay;
            std::size_t seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            return AfterStep::kGoOn;
        };
        const auto pass = [](std::size_t, int) { return AfterStep::kGoOn; };
        const auto end = [&](std::size_t frame, int) {
            if (frame % 3 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            --underWay;
            return AfterStep::kGoOn;
        };
        RunAll(60, shape, begin, pass, end);
        EXPECT_LE(most, shape.underWay);
        EXPECT_EQ(underWay, 0u);
    }
}

TEST(Pipeline, StepsOverlap) {
    // The first frame is not written before the second is drawn, nor drawn before the second is read: with one frame at
    // a time this would never end.
    std::atomic<bool> secondRead{false}, secondDrawn{false};
    const auto await = [](const std::atomic<bool>& flag) {
        while (!flag) std::this_thread::yield();
    };
    RunAll(
        2, {1, 1, 1, 2},
        [&](std::size_t frame, int) {
            if (frame == 1) secondRead = true;
            return AfterStep::kGoOn;
        },
        [&](std::size_t frame, int) {
            if (frame == 0) await(secondRead);
            if (frame == 1) secondDrawn = true;
            return AfterStep::kGoOn;
        },
        [&](std::size_t frame, int) {
            if (frame == 0) await(secondDrawn);
            return AfterStep::kGoOn;
        });
    EXPECT_TRUE(secondDrawn);
}

TEST(Pipeline, AThreadsNumberIsItsOwn) {
    constexpr int kDrawers = 4;
    std::atomic<int> inside[kDrawers]{};
    std::atomic<bool> shared{false};
    const auto pass = [](std::size_t, int) { return AfterStep::kGoOn; };
    RunAll(
        200, {2, kDrawers, 2, 12}, pass,
        [&](std::size_t, int thread) {
            if (++inside[thread] != 1) shared = true;
            std::this_thread::yield();
            --inside[thread];
            return AfterStep::kGoOn;
        },
        pass);
    EXPECT_FALSE(shared);
}

TEST(Pipeline, AFrameThatLeavesMakesRoom) {
    Log log;
    RunAll(
        9, {1, 1, 1, 1}, [&](std::size_t frame, int) { return frame % 3 == 0 ? AfterStep::kLeave : AfterStep::kGoOn; },
        [&](std::size_t frame, int) { return frame % 3 == 1 ? AfterStep::kLeave : AfterStep::kGoOn; }, Noted(log, 'w'));
    EXPECT_THAT(log.Of('w'), ElementsAre(2, 5, 8));
}

TEST(Pipeline, AStopLetsDrawnFramesBeWritten) {
    Log log;
    RunAll(
        100, {1, 1, 1, 3}, Noted(log, 'r'),
        [&](std::size_t frame, int) {
            log.Note('d', frame);
            return frame == 4 ? AfterStep::kStopAll : AfterStep::kGoOn;
        },
        Noted(log, 'w'));
    EXPECT_THAT(log.Of('d'), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(log.Of('w'), ElementsAre(0, 1, 2, 3));
    EXPECT_LE(log.Of('r').size(), 7u);
}

TEST(Pipeline, AStopInReadingEndsItToo) {
    Log log;
    RunAll(
        100, {2, 2, 2, 8}, [&](std::size_t frame, int) { return frame == 0 ? AfterStep::kStopAll : AfterStep::kLeave; },
        Noted(log, 'd'), Noted(log, 'w'));
    EXPECT_TRUE(log.Of('d').empty());
}

TEST(Pipeline, GoesOnWithTheThreadsThatItCanHave) {
    for (const int allowed : {1, 2, 3, 4, 7}) {
        for (const bool inOrder : {false, true}) {
            SCOPED_TRACE(std::to_string(allowed) + (inOrder ? " in order" : ""));
            EXPECT_LIMITED_CHILD(allowed, {
                Log log;
                const auto run = RunPipeline(40, {2, 4, inOrder ? 1 : 4, 9, inOrder}, Noted(log, 'r'), Noted(log, 'd'),
                                             Noted(log, 'w'));
                bool right = bool(run);
                for (std::size_t frame = 0; frame < 40; ++frame) right = right && log.OfFrame(frame) == "rdw";
                const auto written = log.Of('w');
                return right && (!inOrder || std::is_sorted(written.begin(), written.end()));
            });
        }
    }
}

TEST(Pipeline, WithoutAnyThreadNothingIsBegun) {
    EXPECT_LIMITED_CHILD(0, {
        Log log;
        const auto run = RunPipeline(3, {1, 2, 2, 4}, Noted(log, 'r'), Noted(log, 'd'), Noted(log, 'w'));
        return !run && run.error().kind == ErrorKind::kInternal && log.Of('r').empty() &&
               run.error().sentence ==
                   "cannot start a thread to draw frames; raise the limit of processes (`ulimit -u`), or the "
                   "container's limit of tasks or memory";
    });
}

TEST(Pipeline, ASingleFrameRunsOnTheCallersThread) {
    Log log;
    const auto here = std::this_thread::get_id();
    const auto onlyHere = [&](char step) {
        return [&log, step, here](std::size_t frame, int thread) {
            EXPECT_EQ(std::this_thread::get_id(), here);
            EXPECT_EQ(thread, 0);
            log.Note(step, frame);
            return step == 'd' ? AfterStep::kLeave : AfterStep::kGoOn;
        };
    };
    ASSERT_TRUE(RunPipeline(1, {2, 2, 2, 4, false}, onlyHere('r'), onlyHere('d'), onlyHere('w')));
    EXPECT_EQ(log.OfFrame(0), "rd") << "a frame that leaves has no further step";
}

TEST(Pipeline, ItsThreadsNeedNoMemoryOfTheirOwn) {
    for (PipelineShape shape : kShapes) {
        for (const bool inOrder : {false, true}) {
            if (inOrder) shape.writers = 1;
            shape.inOrder = inOrder;
            Log log;
            const auto alone = [&](char step) {
                return [&log, step](std::size_t frame, int) {
                    hasNoMemory = false;
                    log.Note(step, frame);
                    hasNoMemory = true;
                    return step == 'd' && frame == 7 ? AfterStep::kLeave : AfterStep::kGoOn;
                };
            };
            RunAll(30, shape, alone('r'), alone('d'), alone('w'));
            for (std::size_t frame = 0; frame < 30; ++frame) EXPECT_EQ(log.OfFrame(frame), frame == 7 ? "rd" : "rdw");
        }
    }
    const auto fail = [](std::size_t, int) -> AfterStep {
        hasNoMemory = true;
        throw std::bad_alloc();
    };
    const auto pass = [](std::size_t, int) { return AfterStep::kGoOn; };
    EXPECT_THROW(RunAll(30, {1, 2, 2, 6}, pass, fail, pass), std::bad_alloc);
}

TEST(Pipeline, AnExceptionComesOut) {
    for (const PipelineShape& shape : kShapes) {
        const auto pass = [](std::size_t, int) { return AfterStep::kGoOn; };
        EXPECT_THROW(RunAll(
                         30, shape, pass,
                         [](std::size_t frame, int) -> AfterStep {
                             if (frame == 7) throw std::runtime_error("seven");
                             return AfterStep::kGoOn;
                         },
                         pass),
                     std::runtime_error);
    }
}

}  // namespace

}  // namespace umbrant::host
