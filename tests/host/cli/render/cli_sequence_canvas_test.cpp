// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// One canvas for the frames of a sequence: the size of what is written, how it is reported, and that the same frame on
// the same canvas has the same bytes.

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

class CliSequenceCanvas : public CliSequence {
 protected:
    CliSequenceCanvas() {
        // The border grows from 1 pixel in frame 1 to 6 in frame 6.
        WriteBytes(folder_ / "moving.json", R"({"version": 2, "keyframes": {"paint/border": [
            {"frame": 1, "value": 1}, {"frame": 6, "value": 6}]}})");
    }
    Outcome Move(std::vector<std::string> more, const std::string& output = "out.##.png",
                 const std::string& input = "in.@.png") const {
        more.insert(more.begin(), {"--preset", "moving.json"});
        return Render(more, input, output);
    }
    std::string Size(const std::string& name) const {
        const Picture picture = Read(folder_ / name);
        return std::to_string(picture.pixels.Width()) + "x" + std::to_string(picture.pixels.Height());
    }
    std::string Bytes(const std::string& name) const {
        EXPECT_TRUE(Exists(name)) << name;
        return ReadBytes(folder_ / name);
    }
};

TEST_F(CliSequenceCanvas, AMovingSequenceHasOneSize) {
    const Outcome outcome = Move({});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("umbrant: 6 frames of 17 x 15, --canvas -6,-6,11,9\n"));
    for (int frame = 1; frame <= 6; ++frame) EXPECT_EQ(Size("out.0" + std::to_string(frame) + ".png"), "17x15");
    Picture first = Read(folder_ / "out.01.png");
    EXPECT_EQ(Pixel8(first.pixels, 6 + 2, 6 + 1).red, 10) << "the layer is at the same place in all";
    EXPECT_EQ(Pixel8(first.pixels, 4, 7).alpha, 0) << "beyond its own border";
    EXPECT_EQ(Pixel8(first.pixels, 5, 7).alpha, 255) << "its own border";
    Picture last = Read(folder_ / "out.06.png");
    EXPECT_EQ(Pixel8(last.pixels, 6 + 2, 6 + 1).red, 60);
    EXPECT_EQ(Pixel8(last.pixels, 0, 0).alpha, 255);
    EXPECT_EQ(Move({"--quiet"}).err, "");
}

