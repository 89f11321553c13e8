// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is known of frames that failed, whatever the order in which they end.

#include "host/cli/render/frame_progress.h"

#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

FrameOutcome Failed(ErrorKind kind, const char* sentence) {
    FrameOutcome outcome;
    outcome.kind = FrameOutcome::Kind::kFailed;
    outcome.failure = Failure{kind, sentence};
    return outcome;
}

FramePlan PlanOf(int frames) {
    FramePlan plan;
    for (int i = 1; i <= frames; ++i) plan.frames.emplace_back().number = i;
    return plan;
}

TEST(FrameProgress, ReasonsOfAllFailedFramesAreListed) {
    const FramePlan plan = PlanOf(5);
    FrameProgress progress(plan, {ProgressForm::kQuiet}, false);
    progress.Ends(3, Failed(ErrorKind::kFile, "cannot read 'in.4.png'"));
    progress.Ends(0, FrameOutcome{});
    progress.Ends(1, Failed(ErrorKind::kEffect, "out of paint"));
    const FrameTotals totals = progress.Finish();
    EXPECT_EQ(totals.failed, 2u);
    EXPECT_EQ(totals.failure.kind, ErrorKind::kEffect) << "that of the first in the plan";
    EXPECT_EQ(totals.failure.sentence, "2 frames failed:\n  frame 2: out of paint\n  frame 4: cannot read 'in.4.png'");
}

TEST(FrameProgress, OneFailureIsOneSentence) {
    const FramePlan plan = PlanOf(2);
    FrameProgress progress(plan, {ProgressForm::kQuiet}, false);
    progress.Ends(0, FrameOutcome{});
    progress.Ends(1, Failed(ErrorKind::kFile, "cannot read 'in.2.png'"));
    const FrameTotals totals = progress.Finish();
    EXPECT_EQ(totals.failure.kind, ErrorKind::kFile);
    EXPECT_EQ(totals.failure.sentence, "frame 2: cannot read 'in.2.png'");
}

}  // namespace

}  // namespace umbrant::host
