// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Effects that look at other times than that of the frame: a painter that looks as many frames away as its angle has
// degrees, at its colour, its border, the layer and the texture.

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/host/image/picture_files.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

class CliOtherTimes : public CliSequence {
 protected:
    CliOtherTimes() {
        for (int frame = 1; frame <= 6; ++frame) {
            WriteLayer(folder_ / ("tex." + std::to_string(frame) + ".png"), 2, 2,
                       {255, 0, static_cast<A_u_char>(20 * frame), 0});
        }
        // The border grows by a pixel a frame from 1 at frame 1, the green of the colour by ten.
        WriteBytes(folder_ / "moving.json", R"({ "version": 2, "values": { }, "keyframes": {
            "paint/border": [ { "frame": 1, "value": 1 }, { "frame": 9, "value": 9 } ],
            "paint/color": [ { "frame": 1, "value": "#000a00" }, { "frame": 9, "value": "#005a00" } ] } })");
    }
    Outcome Look(double frames, std::vector<std::string> more, const std::string& input = "in.@.png",
                 const std::string& output = "out.##.png") const {
        for (const std::string& word : {std::string("--set"), "paint/angle=" + std::to_string(frames)})
            more.push_back(word);
        return RunInProcess(folder_, Arguments(input, output, more, "looking_painter"));
    }
    PF_Pixel Centre(const std::string& name) const {
        Picture picture = Read(folder_ / name);
        return Pixel8(picture.pixels, picture.pixels.Width() / 2, picture.pixels.Height() / 2);
    }
};

TEST_F(CliOtherTimes, TheLayerIsThatOfTheTime) {
    const struct {
        const char* name;
        double away;
        int frame;
        int shown;
    } rows[] = {
        {"the same", 0, 3, 3},
        {"a frame later", 1, 3, 4},
        {"two frames earlier", -2, 3, 1},
        {"within a frame, what has begun", 0.75, 3, 3},
        {"just before it, the frame before", -0.25, 3, 2},
        {"before the first, the first", -7, 3, 1},
        {"behind the last, the last", 40, 3, 6},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Look(row.away, {"--frames", std::to_string(row.frame)});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(Centre("out.03.png").red, 10 * row.shown);
    }
}

TEST_F(CliOtherTimes, FramesOutsideOfTheChunkAndTheSetAreSeen) {
    ASSERT_EQ(Look(2, {"--frames", "1-4", "--chunk", "2/4"}).code, 0);
    EXPECT_EQ(Centre("out.02.png").red, 40);
    EXPECT_FALSE(Exists("out.04.png"));
    ASSERT_EQ(Look(1, {"--frames", "1-3", "--input-offset", "2"}).code, 0);
    EXPECT_EQ(Centre("out.03.png").red, 60) << "the input's frame 3 + 2 + 1";
}

TEST_F(CliOtherTimes, AGapShowsTheFrameBeforeIt) {
    std::filesystem::remove(folder_ / "in.4.png");
    for (const char* missing : {"error", "hold", "skip"}) {
        ASSERT_EQ(Look(1, {"--frames", "3", "--missing", missing}).code, 0);
        EXPECT_EQ(Centre("out.03.png").red, 30) << missing;
    }
}

