// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` with a module that fills its output with a colour and lays the layer over it: options, pictures,
// failures of files, of modules and of effects.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"
#include "tests/host/cli/running_program.h"
#include "tests/host/image/picture_files.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;

class CliRender : public testing::Test {
 protected:
    CliRender() { WriteLayer(folder_ / "in.png", 5, 3, {255, 200, 100, 50}); }

    /// Renders with the painter; `arguments` come after the input and the output.
    Outcome Paint(const std::string& output, std::vector<std::string> arguments = {},
                  const std::string& input = "in.png") {
        std::vector<std::string> all = {"render", input, "-o", output, "--module", TestModule("painter")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return RunInProcess(folder_, all);
    }

    static void ExpectPixel(Picture& picture, int x, int y, PF_Pixel expected) {
        const PF_Pixel& pixel = Pixel8(picture.pixels, x, y);
        EXPECT_EQ(pixel.alpha, expected.alpha) << x << "," << y;
        EXPECT_EQ(pixel.red, expected.red) << x << "," << y;
        EXPECT_EQ(pixel.green, expected.green) << x << "," << y;
        EXPECT_EQ(pixel.blue, expected.blue) << x << "," << y;
    }

    const Folder folder_;
};

TEST_F(CliRender, PrintsThePathAndNothingElse) {
    const Outcome outcome = Paint("out.png");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "out.png\n");
    EXPECT_EQ(outcome.err, "");
    Picture picture = Read(folder_ / "out.png");
    EXPECT_EQ(picture.pixels.Width(), 5);
    ExpectPixel(picture, 4, 2, {255, 200, 100, 50});
}

TEST_F(CliRender, GrowsUnlessTheLayersFrameIsAskedFor) {
    ASSERT_EQ(Paint("grown.png", {"--set", "paint/border=2", "--set", "paint/color=#0a141e"}).code, 0);
    Picture grown = Read(folder_ / "grown.png");
    EXPECT_EQ(grown.pixels.Width(), 9);
    EXPECT_EQ(grown.pixels.Height(), 7);
    ExpectPixel(grown, 0, 0, {255, 10, 20, 30});
    ExpectPixel(grown, 2, 2, {255, 200, 100, 50});
    ExpectPixel(grown, 6, 4, {255, 200, 100, 50});
    ExpectPixel(grown, 7, 5, {255, 10, 20, 30});

    ASSERT_EQ(Paint("framed.png", {"--set", "paint/border=2", "--canvas", "layer"}).code, 0);
    Picture framed = Read(folder_ / "framed.png");
    EXPECT_EQ(framed.pixels.Width(), 5);
    EXPECT_EQ(framed.pixels.Height(), 3);
    ExpectPixel(framed, 0, 0, {255, 200, 100, 50});
}

TEST_F(CliRender, AGrownExrKeepsItsFrame) {
    ASSERT_EQ(Paint("out.exr", {"--set", "paint/border=2"}).code, 0);
    const Picture picture = Read(folder_ / "out.exr");
    EXPECT_EQ(picture.frameWidth, 5);
    EXPECT_EQ(picture.frameHeight, 3);
    EXPECT_EQ(picture.window.left, -2);
    EXPECT_EQ(picture.window.top, -2);
    EXPECT_EQ(picture.window.right, 7);
    EXPECT_EQ(picture.window.bottom, 5);
}

TEST_F(CliRender, DrawsAnExrsFrameNotItsData) {
    OIIO::ImageSpec header(3, 2, 4, OIIO::TypeDesc::FLOAT);
    header.x = 6;
    header.y = -1;
    header.full_width = 8;
    header.full_height = 5;
    WriteFile(folder_ / "layer.exr", header, {0.5f, 0.25f, 2, 1}, false);
    ASSERT_EQ(Paint("out.exr", {}, "layer.exr").code, 0);
    Picture picture = Read(folder_ / "out.exr");
    EXPECT_EQ(picture.pixels.Width(), 8);
    EXPECT_EQ(picture.pixels.Height(), 5);
    EXPECT_EQ(PixelFloat(picture.pixels, 6, 0).blue, 2.0f);
    EXPECT_EQ(PixelFloat(picture.pixels, 7, 0).alpha, 1.0f);
    EXPECT_EQ(PixelFloat(picture.pixels, 5, 0).alpha, 0.0f);
    EXPECT_EQ(PixelFloat(picture.pixels, 6, 1).alpha, 0.0f);
}

