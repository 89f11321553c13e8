// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant sheet` and `umbrant presets -o`: each cell shows its values, and what is refused.

#include <gmock/gmock.h>

#include "tests/host/cli/render/sequence_fixture.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

class CliSheet : public CliSequence {
 protected:
    Outcome Draw(const std::vector<std::string>& more, const std::string& input = "still.png",
                 const std::string& output = "sheet.png") const {
        std::vector<std::string> all = {"sheet", input, "-o", output, "--module", TestModule("painter")};
        all.insert(all.end(), more.begin(), more.end());
        return RunInProcess(folder_, all);
    }

    /// How many cells of this size, filled with one colour each, the sheet has of each red.
    int CellsOf(const std::string& name, int width, int height, PF_Pixel color) const {
        Picture sheet = Read(folder_ / name);
        int count = 0;
        for (int y = 0; y + height <= sheet.pixels.Height(); ++y) {
            for (int x = 0; x + width <= sheet.pixels.Width(); ++x) {
                if (IsFilled(sheet.pixels, x, y, width, height, color)) ++count;
            }
        }
        return count;
    }

 private:
    static bool IsFilled(World& world, int left, int top, int width, int height, PF_Pixel color) {
        for (int y = top; y < top + height; ++y) {
            for (int x = left; x < left + width; ++x) {
                const PF_Pixel& pixel = Pixel8(world, x, y);
                if (pixel.red != color.red || pixel.green != color.green || pixel.blue != color.blue) return false;
            }
        }
        return true;
    }
};