TEST_F(CliOtherTimes, TheTextureRunsAlong) {
    const Outcome outcome = Look(1, {"--frames", "2", "--texture", "tex.@.png", "--texture-at", "5,0",
                                     "--texture-offset", "1", "--set", "paint/border=3"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    Picture picture = Read(folder_ / "out.02.png");
    EXPECT_EQ(Pixel8(picture.pixels, 8, 3).green, 80) << "frame 2 + 1 + 1 of the texture";
}

TEST_F(CliOtherTimes, ValuesAreThoseOfTheTime) {
    const struct {
        const char* name;
        double away;
        int border;
        int green;
    } rows[] = {
        {"the same", 0, 3, 30},
        {"later", 2, 5, 50},
        {"between frames", 0.5, 4, 35},  // the border of 3.5 takes four pixels
        {"earlier", -1.5, 2, 15},
        {"before the first key", -30, 1, 10},
        {"behind the last key", 30, 9, 90},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Look(row.away, {"--frames", "3", "--preset", "moving.json"}, "still.png");
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        Picture picture = Read(folder_ / "out.03.png");
        EXPECT_EQ(picture.pixels.Width(), 5 + 2 * row.border);
        EXPECT_EQ(Pixel8(picture.pixels, 0, 0).green, row.green);
    }
    // So do those of a single picture, whose times are in seconds: 1/8 is frame 3 of 24 a second.
    ASSERT_EQ(Look(2, {"--time", "0.125", "--preset", "moving.json"}, "still.png", "single.png").code, 0);
    Picture single = Read(folder_ / "single.png");
    EXPECT_EQ(Pixel8(single.pixels, 0, 0).green, 50);
}

TEST_F(CliOtherTimes, RatesOfBroadcastingMissNoFrame) {
    // Whole frames away from whole frames, whatever the fraction of a second is that they take.
    for (const char* rate : {"23.976", "29.97", "12.5", "1000/7"}) {
        SCOPED_TRACE(rate);
        ASSERT_EQ(Look(1, {"--frames", "1-5", "--rate", rate, "--zero-frame", "2"}).code, 0);
        for (int frame = 1; frame <= 5; ++frame) {
            EXPECT_EQ(Centre("out.0" + std::to_string(frame) + ".png").red, 10 * (frame + 1));
        }
    }
}

TEST_F(CliOtherTimes, DepthAndSizeAreFitted) {
    WriteLayer(folder_ / "in.4.png", 9, 7, {255, 40, 0, 0});
    WriteFile(folder_ / "in.5.png", OIIO::ImageSpec(5, 3, 4, OIIO::TypeDesc::UINT16), {0.25f, 0, 0, 1});
    ASSERT_EQ(Look(1, {"--frames", "3-4", "--canvas", "frame"}).code, 0);
    EXPECT_EQ(Read(folder_ / "out.03.png").pixels.Width(), 9) << "as large as the layer that it looks at";
    EXPECT_EQ(Centre("out.03.png").red, 40);
    EXPECT_EQ(Read(folder_ / "out.04.png").bits, 8) << "in the depth of the frame";
    EXPECT_EQ(Centre("out.04.png").red, 64);
    const Outcome three = Look(1, {"--frames", "2-3"}, "in.@.png", "two.##.png");
    EXPECT_THAT(three.err, HasSubstr("umbrant: 2 frames of 9 x 7, --canvas 0,0,9,7\n")) << "frame 3 looks at frame 4";
}

TEST_F(CliOtherTimes, AnUnreadableFrameIsTheFramesFailure) {
    WriteBytes(folder_ / "in.4.png", "no picture at all");
    const Outcome outcome = Look(1, {"--frames", "3"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 3: the effect requests frame 4: cannot read 'in.4.png': "));
    EXPECT_FALSE(Exists("out.03.png"));
}

TEST_F(CliOtherTimes, FramesBetweenFramesSeeAndShowTheirOwnTime) {
    const Outcome outcome =
        Look(0, {"--frames", "3-4x0.5", "--preset", "moving.json", "--progress", "json"}, "in.@.png", "out.##.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr(R"("event":"frame","frame":3.5,)"));
    EXPECT_THAT(outcome.err, HasSubstr(R"("event":"frame","frame":4,)"));
    Picture picture = Read(folder_ / "out.03.5.png");
    EXPECT_EQ(Pixel8(picture.pixels, 0, 0).green, 35) << "the keyframes' value half a frame after frame 3";
    EXPECT_EQ(Centre("out.03.5.png").red, 30) << "the input's frame that has begun";
    // From there half a frame on is frame 4, whatever unit the times have.
    ASSERT_EQ(Look(0.5, {"--frames", "3-4x0.5"}).code, 0);
    EXPECT_EQ(Centre("out.03.5.png").red, 40);
}

}  // namespace

}  // namespace umbrant::host
