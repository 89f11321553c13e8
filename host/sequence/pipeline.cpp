// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/pipeline.h"

#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kSteps = 3;
constexpr std::size_t kWrite = 2;

class Pipeline {
 public:
    Pipeline(std::size_t count, const PipelineShape& shape, std::array<const PipelineStep*, kSteps> steps)
        : count_(count), mostUnderWay_(shape.underWay), inOrder_(shape.inOrder), steps_(steps) {}

    /// One thread of one step, until no frame can come to it any more.
    void Work(std::size_t step, int thread) {
        std::unique_lock lock(mutex_);
        for (;;) {
            std::optional<std::size_t> frame;
            changed_.wait(lock, [&] { return (frame = Next(step)).has_value() || HasEnded(step); });
            if (!frame) return;
            Take(step, *frame);
            lock.unlock();
            const AfterStep after = Run(step, *frame, thread);
            lock.lock();
            Leave(step, *frame, after);
            changed_.notify_all();
        }
    }

    void ThrowFailure() const {
        if (failure_) std::rethrow_exception(failure_);
    }

 private:
    std::optional<std::size_t> Next(std::size_t step) const {
        if (stopped_ && !GoesOn(step)) return std::nullopt;
        if (step == 0) {
            return next_ < count_ && underWay_.size() < mostUnderWay_ ? std::optional(next_) : std::nullopt;
        }
        if (waiting_[step].empty()) return std::nullopt;
        // Frames are begun in their order, so none that comes later is before all those that are under way.
        if (inOrder_ && step == kWrite && *waiting_[step].begin() != *underWay_.begin()) {
            return std::nullopt;
        }
        return *waiting_[step].begin();
    }

    /// What is drawn is still written, except where something before it is missing.
    bool GoesOn(std::size_t step) const { return step == kWrite && !inOrder_; }

    bool HasEnded(std::size_t step) const {
        if (step == 0) return stopped_ || next_ == count_;
        if (stopped_ && !GoesOn(step)) return true;
        return waiting_[step].empty() && working_[step - 1] == 0 && HasEnded(step - 1);
    }

    void Take(std::size_t step, std::size_t frame) {
        ++working_[step];
        if (step > 0) {
            waiting_[step].erase(frame);
            return;
        }
        ++next_;
        underWay_.insert(frame);
        // The limit may let in one more.
        changed_.notify_all();
    }

    AfterStep Run(std::size_t step, std::size_t frame, int thread) {
        try {
            return (*steps_[step])(frame, thread);
        } catch (...) {
            const std::lock_guard lock(mutex_);
            if (!failure_) failure_ = std::current_exception();
            return AfterStep::kStopAll;
        }
    }

    void Leave(std::size_t step, std::size_t frame, AfterStep after) {
        --working_[step];
        if (after == AfterStep::kStopAll) stopped_ = true;
        if (after == AfterStep::kGoOn && step + 1 < kSteps) {
            waiting_[step + 1].insert(frame);
        } else {
            underWay_.erase(frame);
        }
    }

    const std::size_t count_;
    const std::size_t mostUnderWay_;
    const bool inOrder_;
    const std::array<const PipelineStep*, kSteps> steps_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t next_ = 0;
    std::set<std::size_t> underWay_;
    std::array<std::set<std::size_t>, kSteps> waiting_{};
    std::array<int, kSteps> working_{};
    bool stopped_ = false;
    std::exception_ptr failure_;
};

}  // namespace

void RunPipeline(std::size_t count, const PipelineShape& shape, const PipelineStep& read, const PipelineStep& draw,
                 const PipelineStep& write) {
    Pipeline pipeline(count, shape, {&read, &draw, &write});
    const std::array<int, kSteps> threadsOf = {shape.readers, shape.drawers, shape.writers};
    std::vector<std::thread> threads;
    for (std::size_t step = 0; step < kSteps; ++step) {
        for (int thread = 0; thread < threadsOf[step]; ++thread) {
            threads.emplace_back([&pipeline, step, thread] { pipeline.Work(step, thread); });
        }
    }
    for (std::thread& thread : threads) thread.join();
    pipeline.ThrowFailure();
}
