// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` over many frames: what is written, reported and answered, and what bad input ends with.

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/host/image/picture_files.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST_F(CliSequence, DrawsEveryFrameAndPrintsThePaths) {
    const Outcome outcome = Render();
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "out.01.png\nout.02.png\nout.03.png\nout.04.png\nout.05.png\nout.06.png\n");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3 (3 of 6): "));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: 6 drawn in "));
    for (int frame = 1; frame <= 6; ++frame) EXPECT_EQ(Red("out.0" + std::to_string(frame) + ".png"), 10 * frame);
    EXPECT_EQ(folder_.Entries(), 7 + 6) << "nothing else is left";
}

TEST_F(CliSequence, ChoosesFrames) {
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        const char* paths;
    } rows[] = {
        {"a step", {"--frames", "1-6x2"}, "out.01.png\nout.03.png\nout.05.png\n"},
        {"the rest", {"--frames", "1-6y2"}, "out.02.png\nout.04.png\nout.06.png\n"},
        {"coarse to fine", {"--frames", "1-4:2"}, "out.01.png\nout.03.png\nout.02.png\nout.04.png\n"},
        {"between frames", {"--frames", "2-3x0.5"}, "out.02.png\nout.02.5.png\nout.03.png\n"},
        {"single ones", {"--frames", "6,2"}, "out.06.png\nout.02.png\n"},
        {"an offset", {"--frames", "-1-0", "--input-offset", "2"}, "out.-1.png\nout.00.png\n"},
        {"a chunk", {"--chunk", "2/3"}, "out.03.png\nout.04.png\n"},
        {"the last of more chunks than frames", {"--chunk", "1/100"}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Render(row.arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.out, row.paths);
    }
    EXPECT_EQ(Red("out.-1.png"), 10) << "the input's first frame";
    EXPECT_THAT(Render({"--chunk", "1/100"}).err, HasSubstr("umbrant: there are no frames in this chunk\n"));
}

TEST_F(CliSequence, AStillPictureHasFramesWhenTheyAreAskedFor) {
    EXPECT_EQ(Render({"--frames", "1-2"}, "still.png").out, "out.01.png\nout.02.png\n");
    EXPECT_EQ(ReadBytes(folder_ / "out.01.png"), ReadBytes(folder_ / "out.02.png"));
    EXPECT_EQ(Render({"--frames", "7"}, "still.png", "one.png").out, "one.png\n");
}

