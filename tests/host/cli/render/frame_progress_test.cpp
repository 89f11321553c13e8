// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is known of frames that failed, whatever the order in which they end.

#include "host/cli/render/frame_progress.h"

#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

FrameOutcome Failed(ExitCode code, const char* sentence) {
    FrameOutcome outcome;
    outcome.kind = FrameOutcome::Kind::kFailed;
    outcome.failure = Failure{code, sentence};
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
    progress.Ends(3, Failed(ExitCode::kFile, "cannot read 'in.4.png'"));
    progress.Ends(0, FrameOutcome{});
    progress.Ends(1, Failed(ExitCode::kEffectFailed, "out of paint"));
    const FrameTotals totals = progress.Finish();
    EXPECT_EQ(totals.failed, 2u);
    EXPECT_EQ(totals.failure.code, ExitCode::kEffectFailed) << "that of the first in the plan";
    EXPECT_EQ(totals.failure.sentence, "2 frames failed:\n  frame 2: out of paint\n  frame 4: cannot read 'in.4.png'");
}

TEST(FrameProgress, OneFailureIsOneSentence) {
    const FramePlan plan = PlanOf(2);
    FrameProgress progress(plan, {ProgressForm::kQuiet}, false);
    progress.Ends(0, FrameOutcome{});
    progress.Ends(1, Failed(ExitCode::kFile, "cannot read 'in.2.png'"));
    const FrameTotals totals = progress.Finish();
    EXPECT_EQ(totals.failure.code, ExitCode::kFile);
    EXPECT_EQ(totals.failure.sentence, "frame 2: cannot read 'in.2.png'");
}

}  // namespace

}  // namespace umbrant::host
