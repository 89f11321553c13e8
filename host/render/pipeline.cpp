// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/pipeline.h"

#include <pthread.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "host/compositing/memory_shortage.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kSteps = 3;
constexpr std::size_t kWrite = 2;

/// Some of the frames, in their order. All of its memory is taken at the beginning: a thread of the pipeline has nobody
/// to throw to.
class FrameSet {
 public:
    explicit FrameSet(std::size_t most) { frames_.reserve(most); }

    bool IsEmpty() const { return frames_.empty(); }
    std::size_t Size() const { return frames_.size(); }
    std::size_t First() const { return frames_.front(); }
    void Insert(std::size_t frame) { frames_.insert(std::lower_bound(frames_.begin(), frames_.end(), frame), frame); }
    void Erase(std::size_t frame) { frames_.erase(std::lower_bound(frames_.begin(), frames_.end(), frame)); }

 private:
    std::vector<std::size_t> frames_;
};

class Pipeline {
 public:
    Pipeline(std::size_t count, const PipelineShape& shape, std::array<const PipelineStep*, kSteps> steps)
        : count_(count), mostUnderWay_(std::min(shape.underWay, count)), inOrder_(shape.inOrder), steps_(steps) {}

    /// One thread of some steps, until no frame can come to any of them. A step nearer to the end goes first.
    void Work(const std::vector<std::size_t>& steps, int thread) {
        std::unique_lock lock(mutex_);
        for (;;) {
            std::optional<Task> task;
            changed_.wait(lock, [&] { return (task = NextOf(steps)).has_value() || HaveEnded(steps); });
            if (!task) return;
            Take(task->step, task->frame);
            lock.unlock();
            const AfterStep after = Run(task->step, task->frame, thread);
            lock.lock();
            Leave(task->step, task->frame, after);
            changed_.notify_all();
        }
    }

    void ThrowFailure() const {
        if (failure_) std::rethrow_exception(failure_);
    }

 private:
    struct Task {
        std::size_t step;
        std::size_t frame;
    };

    std::optional<Task> NextOf(const std::vector<std::size_t>& steps) const {
        for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
            if (const auto frame = Next(*step)) return Task{*step, *frame};
        }
        return std::nullopt;
    }

    bool HaveEnded(const std::vector<std::size_t>& steps) const {
        return std::all_of(steps.begin(), steps.end(), [this](std::size_t step) { return HasEnded(step); });
    }

    std::optional<std::size_t> Next(std::size_t step) const {
        if (stopped_ && !GoesOn(step)) return std::nullopt;
        if (step == 0) {
            return next_ < count_ && underWay_.Size() < mostUnderWay_ ? std::optional(next_) : std::nullopt;
        }
        if (waiting_[step].IsEmpty()) return std::nullopt;
        // Frames are begun in their order, so none that comes later is before all those that are under way.
        if (inOrder_ && step == kWrite && waiting_[step].First() != underWay_.First()) {
            return std::nullopt;
        }
        return waiting_[step].First();
    }

    /// What is drawn is still written, except where something before it is missing.
    bool GoesOn(std::size_t step) const { return step == kWrite && !inOrder_; }

    bool HasEnded(std::size_t step) const {
        if (step == 0) return stopped_ || next_ == count_;
        if (stopped_ && !GoesOn(step)) return true;
        return waiting_[step].IsEmpty() && working_[step - 1] == 0 && HasEnded(step - 1);
    }

    void Take(std::size_t step, std::size_t frame) {
        ++working_[step];
        if (step > 0) {
            waiting_[step].Erase(frame);
            return;
        }
        ++next_;
        underWay_.Insert(frame);
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
            waiting_[step + 1].Insert(frame);
        } else {
            underWay_.Erase(frame);
        }
    }

    const std::size_t count_;
    const std::size_t mostUnderWay_;
    const bool inOrder_;
    const std::array<const PipelineStep*, kSteps> steps_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t next_ = 0;
    FrameSet underWay_{mostUnderWay_};
    std::array<FrameSet, kSteps> waiting_ = {FrameSet(0), FrameSet(mostUnderWay_), FrameSet(mostUnderWay_)};
    std::array<int, kSteps> working_{};
    bool stopped_ = false;
    std::exception_ptr failure_;
};

/// What a thread's stack takes.
std::uint64_t StackBytes() {
    pthread_attr_t attributes;
    std::size_t bytes = 0;
    pthread_attr_init(&attributes);
    pthread_attr_getstacksize(&attributes, &bytes);
    pthread_attr_destroy(&attributes);
    return bytes;
}

/// What one thread does: its steps, and its number in each of them.
struct Duty {
    std::vector<std::size_t> steps;
    int thread = 0;
};

/// One for each thread that the shape asks for; the first of each step come first, as none can be done without.
std::vector<Duty> DutiesOf(const PipelineShape& shape) {
    const std::array<int, kSteps> threadsOf = {shape.readers, shape.drawers, shape.writers};
    std::vector<Duty> duties;
    for (int thread = 0; thread < *std::max_element(threadsOf.begin(), threadsOf.end()); ++thread) {
        for (std::size_t step = 0; step < kSteps; ++step) {
            if (thread < threadsOf[step]) duties.push_back({{step}, thread});
        }
    }
    return duties;
}

/// Shares the steps out among fewer threads than there are steps.
void ShareSteps(std::vector<Duty>& duties, std::size_t threads) {
    for (std::size_t step = threads; step < kSteps; ++step) duties[step % threads].steps.push_back(step);
}

}  // namespace

Result<Done> RunPipeline(std::size_t count, const PipelineShape& shape, const PipelineStep& read,
                         const PipelineStep& draw, const PipelineStep& write) {
    if (count == 1) {
        for (const PipelineStep* step : {&read, &draw, &write}) {
            if ((*step)(0, 0) != AfterStep::kGoOn) break;
        }
        return Done{};
    }
    Pipeline pipeline(count, shape, {&read, &draw, &write});
    std::vector<Duty> duties = DutiesOf(shape);
    // While the threads wait, nothing may be thrown.
    for (Duty& duty : duties) duty.steps.reserve(kSteps);
    // What a thread does depends on how many there are, so the first ones wait until that is known.
    std::promise<void> known;
    const std::shared_future<void> start = known.get_future().share();
    std::vector<std::jthread> threads = StartThreads(static_cast<int>(duties.size()), [&, start](int index) {
        start.wait();
        const Duty& duty = duties[static_cast<std::size_t>(index)];
        pipeline.Work(duty.steps, duty.thread);
    });
    if (threads.empty()) {
        // The stack of a thread counts against a limit of the address space.
        if (!CanHaveMemory(StackBytes())) return NotEnoughMemory("the stack of a thread", StackBytes());
        return Failure{ErrorKind::kInternal,
                       "cannot start a thread to draw frames; raise the limit of processes (`ulimit -u`), or the "
                       "container's limit of tasks or memory"};
    }
    if (threads.size() < duties.size()) {
        NoteThreadShortage({static_cast<int>(duties.size()), static_cast<int>(threads.size())});
    }
    if (threads.size() < kSteps) ShareSteps(duties, threads.size());
    known.set_value();
    threads.clear();
    pipeline.ThrowFailure();
    return Done{};
}

}  // namespace umbrant::host
