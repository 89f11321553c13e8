// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which outputs would be written over a file that is read, and that a plan of very many frames looks at folders instead
// of at each frame.

#include "host/render/plan/output_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "host/render/plan/frame_plan.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

class OutputCheck : public testing::Test {
 protected:
    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    void File(const std::string& name) const { WriteBytes(folder_ / name, "x"); }

    /// What is said about these paths and the frames 1 to 3; empty for nothing.
    std::string Said(const std::string& input, const std::string& output, const std::string& preset = "") const {
        PlanRequest request;
        request.input = Path(input);
        request.output = Path(output);
        if (!preset.empty()) request.alsoRead = {Path(preset)};
        request.frames = {1, 2, FrameNumber::OfParts(25'000), 3};
        request.missing = MissingFrames::kHold;
        const auto plan = PlanFrames(request);
        return plan ? "" : plan.error().sentence;
    }
    std::string SameFile(const std::string& name) const {
        return "'" + Path(name) + "' is both input and output; give the output another name";
    }

    const Folder folder_;
};

TEST_F(OutputCheck, NamesThatDifferAreApart) {
    for (const char* name : {"in.1.png", "in.2.png", "in.3.png", "still.png"}) File(name);
    EXPECT_EQ(Said("in.@.png", "out.@.png"), "");
    EXPECT_EQ(Said("in.@.png", "in.@.exr"), "");
    EXPECT_EQ(Said("still.png", "still.@.png"), "");
    fs::create_directory(folder_ / "away");
    EXPECT_EQ(Said("in.@.png", "away/in.@.png"), "");
    // The names could meet, but none of these does.
    EXPECT_EQ(Said("in.@.png", "in.###.png"), "");
}

TEST_F(OutputCheck, AStillThatIsAFrameOfTheOutput) {
    File("shot.2.png");
    File("shot.2.5.png");
    EXPECT_EQ(Said("shot.2.png", "shot.@.png"), SameFile("shot.2.png"));
    EXPECT_EQ(Said("shot.2.5.png", "shot.@.png"), SameFile("shot.2.5.png"));
    File("shot.7.png");
    EXPECT_EQ(Said("shot.7.png", "shot.#.png"), "") << "frame 7 is not drawn";
}

TEST_F(OutputCheck, APresetThatIsAFrameOfTheOutput) {
    File("still.png");
    File("shot.3.png");
    EXPECT_EQ(Said("still.png", "shot.%d.png", "shot.3.png"), SameFile("shot.3.png"));
    EXPECT_EQ(Said("still.png", "shot.%d.png", "shot.4.png"), "");
}

TEST_F(OutputCheck, LinksAreFollowed) {
    File("still.png");
    fs::create_directory(folder_ / "real");
    fs::create_directory_symlink(folder_ / "real", folder_ / "alias");
    for (const char* name : {"real/in.1.png", "real/in.2.png", "real/in.3.png"}) File(name);
    EXPECT_EQ(Said("real/in.@.png", "alias/in.%d.png"), SameFile("alias/in.1.png")) << "one folder by two names";
    fs::create_symlink(folder_ / "still.png", folder_ / "out.2.png");
    EXPECT_EQ(Said("still.png", "out.%d.png"), SameFile("out.2.png")) << "an output that leads to the input";
    File("real/new.3.png");
    fs::create_symlink(folder_ / "real" / "new.3.png", folder_ / "seen.1.png");
    EXPECT_EQ(Said("seen.@.png", "real/new.%d.png"), SameFile("real/new.3.png")) << "an input that leads to an output";
}

TEST_F(OutputCheck, AMillionFramesAreAPlanOfTheChunk) {
    File("still.png");
    PlanRequest request;
    request.input = Path("still.png");
    request.output = Path("out.#.png");
    const auto frames = ParseFrames("-999999-999999");
    ASSERT_TRUE(frames);
    ASSERT_EQ(frames->size(), static_cast<std::size_t>(kMostFrames));
    request.frames = *frames;
    request.chunk = {kMostFrames, kMostFrames};
    const auto plan = PlanFrames(request);
    ASSERT_TRUE(plan) << plan.error().sentence;
    EXPECT_EQ(plan->wholeSet.size(), frames->size());
    ASSERT_EQ(plan->frames.size(), 1u) << "frames of other chunks are not planned";
    EXPECT_EQ(plan->frames[0].output, Path("out.999999.png"));
    EXPECT_EQ(plan->frames[0].time, 999999);
    EXPECT_EQ(plan->totalTime, 1000000);
    const auto whole = WholeFrameSet(request);
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->size(), frames->size());
}

TEST_F(OutputCheck, SetsOfManyPartsHaveEachFrameOnce) {
    const auto frames = ParseFrames("1-500000,250000-999999,7,0.5-2x0.5,1-999999:6");
    ASSERT_TRUE(frames);
    EXPECT_EQ(frames->size(), 999999u + 2) << "and 0.5 and 1.5";
    EXPECT_EQ((*frames)[999999].Text(), "0.5");
    const auto fine = ParseFrames("1-13:6");
    ASSERT_TRUE(fine);
    EXPECT_EQ(FrameSetText(*fine), "1,7,13,4,10,2-3,5-6,8-9,11-12");
}

}  // namespace

}  // namespace umbrant::host