TEST_F(CliSheet, EachCombinationHasItsCell) {
    // The layer is 5 x 3; a border of 2 makes 9 x 7, which is then the size of all cells.
    const Outcome outcome = Draw({"--vary", "paint/border=0,2", "--background", "#010203", "--canvas", "grow"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "sheet.png\n");
    Picture sheet = Read(folder_ / "sheet.png");
    EXPECT_EQ(Pixel8(sheet.pixels, 2, 2).alpha, 255);
    // The layer itself, in both; around the first the background.
    EXPECT_EQ(CellsOf("sheet.png", 5, 3, {255, 200, 100, 50}), 2);
    EXPECT_EQ(CellsOf("sheet.png", 9, 2, {255, 1, 2, 3}), 2);
}

TEST_F(CliSheet, FramesOfASequence) {
    const Outcome outcome = Draw({"--frames", "1-5x2"}, "in.@.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    for (const int red : {10, 30, 50}) {
        EXPECT_EQ(CellsOf("sheet.png", 5, 3, {255, static_cast<A_u_char>(red), 100, 50}), 1) << red;
    }
    EXPECT_EQ(CellsOf("sheet.png", 5, 3, {255, 20, 100, 50}), 0);
    std::filesystem::remove(folder_ / "in.3.png");
    EXPECT_EQ(Draw({"--frames", "1-5x2"}, "in.@.png").code, 3);
    const Outcome skipping = Draw({"--frames", "1-5x2", "--missing", "skip"}, "in.@.png");
    ASSERT_EQ(skipping.code, 0) << skipping.err;
    EXPECT_EQ(CellsOf("sheet.png", 5, 3, {255, 50, 100, 50}), 1) << "frames after the missing one keep their place";
}

TEST_F(CliSheet, FramesAreColumnsOfWhatVaries) {
    WriteBytes(folder_ / "two.json", R"({"version": 1, "values": {"paint/border": 2}})");
    const Outcome outcome =
        Draw({"--frames", "1-3", "--vary", "preset=./two.json,two.json", "--canvas", "layer"}, "in.@.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    for (const int red : {10, 20, 30}) {
        EXPECT_EQ(CellsOf("sheet.png", 5, 3, {255, static_cast<A_u_char>(red), 100, 50}), 2) << red;
    }
}

TEST_F(CliSheet, CellsAreReducedAndNeverEnlarged) {
    WriteLayer(folder_ / "large.png", 200, 100, {255, 40, 50, 60});
    ASSERT_EQ(Draw({"--vary", "paint/border=0", "--cell", "50", "--canvas", "layer"}, "large.png").code, 0);
    EXPECT_EQ(CellsOf("sheet.png", 50, 25, {255, 40, 50, 60}), 1);
    ASSERT_EQ(Draw({"--cell", "4000", "--canvas", "layer"}, "large.png").code, 0);
    EXPECT_EQ(CellsOf("sheet.png", 200, 100, {255, 40, 50, 60}), 1);
}

TEST_F(CliSheet, OneCanvasForAll) {
    World world = Filled8(40, 30, {0, 0, 0, 0});
    for (int x = 10; x < 14; ++x) Pixel8(world, x, 8) = {255, 90, 91, 92};
    ASSERT_TRUE(WritePicture(folder_ / "dash.png", world, {{0, 0, 40, 30}, 40, 30}));
    ASSERT_EQ(Draw({"--canvas", "tight"}, "dash.png").code, 0);
    EXPECT_EQ(CellsOf("sheet.png", 4, 1, {255, 90, 91, 92}), 1);
    EXPECT_EQ(CellsOf("sheet.png", 4, 1, {255, 0xA8, 0xA8, 0xA8}), 0) << "nothing around it";
    ASSERT_EQ(Draw({}, "dash.png").code, 0);
    EXPECT_EQ(CellsOf("sheet.png", 6, 1, {255, 0xA8, 0xA8, 0xA8}), 2) << "by default a pixel more on each side";
}

TEST_F(CliSheet, WrongOnesAreRefused) {
    const struct {
        std::vector<std::string> arguments;
        int code;
        const char* message;
    } rows[] = {
        {{"--vary", "paint/border"}, 2, "'--vary paint/border' names no values"},
        {{"--vary", "paint/boarder=1,2"}, 2, "paint/border"},
        {{"--vary", "paint/border=1,wide"}, 2, "wide"},
        {{"--vary", "preset=nowhere"}, 3, "there is no preset 'nowhere'"},
        {{"--vary", "paint/border=1,2", "--vary", "paint/border=3"}, 2, "'paint/border' is varied twice"},
        {{"--canvas", "frame"}, 2, "all images of a sheet have one size"},
        {{"--frames", "1-401"}, 2, "the sheet would have 401 images, and it can have 400"},
        {{"--background", "tael"}, 2, "'tael' is neither checker, a colour nor a file"},
        {{"--background", "sheet.png"}, 2, "sheet.png"},
        {{"--cell", "8"}, 2, "--cell"},
    };
    WriteLayer(folder_ / "sheet.png", 2, 2, {255, 1, 1, 1});
    const std::string before = ReadBytes(folder_ / "sheet.png");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message);
        const Outcome outcome = Draw(row.arguments);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(outcome.err, HasSubstr(row.message));
        EXPECT_EQ(ReadBytes(folder_ / "sheet.png"), before) << "nothing was written";
    }
    EXPECT_EQ(Draw({}, "still.png", "still.png").code, 2);
    EXPECT_EQ(Draw({}, "none.png").code, 3);
    EXPECT_EQ(Draw({}, "still.png", "sheet.txt").code, 3);
    const Outcome stream = Draw({}, "still.png", "-");
    EXPECT_EQ(stream.code, 2);
    EXPECT_THAT(stream.err, HasSubstr("a sheet is written to a file"));
}

TEST_F(CliSheet, PresetsOfYourOwnAreAmongThem) {
    const Outcome outcome = RunInProcess(folder_, {"presets", "-o", "presets.png", "--cell", "64"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "presets.png\n");
    const Picture few = Read(folder_ / "presets.png");
    EXPECT_GT(few.pixels.Width(), 4 * 64);
    const Outcome both = RunInProcess(folder_, {"presets", "-o", "presets.png", "--json"});
    EXPECT_EQ(both.code, 2);
    EXPECT_EQ(RunInProcess(folder_, {"presets", "still.png"}).code, 2) << "a layer without a picture to draw";
}

}  // namespace

}  // namespace umbrant::host
