// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "host/render/plan/output_check.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using State = PlannedFrame::State;

class FramePlanTest : public testing::Test {
 protected:
    /// Empty files, which a plan does not look into.
    void Files(const std::string& before, const std::vector<int>& frames) {
        for (const int frame : frames) WriteBytes(folder_ / (before + "." + std::to_string(frame) + ".png"), "x");
    }
    std::string Path(const std::string& name) const { return (folder_ / name).string(); }

    PlanRequest Request(const std::vector<FrameNumber>& frames) const {
        PlanRequest request;
        request.input = Path("in.@.png");
        request.output = Path("out.#.png");
        request.frames = frames;
        return request;
    }
    static FramePlan Plan(const PlanRequest& request) {
        auto plan = PlanFrames(request);
        if (!plan) {
            ADD_FAILURE() << plan.error().sentence;
            return {};
        }
        return std::move(*plan);
    }
    static Failure Refused(const PlanRequest& request) {
        const auto plan = PlanFrames(request);
        EXPECT_FALSE(plan);
        return plan ? Failure{ErrorKind::kInternal, "a plan was made"} : plan.error();
    }
    static std::vector<int> Numbers(const FramePlan& plan) {
        std::vector<int> numbers;
        for (const PlannedFrame& frame : plan.frames) numbers.push_back(frame.number.Begun());
        return numbers;
    }

    const Folder folder_;
};

TEST_F(FramePlanTest, NamesEachFramesFiles) {
    Files("in", {1, 2, 3});
    const FramePlan plan = Plan(Request({3, 1}));
    ASSERT_EQ(plan.frames.size(), 2u);
    EXPECT_EQ(plan.frames[0].number, 3);
    EXPECT_EQ(plan.frames[0].input, Path("in.3.png"));
    EXPECT_EQ(plan.frames[0].texture, "");
    EXPECT_EQ(plan.frames[0].output, Path("out.0003.png"));
    EXPECT_EQ(plan.frames[0].state, State::kDraw);
    EXPECT_EQ(plan.frames[1].input, Path("in.1.png"));
}

TEST_F(FramePlanTest, InputAndTextureHaveTheirOffsets) {
    Files("in", {11, 12});
    Files("tex", {98, 99});
    PlanRequest request = Request({1, 2});
    request.texture = Path("tex.@.png");
    request.inputOffset = 10;
    request.textureOffset = 97;
    const FramePlan plan = Plan(request);
    EXPECT_EQ(plan.frames[1].input, Path("in.12.png"));
    EXPECT_EQ(plan.frames[1].texture, Path("tex.99.png"));
    EXPECT_EQ(plan.frames[1].output, Path("out.0002.png"));
}

TEST_F(FramePlanTest, WithoutFramesItTakesThoseThatAreThere) {
    Files("in", {3, 1, 7});
    PlanRequest request = Request({});
    request.frames.reset();
    EXPECT_THAT(Numbers(Plan(request)), ElementsAre(1, 3, 7));
    request.inputOffset = 2;
    EXPECT_THAT(Numbers(Plan(request)), ElementsAre(-1, 1, 5)) << "as they are called in the output";

    Files("tex", {4, 5});
    WriteBytes(folder_ / "still.png", "x");
    request.input = Path("still.png");
    request.texture = Path("tex.#.png");
    EXPECT_EQ(Refused(request).kind, ErrorKind::kFile) << "these names have four digits";
    request.texture = Path("tex.@.png");
    EXPECT_THAT(Numbers(Plan(request)), ElementsAre(4, 5));
}

TEST_F(FramePlanTest, AStillPictureIsSharedAndFramesAreNot) {
    Files("in", {1, 3});
    WriteBytes(folder_ / "still.png", "x");
    PlanRequest request = Request({1, 2, 3});
    request.texture = Path("still.png");
    request.missing = MissingFrames::kHold;
    const FramePlan plan = Plan(request);
    EXPECT_TRUE(plan.frames[0].inputChanges);
    EXPECT_FALSE(plan.frames[1].inputChanges) << "held";
    EXPECT_FALSE(plan.frames[0].textureChanges);
    EXPECT_EQ(plan.frames[2].texture, Path("still.png"));
}

