// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `--canvas tight`: what is visible, no pixel more, and the pixels of every other canvas.

#include <gmock/gmock.h>

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

class CliTightCanvas : public CliSequence {
 protected:
    /// A layer that is transparent but for one pixel.
    void WriteDot(const std::string& name, int x, int y, PF_Pixel pixel = {255, 10, 20, 30}) const {
        World world = Filled8(16, 12, {0, 90, 90, 90});
        if (x >= 0) Pixel8(world, x, y) = pixel;
        ASSERT_TRUE(WritePicture(folder_ / name, world, {{0, 0, 16, 12}, 16, 12}));
    }
    Outcome Tight(const std::string& input, const std::string& output, std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--canvas", "tight"});
        return Render(more, input, output);
    }
    PF_LRect Covered(const std::string& name) const {
        const Picture picture = Read(folder_ / name);
        return {picture.window.left + picture.frameOrigin.x, picture.window.top + picture.frameOrigin.y,
                picture.window.left + picture.frameOrigin.x + picture.pixels.Width(),
                picture.window.top + picture.frameOrigin.y + picture.pixels.Height()};
    }
};

void ExpectRect(const PF_LRect& rect, int left, int top, int right, int bottom) {
    EXPECT_EQ(rect.left, left);
    EXPECT_EQ(rect.top, top);
    EXPECT_EQ(rect.right, right);
    EXPECT_EQ(rect.bottom, bottom);
}

TEST_F(CliTightCanvas, TheSmallestRectangleWithTheSamePixels) {
    WriteDot("dot.png", 5, 7);
    const Outcome outcome = Tight("dot.png", "out.png", {"--set", "paint/border=0", "--json", "--no-recipe"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    ExpectRect(Covered("out.png"), 5, 7, 6, 8);
    EXPECT_EQ(ParseJson(outcome.out)["canvasOption"], "--canvas 5,7,6,8");
    ASSERT_EQ(Render({"--canvas", "5,7,6,8", "--no-recipe"}, "dot.png", "rectangle.png").code, 0);
    EXPECT_EQ(ReadBytes(folder_ / "out.png"), ReadBytes(folder_ / "rectangle.png"));
}

TEST_F(CliTightCanvas, WindowsOfAnExr) {
    WriteDot("dot.png", 3, 2);
    ASSERT_EQ(Tight("dot.png", "out.exr").code, 0);
    const RawFile file = ReadRaw(folder_ / "out.exr");
    EXPECT_EQ(file.layout.x, 3);
    EXPECT_EQ(file.layout.y, 2);
    EXPECT_EQ(file.layout.width, 1);
    EXPECT_EQ(file.layout.full_width, 16);
    EXPECT_EQ(file.layout.full_height, 12);
}

TEST_F(CliTightCanvas, WhatTheFileStoresCounts) {
    World world = FilledFloat(6, 4, {});
    PixelFloat(world, 2, 2) = {1.0f, 0.5f, 0.5f, 0.5f};
    PixelFloat(world, 4, 2) = {0.001f, 0.5f, 0.5f, 0.5f};
    ASSERT_TRUE(WritePicture(folder_ / "faint.exr", world, {{0, 0, 6, 4}, 6, 4}));
    ASSERT_EQ(Tight("faint.exr", "float.exr").code, 0);
    EXPECT_EQ(Read(folder_ / "float.exr").pixels.Width(), 3);
    ASSERT_EQ(Tight("faint.exr", "deep.png").code, 0);
    EXPECT_EQ(Read(folder_ / "deep.png").pixels.Width(), 3);
    ASSERT_EQ(Tight("faint.exr", "bytes.png", {"--output-depth", "8"}).code, 0);
    EXPECT_EQ(Read(folder_ / "bytes.png").pixels.Width(), 1) << "in bytes its alpha is 0";
}

TEST_F(CliTightCanvas, ASequenceHasOneForAllFramesWhateverIsDrawnOfIt) {
    WriteDot("dot.1.png", 2, 3);
    WriteDot("dot.2.png", -1, 0);
    WriteDot("dot.3.png", 9, 10);
    const Outcome outcome = Tight("dot.@.png", "out.@.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: drawing 3 frames once to find the tight canvas\n"));
    EXPECT_THAT(outcome.err, HasSubstr("3 frames of 8 x 8, --canvas 2,3,10,11\n"));
    for (const char* name : {"out.1.png", "out.2.png", "out.3.png"}) ExpectRect(Covered(name), 2, 3, 10, 11);
    ASSERT_EQ(Render({"--canvas", "2,3,10,11"}, "dot.@.png", "same.@.png").code, 0);
    EXPECT_EQ(ReadBytes(folder_ / "out.3.png"), ReadBytes(folder_ / "same.3.png"));
    ASSERT_EQ(Tight("dot.@.png", "part.@.png", {"--chunk", "3/3", "--quiet"}).code, 0);
    EXPECT_EQ(ReadBytes(folder_ / "part.3.png"), ReadBytes(folder_ / "same.3.png"));
    EXPECT_FALSE(Exists("part.1.png"));
    std::filesystem::remove(folder_ / "out.3.png");
    ASSERT_EQ(Tight("dot.@.png", "out.@.png", {"--skip-existing"}).code, 0);
    EXPECT_EQ(ReadBytes(folder_ / "out.3.png"), ReadBytes(folder_ / "same.3.png"));
}

TEST_F(CliTightCanvas, FramesThatFailAreReportedOnceAndTheOthersCount) {
    WriteDot("dot.1.png", 2, 3);
    WriteDot("dot.3.png", 9, 10);
    WriteBytes(folder_ / "dot.2.png", "no image");
    const Outcome outcome = Tight("dot.@.png", "out.@.png", {"--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    ExpectRect(Covered("out.1.png"), 2, 3, 10, 11);
    const std::size_t first = outcome.err.find("cannot read");
    EXPECT_NE(first, std::string::npos);
    EXPECT_EQ(Tight("dot.@.png", "out.@.png").code, 3);
}

TEST_F(CliTightCanvas, NothingVisibleIsOnePixelWithANote) {
    WriteDot("none.png", -1, 0);
    const char* note = "note: the result is entirely transparent; --canvas tight then covers one pixel";
    const Outcome single = Tight("none.png", "out.png");
    ASSERT_EQ(single.code, 0) << single.err;
    EXPECT_THAT(single.err, HasSubstr(note));
    ExpectRect(Covered("out.png"), 0, 0, 1, 1);
    const Outcome many = Tight("none.png", "out.@.png", {"--frames", "1-2"});
    ASSERT_EQ(many.code, 0) << many.err;
    EXPECT_THAT(many.err, HasSubstr(note));
    ExpectRect(Covered("out.2.png"), 0, 0, 1, 1);
    EXPECT_THAT(Tight("none.png", "out.png", {"--quiet"}).err, Not(HasSubstr(note)));
}

TEST_F(CliTightCanvas, OthersSayWhereItIsFor) {
    const Outcome job = RunInProcess(folder_, {"farm", "slurm", "in.@.png", "-o", "out.@.png", "--canvas", "tight"});
    EXPECT_EQ(job.code, 2);
    EXPECT_THAT(job.err, HasSubstr("--canvas tight is found by drawing all frames"));
    const Outcome preview = RunInProcess(folder_, {"preview", "still.png", "--no-open", "--canvas", "tight"});
    EXPECT_EQ(preview.code, 2);
    EXPECT_THAT(preview.err, HasSubstr("'tight' is for `umbrant render`"));
}

}  // namespace

}  // namespace umbrant::host
