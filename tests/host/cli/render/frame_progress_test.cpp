// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What is known of frames that failed, whatever the order in which they end.

#include "host/cli/render/frame_progress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

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

/// Frames 1 to `frames` of in.@.png, drawn into out.@.png.
FramePlan NamedPlan(int frames) {
    FramePlan plan = PlanOf(frames);
    plan.input.path = "in.@.png";
    plan.output = "out.@.png";
    for (PlannedFrame& frame : plan.frames) {
        frame.input = "in." + frame.number.Text() + ".png";
        frame.output = "out." + frame.number.Text() + ".png";
    }
    return plan;
}

TEST(FrameFailures, OneReasonIsOneLineForAllItsFrames) {
    const FramePlan plan = NamedPlan(9);
    FrameFailures failures;
    EXPECT_EQ(failures.List(), "");
    EXPECT_EQ(failures.Text(), "");
    for (const std::size_t index : {1, 2, 3, 6}) {
        failures.Add(plan, plan.frames[index],
                     {ErrorKind::kFile, "cannot read '" + plan.frames[index].input + "': there is no such file"});
    }
    failures.Add(plan, plan.frames[8], {ErrorKind::kFile, "cannot write '" + plan.frames[8].output + "': it is full"});
    EXPECT_EQ(
        failures.List(),
        "5 frames failed:\n  frames 2-4, 7: cannot read 'in.@.png': there is no such file\n  frame 9: cannot write "
        "'out.9.png': it is full");
    EXPECT_EQ(failures.Text(), failures.List());
    const auto json = failures.Json();
    ASSERT_EQ(json.size(), 2u);
    EXPECT_EQ(json[0]["frames"], "2-4,7");
    EXPECT_EQ(json[0]["count"], 4);
    EXPECT_EQ(json[0]["error"], "cannot read 'in.@.png': there is no such file");
    EXPECT_EQ(json[0]["code"], 3);
    EXPECT_EQ(json[1]["error"], "cannot write 'out.9.png': it is full");
}

TEST(FrameFailures, TheListStaysShort) {
    constexpr int kFrames = 3000;
    const FramePlan plan = NamedPlan(kFrames);
    FrameFailures failures;
    for (int i = 0; i < kFrames; ++i) {
        // Every second frame has a reason of its own.
        failures.Add(plan, plan.frames[static_cast<std::size_t>(i)],
                     {ErrorKind::kEffect, i % 2 == 0 ? "out of paint" : "reason " + std::to_string(i)});
    }
    EXPECT_EQ(failures.Count(), 3000u);
    const std::string text = failures.List();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 21);
    EXPECT_LT(text.size(), 2000u);
    EXPECT_TRUE(text.ends_with("\n  1481 frames for other reasons")) << text;
    const auto json = failures.Json();
    ASSERT_EQ(json.size(), 21u);
    EXPECT_EQ(json[0]["count"], 1500);
    EXPECT_EQ(json[20], (nlohmann::ordered_json{{"count", 1481}}));
}

TEST(FrameFailures, ARunThatKeepsGoingEndsWithTheList) {
    const FramePlan plan = NamedPlan(3);
    FrameProgress progress(plan, {ProgressForm::kLines}, false);
    progress.SetKeepsGoing(true);
    testing::internal::CaptureStderr();
    progress.Ends(0, Failed(ErrorKind::kEffect, "out of paint"));
    progress.Ends(1, FrameOutcome{});
    progress.Ends(2, Failed(ErrorKind::kEffect, "out of paint"));
    progress.Finish();
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(text.ends_with("umbrant: 2 frames failed:\n  frames 1, 3: out of paint\n")) << text;
}

}  // namespace

}  // namespace umbrant::host
