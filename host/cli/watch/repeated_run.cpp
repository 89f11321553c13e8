// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which frames a run draws that repeats another one.

#include <utility>

#include "host/cli/render/render_run.h"

namespace umbrant::host {

void RenderRun::LeaveOutUnchanged() {
    // A clip is one file, a background is behind all frames, and what is visible of one frame may change the canvas of
    // all.
    const bool concernsAll = plan_->clips.Writes() || plan_->canvas.kind == CanvasChoice::Kind::kTight ||
                             again_->changed.contains(BackgroundFile(options_));
    if (again_->changed.empty() || concernsAll) return;
    std::vector<PlannedFrame>& frames = plan_->frames.frames;
    allFrames_ = frames;
    std::erase_if(frames, [&](const PlannedFrame& frame) {
        return !again_->changed.contains(frame.input) && !again_->changed.contains(frame.texture);
    });
}

Result<Done> RenderRun::CompareCanvas(FirstFrame& first) {
    const auto covered = Covered();
    const std::string canvas = covered ? CanvasText(covered->layer) : "";
    if (canvas != again_->canvas && !allFrames_.empty()) {
        plan_->frames.frames = std::move(allFrames_);
        auto other = TRY(ReadFirst(plan_->frames, *plan_->reader, options_.sequence.keepGoing));
        first = std::move(other);
    }
    again_->canvas = canvas;
    return Done{};
}

}  // namespace umbrant::host