TEST_F(CliRender, DepthFollowsTheFileUnlessItIsGiven) {
    WriteFile(folder_ / "deep.png", OIIO::ImageSpec(2, 2, 4, OIIO::TypeDesc::UINT16), {0.5f, 0.25f, 0.125f, 1});
    const struct {
        const char* name;
        const char* input;
        std::vector<std::string> arguments;
        int bits;
    } cases[] = {
        {"8 bits stay", "in.png", {}, 8},
        {"8 bits drawn in float", "in.png", {"--depth", "32"}, 32},
        {"16 bits are drawn in float", "deep.png", {}, 32},
        {"16 bits drawn in 8", "deep.png", {"--depth", "8"}, 8},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(Paint("out.tif", row.arguments, row.input).code, 0);
        EXPECT_EQ(Read(folder_ / "out.tif").bits, row.bits);
    }
}

TEST_F(CliRender, DownsamplesLayerTextureAndBorder) {
    WriteLayer(folder_ / "texture.png", 12, 2, {255, 9, 8, 7});
    ASSERT_EQ(Paint("out.png", {"--downsample", "2", "--set", "paint/border=4", "--texture", "texture.png"}).code, 0);
    Picture picture = Read(folder_ / "out.png");
    EXPECT_EQ(picture.pixels.Width(), 3 + 2 * 2) << "5 wide is 3 at half resolution";
    EXPECT_EQ(picture.pixels.Height(), 2 + 2 * 2);
    ExpectPixel(picture, 2, 2, {255, 200, 100, 50});
    ExpectPixel(picture, 5, 2, {255, 9, 8, 7});
    ExpectPixel(picture, 5, 3, {255, 10, 20, 30});
}

TEST_F(CliRender, TheTextureLiesAtTheLayersOrigin) {
    WriteLayer(folder_ / "texture.png", 7, 4, {255, 9, 8, 7});
    ASSERT_EQ(Paint("out.png", {"--set", "paint/border=3", "--texture", "texture.png"}).code, 0);
    Picture picture = Read(folder_ / "out.png");
    ExpectPixel(picture, 2, 2, {255, 10, 20, 30});
    ExpectPixel(picture, 3, 3, {255, 200, 100, 50});
    ExpectPixel(picture, 3 + 6, 3 + 3, {255, 9, 8, 7});
    ExpectPixel(picture, 3 + 7, 3, {255, 10, 20, 30});
}

TEST_F(CliRender, VerboseTellsCommandsRectanglesAndSuites) {
    const Outcome outcome = Paint("out.png", {"--verbose", "--set", "paint/border=2", "--time", "1.5"});
    EXPECT_EQ(outcome.code, 0);
    for (const char* text : {"PF_Cmd_GLOBAL_SETUP", "PF_Cmd_PARAMS_SETUP", "PF_Cmd_SMART_PRE_RENDER",
                             "PF_Cmd_SMART_RENDER", " ms", "result rectangle:  (-2, -2) to (7, 5), 9 x 7"}) {
        EXPECT_THAT(outcome.err, HasSubstr(text));
    }
    EXPECT_EQ(outcome.out, "out.png\n");
}

TEST_F(CliRender, WhatTheEffectSaysIsShownAlsoWhenItSucceeds) {
    const Outcome outcome = Paint("out.png", {"--set", "flaw=long-message"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr("the effect says: " + std::string(100, 'm')));
}

TEST_F(CliRender, TheModuleMayComeFromTheEnvironment) {
    const Outcome outcome =
        RunUmbrant(folder_, {"render", "in.png", "-o", "out.png"}, {{"UMBRANT_MODULE=" + TestModule("painter")}, ""});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(folder_ / "out.png"));
}

struct FailureCase {
    const char* name;
    std::vector<std::string> arguments;
    int code;
    const char* sentence;
};