TEST_F(CliSequence, ATextureSequenceRunsBesideTheLayers) {
    for (int frame = 4; frame <= 9; ++frame) {
        WriteLayer(folder_ / ("tex_" + std::to_string(frame) + ".png"), 5, 3,
                   {255, 0, static_cast<A_u_char>(frame), 0});
    }
    WriteLayer(folder_ / "clear.png", 5, 3, {0, 0, 0, 0});
    const Outcome outcome = Render({"--frames", "1-6", "--texture", "tex_%d.png", "--texture-offset", "3",
                                    "--texture-at", "4,0", "--set", "paint/border=4"},
                                   "in.@.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    Picture picture = Read(folder_ / "out.06.png");
    EXPECT_EQ(Pixel8(picture.pixels, 9, 4).green, 9) << "beside the layer the texture shows: its frame 6 + 3";
    EXPECT_EQ(Pixel8(picture.pixels, 8, 4).red, 60);
}

TEST_F(CliSequence, MissingFramesAreRefusedHeldOrLeftOut) {
    std::filesystem::remove(folder_ / "in.3.png");
    Outcome outcome = Render({"--frames", "1-6"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.err,
              "umbrant: cannot read 'in.3.png': there is no such file; --missing hold shows another frame instead, "
              "--missing skip leaves frame 3 out\n");
    EXPECT_FALSE(Exists("out.01.png")) << "nothing is drawn";

    outcome = Render({"--frames", "1-6", "--missing", "hold"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3 shows 'in.2.png'\n"));
    EXPECT_EQ(Red("out.03.png"), 20);

    std::filesystem::remove(folder_ / "out.03.png");
    outcome = Render({"--frames", "1-6", "--missing", "skip"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3 is left out: there is no 'in.3.png'\n"));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: 5 drawn, 1 left out in "));
    EXPECT_FALSE(Exists("out.03.png"));

    outcome = Render({"--frames", "1-6", "--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3: cannot read 'in.3.png': there is no such file\n"));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: 5 drawn, 1 failed in "));
    EXPECT_TRUE(Exists("out.06.png"));
}

TEST_F(CliSequence, WhatIsThereIsLeftAlone) {
    WriteBytes(folder_ / "out.02.png", "mine");
    Outcome outcome = Render({"--skip-existing"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(ReadBytes(folder_ / "out.02.png"), "mine");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 2 (2 of 6): 'out.02.png' already exists\n"));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: 5 drawn, 1 already there in "));
    EXPECT_THAT(outcome.out, Not(HasSubstr("out.02.png")));
    outcome = Render({"--skip-existing"});
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: 0 drawn, 6 already there\n"));
    ASSERT_EQ(Render().code, 0);
    EXPECT_EQ(Red("out.02.png"), 20) << "without it pictures are replaced";
}

TEST_F(CliSequence, AnUnreadableFrameInTheMiddle) {
    WriteBytes(folder_ / "in.3.png", "no picture at all");
    Outcome outcome = Render({"--threads", "1"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3: cannot read 'in.3.png': not an image that can be read"));
    EXPECT_THAT(outcome.err, HasSubstr(" frames were not reached"));
    EXPECT_FALSE(Exists("out.03.png"));

    outcome = Render({"--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3: cannot read 'in.3.png': not an image"));
    EXPECT_THAT(outcome.out, HasSubstr("out.06.png"));

    WriteBytes(folder_ / "in.1.png", "nor this");
    EXPECT_EQ(Render({"--keep-going"}).code, 1) << "also when it is the first";
    EXPECT_EQ(Render().code, 3);
    EXPECT_THAT(Render().err, StartsWith("umbrant: frame 1: cannot read 'in.1.png'"));
}

TEST_F(CliSequence, SizesAndDepthsMayChangeAndItIsSaid) {
    WriteLayer(folder_ / "in.3.png", 7, 2, {255, 30, 0, 0});
    WriteFile(folder_ / "in.5.png", OIIO::ImageSpec(5, 3, 4, OIIO::TypeDesc::UINT16), {0.5f, 0.25f, 0.125f, 1});
    const Outcome outcome = Render();
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3 is 7 x 2, but frame 2 is 5 x 3\n"));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 4 is 5 x 3, but frame 3 is 7 x 2\n"));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 5 has 16 bits per channel, but frame 4 has 8\n"));
    EXPECT_EQ(Read(folder_ / "out.03.png").pixels.Width(), 7);
    EXPECT_EQ(Read(folder_ / "out.05.png").bits, 16);
    EXPECT_EQ(Read(folder_ / "out.06.png").bits, 8);
}

const struct {
    const char* name;
    std::vector<std::string> arguments;
    const char* input;
    const char* output;
    int code;
    const char* sentence;
} kWrongSequences[] = {
    {"no field",
     {},
     "in.@.png",
     "out.png",
     2,
     "'out.png' has no field for the frame's number, and there are 6 frames; write it as 'out.####.png'"},
    {"two fields", {}, "in.@.png", "out.#.%d.png", 2, "has 2 fields for the frame's number"},
    {"no frames", {}, "none.####.png", "out.#.png", 3, "cannot read 'none.####.png': no file has such a name"},
    {"a field without frames", {}, "still.png", "out.####.png", 2, "choose the frames with --frames"},
    {"the input is the output",
     {},
     "in.@.png",
     "in.@.png",
     2,
     "'in.1.png' is both input and output; give the output another name"},
    {"one picture over itself", {}, "still.png", "./still.png", 2, "'./still.png' is both input and output"},
    {"the texture is the output",
     {"--texture", "still.png"},
     "in.1.png",
     "still.png",
     2,
     "'still.png' is both input and output"},
    {"wrong frames", {"--frames", "1-6z2"}, "in.@.png", "out.#.png", 2, "'1-6z2' is not a set of frames"},
    {"a wrong chunk", {"--chunk", "4/3"}, "in.@.png", "out.#.png", 2, "'4/3' is not a chunk"},
    {"a wrong rate", {"--rate", "fast"}, "in.@.png", "out.#.png", 2, "'fast' is not a frame rate"},
    {"a wrong policy", {"--missing", "guess"}, "in.@.png", "out.#.png", 2, "guess not in {error,hold,skip}"},
    {"no threads", {"--threads", "0"}, "in.@.png", "out.#.png", 2, "--threads"},
    {"no progress",
     {"--progress", "dots"},
     "in.@.png",
     "out.#.png",
     2,
     "'dots' is neither bar, lines, json nor a number of seconds from 0 to 86400"},
    {"a time", {"--time", "1"}, "in.@.png", "out.#.png", 2, "--time applies to a single image"},
    {"a folder that is not there", {}, "in.@.png", "none/out.#.png", 3, "there is no folder 'none'"},
    {"a compression that the format lacks",
     {"--compression", "zip"},
     "in.@.png",
     "out.#.png",
     2,
     "'zip' is not a compression of .png; use one of: default fast small"},
    {"a wrong value", {"--set", "paint/boarder=1"}, "in.@.png", "out.#.png", 2, "closest: 'paint/border'"},
};

TEST_F(CliSequence, WrongUsageIsToldBeforeAnythingIsDrawn) {
    for (const auto& row : kWrongSequences) {
        SCOPED_TRACE(row.name);
        const auto before = folder_.Entries();
        const Outcome outcome = Render(row.arguments, row.input, row.output);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(folder_.Entries(), before);
    }
}

TEST_F(CliSequence, AnAtSignIsNoFieldInAPicturesName) {
    EXPECT_EQ(Render({}, "still.png", "still@2x.png").out, "still@2x.png\n");
    EXPECT_EQ(Render({}, "still@2x.png", "again@2x.png").out, "again@2x.png\n");
}

TEST_F(CliSequence, AnEffectThatFailsEndsItInItsWords) {
    const Outcome outcome = Render({"--set", "flaw=error-with-message"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 1: "));
    EXPECT_THAT(outcome.err, HasSubstr("No paint 4"));
    EXPECT_FALSE(Exists("out.01.png"));
}

TEST_F(CliSequence, AFrameThatTheEffectCannotJudgeFailsAlone) {
    WriteBytes(folder_ / "p.json", R"({"version": 2, "keyframes": {"flaw": [
        {"frame": 1, "value": "pre-render-error"}, {"frame": 2, "value": "none"}, {"frame": 4, "value": "throw"},
        {"frame": 5, "value": "none"}]}})");
    const Outcome outcome = Render({"--preset", "p.json", "--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "out.02.png\nout.03.png\nout.05.png\nout.06.png\n");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 1: "));
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 4: "));
    EXPECT_THAT(outcome.err, HasSubstr("the painter is out of paint"));
}

TEST_F(CliSequence, ThreadsAreForEffectsThatAllowThem) {
    const std::string expected = Render({"--threads", "4", "--verbose"}).err;
    EXPECT_THAT(expected, HasSubstr("threads: 1 reading, 1 drawing, 1 writing; at most 4 frames in progress"));
    const Outcome threaded = RunInProcess(
        folder_, Arguments("in.@.png", "many.##.png", {"--threads", "4", "--verbose", "--set", "paint/border=3"},
                           "threaded_painter"));
    EXPECT_EQ(threaded.code, 0) << threaded.err;
    EXPECT_THAT(threaded.err, HasSubstr("threads: 2 reading, 4 drawing, 4 writing; at most 11 frames in progress"));
    ASSERT_EQ(Render({"--set", "paint/border=3"}).code, 0);
    for (int frame = 1; frame <= 6; ++frame) {
        const std::string number = "0" + std::to_string(frame) + ".png";
        EXPECT_EQ(ReadBytes(folder_ / ("many." + number)), ReadBytes(folder_ / ("out." + number)));
    }
}

}  // namespace

}  // namespace umbrant::host
