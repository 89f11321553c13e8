// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/stage_clock.h"

#include "host/suites/services.h"

StageTimes StageClock::Snapshot() const {
    const std::lock_guard lock(mutex_);
    return times_;
}

void StageClock::Enter() {
    const std::lock_guard lock(mutex_);
    if (inside_++ == 0) begin_ = std::chrono::steady_clock::now();
}

void StageClock::Leave(PixelCall call) {
    const std::lock_guard lock(mutex_);
    if (--inside_ > 0) return;
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin_;
    transferred_ = transferred_ || call == PixelCall::kTransfer;
    if (call == PixelCall::kFill || transferred_) {
        times_.composite += taken.count();
    } else if (uploaded_ && call == PixelCall::kWalk) {
        times_.readBack += taken.count();
    } else {
        times_.upload += taken.count();
        uploaded_ = uploaded_ || call == PixelCall::kWalk;
    }
}

TimedCall::TimedCall(PixelCall call) : clock_(nullptr), call_(call) {
    if (CommandNotes* notes = ServiceScope::Current().second) clock_ = &notes->stages;
    if (clock_) clock_->Enter();
}

TimedCall::~TimedCall() {
    if (clock_) clock_->Leave(call_);
}