TEST_F(FramePlanTest, MissingFramesAreRefusedHeldOrLeftOut) {
    Files("in", {2, 3, 6});
    PlanRequest request = Request({1, 2, 3, 4, 5, 6, 7});
    Failure refused = Refused(request);
    EXPECT_EQ(refused.kind, ErrorKind::kFile);
    EXPECT_EQ(refused.sentence, "cannot read '" + Path("in.1.png") +
                                    "', nor the files of 4 frames in all (1, 4, 5, 7): there are no such files; "
                                    "--missing hold shows other frames instead, --missing skip leaves these out");
    request.frames = {6, 7};
    refused = Refused(request);
    EXPECT_EQ(refused.sentence, "cannot read '" + Path("in.7.png") +
                                    "': there is no such file; --missing hold shows another frame instead, --missing "
                                    "skip leaves frame 7 out");

    request.frames = {1, 2, 3, 4, 5, 6, 7};
    request.missing = MissingFrames::kHold;
    std::vector<std::string> inputs;
    for (const PlannedFrame& frame : Plan(request).frames) {
        EXPECT_EQ(frame.state, State::kDraw);
        inputs.push_back(frame.input.substr(frame.input.rfind('/') + 1));
    }
    EXPECT_THAT(inputs, ElementsAre("in.2.png", "in.2.png", "in.3.png", "in.3.png", "in.3.png", "in.6.png", "in.6.png"))
        << "the one before it; before the first, the first";
    EXPECT_EQ(Plan(request).frames[3].heldInput, 3);

    request.missing = MissingFrames::kSkip;
    FramePlan plan = Plan(request);
    EXPECT_EQ(plan.frames[0].state, State::kSkipped);
    EXPECT_EQ(plan.frames[0].missing, "'" + Path("in.1.png") + "'");
    EXPECT_EQ(plan.frames[1].state, State::kDraw);

    request.missing = MissingFrames::kError;
    request.keepGoing = true;
    plan = Plan(request);
    EXPECT_EQ(plan.frames[0].state, State::kMissing);
    EXPECT_EQ(plan.frames[1].state, State::kDraw);
}

TEST_F(FramePlanTest, AMissingTextureIsAMissingFrame) {
    Files("in", {1, 2});
    Files("tex", {1});
    PlanRequest request = Request({1, 2});
    request.texture = Path("tex.@.png");
    EXPECT_THAT(Refused(request).sentence, HasSubstr("cannot read '" + Path("tex.2.png") + "'"));
    request.missing = MissingFrames::kHold;
    EXPECT_EQ(Plan(request).frames[1].texture, Path("tex.1.png"));
    EXPECT_EQ(Plan(request).frames[1].heldTexture, 1);
    EXPECT_FALSE(Plan(request).frames[1].heldInput);
}

TEST_F(FramePlanTest, ChunksDivideTheFramesInTheirOrder) {
    std::vector<int> frames(7);
    std::iota(frames.begin(), frames.end(), 1);
    Files("in", frames);
    PlanRequest request = Request({frames.begin(), frames.end()});
    std::vector<int> together;
    for (int number = 1; number <= 3; ++number) {
        request.chunk = {number, 3};
        const FramePlan plan = Plan(request);
        EXPECT_EQ(plan.totalTime, 8) << "a chunk's frames know the whole shot's length";
        for (const int frame : Numbers(plan)) together.push_back(frame);
    }
    EXPECT_EQ(together, frames);
    request.chunk = {1, 100};
    EXPECT_TRUE(Plan(request).frames.empty());
}

TEST_F(FramePlanTest, AChunksOwnMissingFramesCount) {
    Files("in", {1, 2});
    PlanRequest request = Request({1, 2, 3, 4});
    request.chunk = {1, 2};
    EXPECT_THAT(Numbers(Plan(request)), ElementsAre(1, 2));
    request.chunk = {2, 2};
    EXPECT_EQ(Refused(request).kind, ErrorKind::kFile);
}

TEST_F(FramePlanTest, ExistingPicturesAreLeftOut) {
    Files("in", {1, 2});
    WriteBytes(folder_ / "out.0002.png", "x");
    PlanRequest request = Request({1, 2, 3});
    request.missing = MissingFrames::kSkip;
    EXPECT_EQ(Plan(request).frames[1].state, State::kDraw);
    request.skipExisting = true;
    const FramePlan plan = Plan(request);
    EXPECT_EQ(plan.frames[0].state, State::kDraw);
    EXPECT_EQ(plan.frames[1].state, State::kExists);
    EXPECT_EQ(plan.frames[2].state, State::kSkipped);

    WriteBytes(folder_ / "out.0003.png", "x");
    request.missing = MissingFrames::kError;
    EXPECT_EQ(Plan(request).frames[2].state, State::kExists) << "what is done needs no input any more";
}