TEST_F(CliSequenceCanvas, TheSameFrameOnTheSameCanvasHasTheSameBytes) {
    ASSERT_EQ(Move({}).code, 0);
    const std::string whole = Bytes("out.02.png");
    const struct {
        const char* name;
        std::vector<std::string> arguments;
    } rows[] = {
        {"a part of the set", {"--chunk", "1/3"}},
        {"another number of threads", {"--threads", "1", "--frames", "6,2,1-5"}},
        {"one frame on the printed canvas", {"--frames", "2", "--canvas", "-6,-6,11,9"}},
        {"the same in one word", {"--frames", "2", "--canvas=-6,-6,11,9"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Move(row.arguments, "again.##.png");
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr("--canvas -6,-6,11,9\n"));
        EXPECT_EQ(Bytes("again.02.png"), whole);
        std::filesystem::remove(folder_ / "again.02.png");
    }
    // What is there already counts, too.
    std::filesystem::remove(folder_ / "out.02.png");
    ASSERT_EQ(Move({"--skip-existing"}).code, 0);
    EXPECT_EQ(Bytes("out.02.png"), whole);
    // A picture alone, whose recipe has the time instead of the frame.
    ASSERT_EQ(Move({"--frames", "2", "--canvas", "-6,-6,11,9", "--no-recipe"}, "plain.##.png").code, 0);
    const Outcome single =
        Render({"--preset", "moving.json", "--time", "0.08333333333", "--canvas", "-6,-6,11,9", "--no-recipe"},
               "in.2.png", "one.png");
    ASSERT_EQ(single.code, 0) << single.err;
    EXPECT_EQ(Bytes("one.png"), Bytes("plain.02.png"));
}

TEST_F(CliSequenceCanvas, EachFrameMayHaveItsOwn) {
    const Outcome outcome = Move({"--canvas", "frame", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(Size("out.01.png"), "7x5");
    EXPECT_EQ(Size("out.06.png"), "17x15");
    EXPECT_THAT(outcome.err, Not(HasSubstr("--canvas")));
    const Json report = ParseJson(outcome.out);
    EXPECT_EQ(report["canvas"], "frame");
    EXPECT_FALSE(report.contains("canvasOption"));
    EXPECT_FALSE(report.contains("width"));
    ASSERT_EQ(Render({"--set", "paint/border=2", "--canvas", "frame"}, "still.png", "one.png").code, 0);
    EXPECT_EQ(Size("one.png"), "9x7") << "one picture has its own in any case";
}

TEST_F(CliSequenceCanvas, SizesOfTheInputCountAndTheLayerAloneDoesNotGrow) {
    WriteLayer(folder_ / "in.3.png", 9, 2, {255, 30, 0, 0});
    const Outcome outcome = Render();
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("umbrant: 6 frames of 9 x 3, --canvas 0,0,9,3\n"));
    EXPECT_EQ(Size("out.01.png"), "9x3");
    EXPECT_EQ(Size("out.03.png"), "9x3");
    ASSERT_EQ(Render({"--canvas", "layer"}).code, 0);
    EXPECT_EQ(Size("out.01.png"), "5x3");
    EXPECT_EQ(Size("out.03.png"), "9x2");
}

TEST_F(CliSequenceCanvas, ReportsNameTheSizeAndTheOption) {
    const Json report = ParseJson(Move({"--json"}).out);
    EXPECT_EQ(report["canvas"], "grow");
    EXPECT_EQ(report["canvasOption"], "--canvas -6,-6,11,9");
    EXPECT_EQ(report["width"], 17);
    EXPECT_EQ(report["height"], 15);
    EXPECT_EQ(report["frames"][0]["picture"], Json({{"left", -6}, {"top", -6}, {"right", 11}, {"bottom", 9}}));
    const std::string lines = Move({"--progress", "json"}).err;
    EXPECT_EQ(ParseJson(lines.substr(0, lines.find('\n'))), Json({{"event", "start"},
                                                                  {"frames", 6},
                                                                  {"width", 17},
                                                                  {"height", 15},
                                                                  {"canvasOption", "--canvas -6,-6,11,9"}}));
    const Json single = ParseJson(Render({"--set", "paint/border=2", "--json"}, "still.png", "one.png").out);
    EXPECT_EQ(single["canvas"], "grow");
    EXPECT_EQ(single["canvasOption"], "--canvas -2,-2,7,5");
}

TEST_F(CliSequenceCanvas, ALowerResolutionHasItsCanvasInPixelsOfTheWholeLayer) {
    const Outcome outcome = Move({"--downsample", "2"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, StartsWith("umbrant: 6 frames of 9 x 8, --canvas -6,-6,12,10\n"));
    const std::string whole = Bytes("out.03.png");
    ASSERT_EQ(Move({"--downsample", "2", "--frames", "3", "--canvas", "-6,-6,12,10"}, "again.##.png").code, 0);
    EXPECT_EQ(Bytes("again.03.png"), whole);
    const Json single =
        ParseJson(Render({"--set", "paint/border=2", "--downsample", "2", "--json"}, "still.png", "one.png").out);
    EXPECT_EQ(single["canvasOption"], "--canvas -2,-2,8,6");
}

TEST_F(CliSequenceCanvas, ARectangleCutsAndExtends) {
    ASSERT_EQ(Render({"--canvas", "2,1,4,3"}, "still.png", "cut.png").code, 0);
    EXPECT_EQ(Size("cut.png"), "2x2");
    ASSERT_EQ(Render({"--canvas", "-10,-20,6,4"}, "still.png", "wide.exr").code, 0);
    const Picture wide = Read(folder_ / "wide.exr");
    EXPECT_EQ(wide.window.left, -10);
    EXPECT_EQ(wide.window.top, -20);
    EXPECT_EQ(wide.window.right, 6);
    EXPECT_EQ(wide.window.bottom, 4);
    EXPECT_EQ(wide.frameWidth, 5) << "the layer stays the frame";
    ASSERT_EQ(Render({"--canvas", "100,100,103,101"}, "still.png", "off.png").code, 0);
    Picture off = Read(folder_ / "off.png");
    EXPECT_EQ(Size("off.png"), "3x1");
    EXPECT_EQ(Pixel8(off.pixels, 1, 0).alpha, 0);
}

TEST_F(CliSequenceCanvas, WrongCanvasesAreRefused) {
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        const char* input;
        const char* output;
        const char* sentence;
    } rows[] = {
        {"a word",
         {"--canvas", "wide"},
         "in.@.png",
         "out.##.png",
         "--canvas: 'wide' is neither grow, frame, layer, tight nor a rectangle LEFT,TOP,RIGHT,BOTTOM of whole numbers "
         "from "
         "-1000000 to 1000000\n"},
        {"nothing inside",
         {"--canvas", "3,3,3,9"},
         "in.@.png",
         "out.##.png",
         "--canvas: '3,3,3,9' covers nothing; LEFT must be less than RIGHT and TOP less than BOTTOM\n"},
        {"too large",
         {"--canvas", "0,0,40000,9"},
         "in.@.png",
         "out.##.png",
         "umbrant: --canvas 0,0,40000,9 has 40000 x 9 pixels; no side may be longer than 30000; give --canvas a "
         "smaller rectangle, or draw at a lower resolution with --downsample\n"},
        {"too large for one", {"--canvas", "0,0,40000,9"}, "still.png", "one.png", "has 40000 x 9 pixels"},
        {"frames of several sizes in a clip",
         {"--canvas", "frame"},
         "in.@.png",
         "out.mov",
         "umbrant: --canvas frame gives each frame its own size, and all frames of a clip have one size; for 'out.mov' "
         "use grow, layer or LEFT,TOP,RIGHT,BOTTOM\n"},
    };
    const auto before = folder_.Entries();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Render(row.arguments, row.input, row.output);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(folder_.Entries(), before);
    }
}

TEST_F(CliSequenceCanvas, TheTasksOfAFarmShareIt) {
    const auto farm = [&](std::vector<std::string> more) {
        std::vector<std::string> all = {
            "farm",     "--tasks",    "3", "slurm", "in.@.png", "-o", "task.##.png", "--module", TestModule("painter"),
            "--preset", "moving.json"};
        all.insert(all.end(), more.begin(), more.end());
        return RunInProcess(folder_, all);
    };
    ASSERT_EQ(Move({}).code, 0);
    for (const std::vector<std::string>& canvas :
         {std::vector<std::string>{}, {"--canvas", "grow"}, {"--canvas=grow"}}) {
        const Outcome job = farm(canvas);
        ASSERT_EQ(job.code, 0) << job.err;
        EXPECT_EQ(job.err, "");
        EXPECT_THAT(job.out, HasSubstr(" --canvas=-6,-6,11,9 "));
        EXPECT_THAT(job.out, Not(HasSubstr("grow")));
    }
    // The other frames of the set may be gone, or of another size, by the time of a task.
    WriteBytes(folder_ / "job.sh", farm({}).out);
    WriteLayer(folder_ / "in.6.png", 50, 50, {255, 60, 100, 50});
    ProgramStart start;
    start.folder = "/";
    start.environment = {"SLURM_ARRAY_TASK_ID=1"};
    const ProgramRun task = RunProgram({"bash", (folder_ / "job.sh").string()}, start);
    EXPECT_EQ(task.code, 0) << task.errors;
    EXPECT_EQ(Bytes("task.01.png"), Bytes("out.01.png"));
    EXPECT_EQ(Bytes("task.02.png"), Bytes("out.02.png"));
    for (const char* canvas : {"frame", "layer", "-1,-1,2,2"}) {
        EXPECT_THAT(farm({"--canvas", canvas}).out, HasSubstr(std::string(" --canvas ") + canvas + " "));
    }
}

TEST_F(CliSequenceCanvas, AFarmSaysWhereTheCanvasIsNotKnownYet) {
    Outcome job = RunInProcess(folder_, {"farm", "slurm", "late.#.png", "-o", "out.##.png", "--frames", "1-6"});
    EXPECT_EQ(job.code, 0);
    EXPECT_EQ(
        job.err,
        "umbrant: the canvas of the whole set is not known here: none of the input's frames can be read yet; each task "
        "determines its own from the frames that exist then; --canvas LEFT,TOP,RIGHT,BOTTOM fixes it\n");
    EXPECT_THAT(job.out, Not(HasSubstr("--canvas")));
    job = RunInProcess(folder_, {"farm", "slurm", "in.@.png", "-o", "out.##.png", "--module", "none.so"});
    EXPECT_EQ(job.code, 0);
    EXPECT_THAT(job.err, HasSubstr("the canvas of the whole set is not known here: "));
    EXPECT_THAT(job.err, HasSubstr("none.so"));
    job = RunInProcess(folder_, {"farm", "slurm", "in.@.png", "-o", "out.##.png", "--preset", "none.json"});
    EXPECT_EQ(job.code, 3) << "what every task would be refused";
    EXPECT_THAT(job.err, HasSubstr("cannot read the preset 'none.json': there is no such file"));
    EXPECT_EQ(job.out, "");
}

TEST_F(CliSequenceCanvas, TheOutputsFolderIsMadeOnDemand) {
    const auto before = folder_.Entries();
    Outcome outcome = Render({}, "in.@.png", "new/sub/out.##.png");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.err,
              "umbrant: cannot write 'new/sub/out.##.png': there is no folder 'new/sub'; --mkdir creates it\n");
    outcome = Render({}, "still.png", "new/one.png");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.err, "umbrant: cannot write 'new/one.png': there is no folder 'new'; --mkdir creates it\n");

    outcome = Render({"--mkdir", "--set", "paint/border=nonsense"}, "still.png", "new/sub/one.png");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(folder_.Entries(), before) << "a run that writes nothing leaves no folder";
    outcome = Render({"--mkdir"}, "in.@.png", "new/sub/out.##.png");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(Exists("new/sub/out.06.png"));
    outcome = Render({"--mkdir"}, "still.png", "other//one.png");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(Exists("other/one.png"));
    outcome = Render({"--mkdir"}, "still.png", "still.png/sub/one.png");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("cannot write 'still.png/sub/one.png': "));

    outcome = RunInProcess(
        folder_, {"farm", "slurm", "in.@.png", "-o", "farm/out.##.png", "--module", TestModule("painter"), "--mkdir"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr(" --mkdir "));
    EXPECT_FALSE(Exists("farm")) << "the tasks make it";
}

}  // namespace

}  // namespace umbrant::host
