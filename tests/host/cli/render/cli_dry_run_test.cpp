// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render --dry-run`: what it counts and measures, and that it writes nothing.

#include <set>

#include "host/cli/render/outcome/frame_cost.h"
#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class CliDryRun : public CliSequence {
 protected:
    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }
    Json Report(std::vector<std::string> more, const std::string& input = "in.@.png",
                const std::string& output = "out.##.png") const {
        more.insert(more.end(), {"--dry-run", "--json"});
        const Outcome outcome = Render(more, input, output);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return ParseJsonOrDiscard(outcome.out);
    }
    static std::vector<int> Measured(const Json& report) {
        std::vector<int> frames;
        for (const Json& frame : report["measured"]) frames.push_back(frame["frame"]);
        return frames;
    }
};

TEST_F(CliDryRun, NothingIsWritten) {
    WriteBytes(folder_ / ".umbrant-1-2-a.part", "x");
    const std::set<std::string> before = Names();
    for (const char* input : {"in.@.png", "still.png"}) {
        const Outcome outcome =
            Render({"--dry-run", "--mkdir"}, input, input[0] == 'i' ? "new/out.##.png" : "new/out.png");
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.out, StartsWith("nothing is written: this is a dry run\n"));
        EXPECT_EQ(Names(), before);
    }
}

TEST_F(CliDryRun, ASequenceIsMeasuredByThreeOfItsFrames) {
    const Json report = Report({"--set", "paint/border=1"});
    EXPECT_EQ(report["dryRun"], true);
    EXPECT_EQ(report["frames"], 6);
    EXPECT_EQ(report["notDrawn"], 0);
    EXPECT_EQ(report["width"], 7);
    EXPECT_EQ(report["height"], 5);
    EXPECT_EQ(report["canvasOption"], "--canvas -1,-1,6,4");
    EXPECT_THAT(Measured(report), ElementsAre(1, 4, 6));
    EXPECT_LE(report["seconds"]["least"], report["seconds"]["most"]);
    EXPECT_GT(report["memory"]["frames"], 7 * 5 * 4);

    // The files are as large as was said of those that were measured.
    ASSERT_EQ(Render({"--set", "paint/border=1"}).code, 0);
    for (const Json& frame : report["measured"]) {
        const std::string name = "out.0" + std::to_string(frame["frame"].get<int>()) + ".png";
        EXPECT_EQ(frame["bytes"], std::filesystem::file_size(folder_ / name)) << name;
    }
}

TEST_F(CliDryRun, FramesThatNeedNotBeDrawnDoNotCount) {
    WriteBytes(folder_ / "out.01.png", "there");
    Json report = Report({"--skip-existing", "--frames", "1-3"});
    EXPECT_EQ(report["frames"], 2);
    EXPECT_EQ(report["notDrawn"], 1);
    EXPECT_THAT(Measured(report), ElementsAre(2, 3));
    EXPECT_EQ(ReadBytes(folder_ / "out.01.png"), "there");

    report = Report({"--skip-existing", "--frames", "1"});
    EXPECT_EQ(report["frames"], 0);
    EXPECT_TRUE(report["measured"].empty());
    const Outcome outcome = Render({"--dry-run", "--skip-existing", "--frames", "1"});
    EXPECT_THAT(outcome.out, HasSubstr("there is no frame to draw; 1 need not or cannot be drawn\n"));
}

TEST_F(CliDryRun, ASingleImage) {
    const Outcome outcome = Render({"--dry-run"}, "still.png", "out.exr");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("1 image of 5 x 3\n"));
    EXPECT_THAT(outcome.out, HasSubstr("measured by drawing it\n"));
    const Json report = Report({}, "still.png", "out.exr");
    ASSERT_EQ(Render({}, "still.png", "out.exr").code, 0);
    EXPECT_EQ(report["fileBytes"], std::filesystem::file_size(folder_ / "out.exr"));
}

TEST_F(CliDryRun, FramesThatFailAreReported) {
    WriteBytes(folder_ / "in.4.png", "no picture");
    const Outcome outcome = Render({"--dry-run"});
    EXPECT_EQ(outcome.code, 0) << "the others can be drawn";
    EXPECT_THAT(outcome.out, HasSubstr("1 frame failed:\n  frame 4: cannot read 'in.4.png'"));
    EXPECT_EQ(Report({})["failures"][0]["frames"], "4");
    const Outcome all = Render({"--dry-run", "--set", "flaw=throw"});
    EXPECT_EQ(all.code, 1);
    EXPECT_THAT(all.err, HasSubstr("umbrant: 3 frames failed:\n  frames 1, 6: "));
    EXPECT_EQ(all.out, "");
    EXPECT_EQ(Render({"--dry-run"}, "none.png", "out.png").code, 3);
    WriteBytes(folder_ / "still.png", "no picture");
    const Outcome unreadable = Render({"--dry-run", "--keep-going", "--frames", "1-3"}, "still.png");
    EXPECT_EQ(unreadable.code, 3);
    EXPECT_THAT(unreadable.err, StartsWith("umbrant: frame 1: cannot read 'still.png': not an image"));
}

TEST(RenderCost, TimesAreAtLeastTheSlowestStepAndAtMostAllOfThem) {
    RenderCost cost;
    cost.frames = 10;
    cost.startSeconds = 1;
    cost.shape = {1, 2, 2, 6};
    cost.measured = {{1, 8, 8, 100, 300, 500, 1000}, {2, 16, 4, 300, 500, 700, 3000}};
    EXPECT_EQ(cost.Mean().bytes, 2000u);
    EXPECT_EQ(cost.Mean().width, 16);
    EXPECT_EQ(cost.FileBytes(), 20000u);
    EXPECT_DOUBLE_EQ(cost.LeastSeconds(), 1 + 10 * 0.4) << "one frame is drawn at a time, two are written";
    EXPECT_DOUBLE_EQ(cost.MostSeconds(), 1 + 10 * 1.2);
    cost.freeBytes = 100;
    EXPECT_THAT(CostText(cost), HasSubstr("which is NOT enough"));
    cost.freeBytes = 1 << 20;
    EXPECT_THAT(CostText(cost), Not(HasSubstr("NOT enough")));
    EXPECT_EQ(BytesText(812), "812 B");
    EXPECT_EQ(BytesText(4'404'019), "4.2 MiB");
}

}  // namespace

}  // namespace umbrant::host