TEST_F(FramePlanTest, TimesFollowTheRate) {
    Files("in", {-1, 0, 10});
    PlanRequest request = Request({-1, 0, 10});
    request.rate = {30000, 1001};
    FramePlan plan = Plan(request);
    EXPECT_EQ(plan.frames[0].time, -1001);
    EXPECT_EQ(plan.frames[1].time, 0);
    EXPECT_EQ(plan.frames[2].time, 10010);
    EXPECT_EQ(plan.totalTime, 11011);
    request.zeroFrame = 10;
    plan = Plan(request);
    EXPECT_EQ(plan.frames[2].time, 0);
    EXPECT_EQ(plan.frames[1].time, -10010);
    EXPECT_EQ(plan.totalTime, 1001);
    request.zeroFrame = -999999;
    request.rate = {300000, 100000};
    EXPECT_THAT(Refused(request).sentence, HasSubstr("is too far from frame -999999, which is at time 0"));
    EXPECT_EQ(Refused(request).kind, ErrorKind::kUsage);
}

TEST_F(FramePlanTest, ManyFramesNeedAFieldInTheOutput) {
    Files("in", {1, 2});
    PlanRequest request = Request({1, 2});
    request.output = Path("out.png");
    EXPECT_EQ(Refused(request).kind, ErrorKind::kUsage);
    EXPECT_EQ(Refused(request).sentence,
              "'" + Path("out.png") + "' has no field for the frame's number, and there are 2 frames; write it as '" +
                  Path("out.####.png") + "'");
    request.chunk = {1, 2};
    EXPECT_EQ(Refused(request).kind, ErrorKind::kUsage) << "other chunks would write the same file";
    request = Request({2});
    request.output = Path("out.png");
    EXPECT_EQ(Plan(request).frames[0].output, Path("out.png"));
}

