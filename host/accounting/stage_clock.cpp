// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/accounting/stage_clock.h"

namespace umbrant::host {

StageTimes StageClock::Snapshot() const {
    const std::lock_guard lock(mutex_);
    return times_;
}

RenderStage StageClock::Now() const {
    const std::lock_guard lock(mutex_);
    if (inside_ > 0) return StageOf(call_);
    return transferred_ ? RenderStage::kComposite : uploaded_ ? RenderStage::kDraw : RenderStage::kUpload;
}

RenderStage StageClock::StageOf(PixelCall call) const {
    if (call == PixelCall::kFill || call == PixelCall::kTransfer || transferred_) return RenderStage::kComposite;
    return uploaded_ && call == PixelCall::kWalk ? RenderStage::kReadBack : RenderStage::kUpload;
}

void StageClock::Enter(PixelCall call) {
    const std::lock_guard lock(mutex_);
    if (inside_++ > 0) return;
    begin_ = std::chrono::steady_clock::now();
    call_ = call;
}

void StageClock::Leave(PixelCall call) {
    const std::lock_guard lock(mutex_);
    if (--inside_ > 0) return;
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin_;
    switch (StageOf(call)) {
        case RenderStage::kComposite:
            times_.composite += taken.count();
            break;
        case RenderStage::kReadBack:
            times_.readBack += taken.count();
            break;
        default:
            times_.upload += taken.count();
    }
    transferred_ = transferred_ || call == PixelCall::kTransfer;
    uploaded_ = uploaded_ || call == PixelCall::kWalk;
}

}  // namespace umbrant::host