const FailureCase kFailures[] = {
    {"a missing input",
     {"render", "none.png", "-o", "out.png", "--module", TestModule("painter")},
     3,
     "cannot read 'none.png': there is no such file"},
    {"an empty input",
     {"render", "empty.png", "-o", "out.png", "--module", TestModule("painter")},
     3,
     "cannot read 'empty.png': the file is empty"},
    {"an input that is no picture",
     {"render", "text.png", "-o", "out.png", "--module", TestModule("painter")},
     3,
     "cannot read 'text.png': not an image that can be read"},
    {"a truncated input",
     {"render", "cut.png", "-o", "out.png", "--module", TestModule("painter")},
     3,
     "cannot read 'cut.png'"},
    {"a folder as input",
     {"render", "folder.png", "-o", "out.png", "--module", TestModule("painter")},
     3,
     "cannot read 'folder.png': a folder, not an image"},
    {"a missing texture",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--texture", "none.png"},
     3,
     "cannot read 'none.png': there is no such file"},
    {"an output nobody can write",
     {"render", "in.png", "-o", "out.gif", "--module", TestModule("painter")},
     3,
     "'.gif' is not a format that can be written; use .png, .tif, .tiff, .exr, .jpg or .jpeg"},
    {"an output in no folder",
     {"render", "in.png", "-o", "none/out.png", "--module", TestModule("painter")},
     3,
     "cannot write 'none/out.png': there is no folder 'none'"},
    {"an output that is a folder",
     {"render", "in.png", "-o", "folder.png", "--module", TestModule("painter")},
     3,
     "cannot write 'folder.png': a folder has that name"},
    {"an output where nothing can be made",
     {"render", "in.png", "-o", "/proc/out.png", "--module", TestModule("painter")},
     3,
     "cannot write '/proc/out.png'"},
    {"a module that is not there",
     {"render", "in.png", "-o", "out.png", "--module", "none.so"},
     4,
     "cannot load the module 'none.so'"},
    {"a module that is none", {"render", "in.png", "-o", "out.png", "--module", "in.png"}, 4, "not a loadable module"},
    {"a module without the export",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("no_export")},
     4,
     "'PluginDataEntryFunction' is not exported"},
    {"a module that throws when scanned",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("Throws")},
     4,
     "its registration threw an exception"},
    {"an effect that throws when set up",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("SetupThrows")},
     1,
     "no set-up today"},
    {"an effect that fails with words",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "flaw=error-with-message"},
     1,
     "No paint 4 (error 13, A_Err_MISSING_SUITE)"},
    {"an effect that fails before",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "flaw=pre-render-error"},
     1,
     "error 4, PF_Err_OUT_OF_MEMORY"},
    {"an effect that throws",
     {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set", "flaw=throw"},
     1,
     "the painter is out of paint"},
};

TEST_F(CliRender, FailuresHaveTheirCodesAndLeaveNothing) {
    WriteBytes(folder_ / "text.png", "not a picture\n");
    WriteBytes(folder_ / "empty.png", "");
    WriteBytes(folder_ / "cut.png", ReadBytes(folder_ / "in.png").substr(0, 45));
    std::filesystem::create_directory(folder_ / "folder.png");
    const auto entries = folder_.Entries();
    for (const FailureCase& row : kFailures) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = RunInProcess(folder_, row.arguments);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr("umbrant: "));
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_THAT(outcome.err, Not(HasSubstr("OpenGL"))) << "the painter has no rows that speak of it";
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(folder_.Entries(), entries) << "nothing is left behind";
    }
}

TEST_F(CliRender, AFailedRunLeavesTheOlderPicture) {
    WriteBytes(folder_ / "out.png", "older");
    EXPECT_EQ(Paint("out.png", {"--set", "flaw=throw"}).code, 1);
    EXPECT_EQ(ReadBytes(folder_ / "out.png"), "older");
}

TEST_F(CliRender, ALongFrameTellsItsStageAndTheTime) {
    const std::vector<std::string> large = {"--set", "paint/border=900", "--depth", "32", "--progress"};
    const auto with = [&](const char* seconds) {
        std::vector<std::string> arguments = large;
        arguments.emplace_back(seconds);
        return Paint("out.png", arguments);
    };
    const Outcome late = with("0.02");
    EXPECT_EQ(late.code, 0) << late.err;
    EXPECT_THAT(late.err, testing::ContainsRegex("umbrant: [0-9]+\\.[0-9] s, writing the image\n"));
    EXPECT_EQ(late.out, "out.png\n") << "results alone on standard output";
    EXPECT_EQ(with("0").err, "");
    EXPECT_EQ(with("86400").err, "") << "a short frame says nothing";
    const Outcome wrong = with("often");
    EXPECT_EQ(wrong.code, 2);
    EXPECT_THAT(
        wrong.err,
        testing::HasSubstr("--progress: 'often' is neither bar, lines, json nor a number of seconds from 0 to 86400"));
}

TEST_F(CliRender, AnInterruptionLeavesNothing) {
    // A picture that takes a while to write, interrupted as soon as its temporary file is there.
    RunningProgram program(folder_, {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--set",
                                     "paint/border=1500", "--depth", "32"});
    EXPECT_TRUE(WaitUntil([&] { return !HiddenFiles(folder_.Path()).empty(); }));
    program.Send(SIGINT);
    EXPECT_EQ(program.Wait(), "exit 130");
    EXPECT_EQ(folder_.Entries(), 1) << "the input alone";
}

}  // namespace

}  // namespace umbrant::host