TEST_F(FramePlanTest, NothingIsWrittenOverWhatIsRead) {
    Files("in", {1, 2});
    Files("tex", {1, 2});
    std::filesystem::create_symlink(folder_ / "tex.1.png", folder_ / "link.1.png");
    const struct {
        const char* name;
        const char* output;
        int inputOffset;
        const char* file;
    } rows[] = {
        {"the same name", "in.@.png", 0, "in.1.png"},
        {"the same file, spelt otherwise", "./in.@.png", 0, "./in.1.png"},
        {"another frame of the sequence", "in.@.png", -1, "in.1.png"},
        {"the texture", "tex.@.png", 0, "tex.1.png"},
        {"a link to the texture", "link.@.png", 0, "link.1.png"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        PlanRequest request = Request({1, 2});
        request.missing = MissingFrames::kHold;
        request.texture = Path("tex.@.png");
        request.output = Path(row.output);
        request.inputOffset = row.inputOffset;
        const Failure refused = Refused(request);
        EXPECT_EQ(refused.kind, ErrorKind::kUsage);
        EXPECT_EQ(refused.sentence, "'" + Path(row.file) + "' is both input and output; give the output another name");
    }
    EXPECT_TRUE(CheckApart(Path("in.1.png"), Path("in.2.png")));
    EXPECT_FALSE(CheckApart(Path("in.1.png"), Path("./in.1.png")));
}

TEST_F(FramePlanTest, TheOutputsPlaceIsLookedAtFirst) {
    Files("in", {1});
    PlanRequest request = Request({1});
    request.output = Path("none/out.#.png");
    EXPECT_EQ(Refused(request).kind, ErrorKind::kFile);
    EXPECT_THAT(Refused(request).sentence, HasSubstr("there is no folder"));
    request.output = Path("out.#.gif");
    EXPECT_THAT(Refused(request).sentence, HasSubstr("'.gif' is not a format that can be written"));
}

TEST_F(FramePlanTest, WhatMeansASequence) {
    Files("in", {1});
    Files("icon", {2});
    WriteBytes(folder_ / "still.png", "x");
    WriteBytes(folder_ / "weird.####.png", "x");
    const struct {
        const char* name;
        const char* input;
        const char* texture;
        bool frames;
        bool means;
    } rows[] = {
        {"a picture", "still.png", "", false, false},
        {"a picture and frames", "still.png", "", true, true},
        {"a pattern", "in.#.png", "", false, true},
        {"a texture's pattern", "still.png", "in.#.png", false, true},
        {"a picture whose name looks like a pattern", "weird.####.png", "", false, false},
        {"an at sign with frames behind it", "icon.@.png", "", false, true},
        {"an at sign in a picture's name", "logo@2x.png", "", false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        PlanRequest request;
        request.input = Path(row.input);
        if (*row.texture) request.texture = Path(row.texture);
        request.output = Path("out@2x.png");
        if (row.frames) request.frames = {1};
        const auto means = MeansSequence(request);
        ASSERT_TRUE(means) << means.error().sentence;
        EXPECT_EQ(*means, row.means);
    }
    PlanRequest request;
    request.input = Path("still.png");
    request.output = Path("out.####.png");
    const auto means = MeansSequence(request);
    ASSERT_FALSE(means);
    EXPECT_EQ(means.error().kind, ErrorKind::kUsage);
    EXPECT_THAT(means.error().sentence, HasSubstr("is a single image; choose the frames with --frames"));
}

TEST_F(FramePlanTest, ASequenceWithoutAnyFileIsRefused) {
    PlanRequest request = Request({});
    request.input = Path("in.#.png");
    request.frames.reset();
    EXPECT_EQ(Refused(request).kind, ErrorKind::kFile);
    EXPECT_EQ(Refused(request).sentence, "cannot read '" + Path("in.#.png") + "': no file has such a name");
}

TEST_F(FramePlanTest, FramesBetweenFramesHaveExactTimes) {
    Files("in", {-1, 0, 1, 2});
    const struct {
        const char* name;
        const char* frames;
        FrameRate rate;
        FrameRate unit;
        std::vector<A_long> times;
    } rows[] = {
        {"whole ones", "1-2", {24, 1}, {24, 1}, {1, 2}},
        {"quarters", "1-2x0.25", {24, 1}, {96, 4}, {4, 5, 6, 7, 8}},
        {"halves at a rate of broadcasting", "1-2x0.5", {30000, 1001}, {60000, 2002}, {2002, 3003, 4004}},
        {"below zero", "-0.5-0x0.5", {25, 1}, {50, 2}, {-1, 0}},
        {"tenths of thousands", "0.0001", {24, 1}, {240000, 10000}, {1}},
        {"of several finenesses", "0.5,0.2", {10, 1}, {100, 10}, {5, 2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        PlanRequest request = Request(*ParseFrames(row.frames));
        request.rate = row.rate;
        const FramePlan plan = Plan(request);
        EXPECT_EQ(plan.rate, row.unit);
        std::vector<A_long> times;
        for (const PlannedFrame& frame : plan.frames) times.push_back(frame.time);
        EXPECT_EQ(times, row.times);
        // A chunk has the same times, whichever frames are in it.
        request.chunk = {1, static_cast<int>(times.size())};
        EXPECT_EQ(Plan(request).rate, row.unit);
        EXPECT_EQ(Plan(request).frames.front().time, times.front());
    }
}

TEST_F(FramePlanTest, FramesBetweenFramesShowTheOneThatHasBegun) {
    Files("in", {-1, 0, 1, 2});
    const FramePlan plan = Plan(Request(*ParseFrames("-0.5-2x0.5")));
    std::vector<std::string> inputs, outputs;
    for (const PlannedFrame& frame : plan.frames) {
        inputs.push_back(std::filesystem::path(frame.input).filename());
        outputs.push_back(std::filesystem::path(frame.output).filename());
    }
    EXPECT_THAT(inputs, ElementsAre("in.-1.png", "in.0.png", "in.0.png", "in.1.png", "in.1.png", "in.2.png"));
    EXPECT_THAT(outputs, ElementsAre("out.-000.5.png", "out.0000.png", "out.0000.5.png", "out.0001.png",
                                     "out.0001.5.png", "out.0002.png"));
}

TEST_F(FramePlanTest, ARateThatCannotBeDividedIsRefused) {
    Files("in", {1});
    PlanRequest request = Request(*ParseFrames("1.0001"));
    request.rate = {30000000, 100000};
    EXPECT_EQ(Refused(request).sentence,
              "a rate of 30000000/100000 cannot be divided by 10000, which these frames need");
}

}  // namespace

}  // namespace umbrant::host
