// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` between colour spaces: what is converted, what stays, and what each wrong request is answered with.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"
#include "tests/host/image/picture_files.h"

namespace umbrant::host {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr float kStep = 1.0f / 255;

class CliColor : public testing::Test {
 protected:
    CliColor() {
        unsetenv("OCIO");
        World layer = World::Create(24, 16, Depth::k8);
        for (int y = 4; y < 12; ++y) {
            for (int x = 6; x < 18; ++x) Pixel8(layer, x, y) = {255, 188, 128, 55};
        }
        // Invisible, and a colour all the same.
        Pixel8(layer, 0, 0) = {0, 188, 128, 55};
        EXPECT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, 24, 16}, 24, 16}));
        WriteLayer(folder_ / "paper.png", 40, 40, {255, 188, 188, 188});
    }

    Outcome Render(std::vector<std::string> more) const {
        more.insert(more.begin(),
                    {"render", "--renderer", "cpu", "--module", UMBRANT_MODULE_FILE, "--canvas", "layer"});
        return RunInProcess(folder_, more);
    }
    /// The same in a process of its own, with a configuration of colours.
    Outcome RenderWith(const std::string& config, std::vector<std::string> more) const {
        more.insert(more.begin(),
                    {"render", "--renderer", "cpu", "--module", UMBRANT_MODULE_FILE, "--canvas", "layer"});
        return RunUmbrant(folder_, more, {{"OCIO=" + config}, ""});
    }
    PF_PixelFloat PixelOf(const std::string& name, int x, int y) const {
        Picture picture = Read(folder_ / name);
        if (picture.pixels.IsNull()) return {};
        if (picture.pixels.PixelDepth() == Depth::k32) return PixelFloat(picture.pixels, x, y);
        const PF_Pixel& p = Pixel8(picture.pixels, x, y);
        return {kStep * p.alpha, kStep * p.red, kStep * p.green, kStep * p.blue};
    }

    const Folder folder_;
};

TEST_F(CliColor, AnSrgbImageBecomesALinearOneAndComesBack) {
    Outcome outcome = Render({"in.png", "-o", "out.exr", "--input-space", "sRGB", "--output-space", "Linear Rec.709"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, IsEmpty());
    const PF_PixelFloat pixel = PixelOf("out.exr", 10, 8);
    EXPECT_NEAR(pixel.red, 0.502887f, 1e-4);
    EXPECT_NEAR(pixel.green, 0.215861f, 1e-4);
    EXPECT_NEAR(pixel.blue, 0.038204f, 1e-4);
    EXPECT_EQ(pixel.alpha, 1);
    outcome = Render({"out.exr", "-o", "back.png", "--input-space", "linear", "--output-space", "srgb",
                      "--output-depth", "8", "--set", "opacity/opacity-master=0"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NEAR(PixelOf("back.png", 10, 8).red, 188 * kStep, 1e-6);
    EXPECT_NEAR(PixelOf("back.png", 10, 8).blue, 55 * kStep, 1e-6);
}

TEST_F(CliColor, TheWorkingSpaceChangesNoLayerAndNoAlpha) {
    const std::vector<std::string> look = {"in.png",  "--set", "style/softness=4", "--set", "style/distance=6",
                                           "--depth", "32"};
    auto plain = look, working = look;
    plain.insert(plain.end(), {"-o", "plain.png"});
    working.insert(working.end(), {"-o", "working.png", "--input-space", "sRGB", "--working-space", "ACEScg"});
    ASSERT_EQ(Render(plain).code, 0);
    ASSERT_EQ(Render(working).code, 0);
    EXPECT_NEAR(PixelOf("working.png", 10, 8).green, 128 * kStep, 1e-4);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 24; ++x) {
            ASSERT_EQ(PixelOf("working.png", x, y).alpha, PixelOf("plain.png", x, y).alpha) << x << "," << y;
        }
    }
}

TEST_F(CliColor, ColoursAreGivenInTheOutputSpace) {
    for (const char* preset : {R"({"version":1,"values":{"style/color":"#203060"}})",
                               R"({"version":2,"keyframes":{"style/color":[{"frame":0,"value":"#203060"}]}})"}) {
        WriteBytes(folder_ / "look.json", preset);
        ASSERT_EQ(Render({"in.png", "-o", "out.png", "--preset", "look.json", "--input-space", "sRGB",
                          "--working-space", "ACEScg", "--set", "style/softness=0", "--set", "style/distance=6",
                          "--set", "opacity/opacity-start=100", "--set", "opacity/opacity-end=100"})
                      .code,
                  0);
        const PF_PixelFloat shadow = PixelOf("out.png", 19, 13);
        ASSERT_GT(shadow.alpha, 0.2f) << "the shadow shows here";
        EXPECT_NEAR(shadow.red, 0x20 * kStep, 0.002);
        EXPECT_NEAR(shadow.green, 0x30 * kStep, 0.002);
        EXPECT_NEAR(shadow.blue, 0x60 * kStep, 0.002);
    }
}

TEST_F(CliColor, TheTextureHasASpaceOfItsOwn) {
    const std::vector<std::string> look = {"in.png",
                                           "--texture",
                                           "paper.png",
                                           "--input-space",
                                           "Linear Rec.709",
                                           "--set",
                                           "texture/blend-mode=normal",
                                           "--set",
                                           "style/softness=0",
                                           "--set",
                                           "style/distance=6",
                                           "--texture-space"};
    auto same = look, own = look;
    same.insert(same.end(), {"Linear Rec.709", "-o", "same.png"});
    own.insert(own.end(), {"sRGB", "-o", "own.png"});
    ASSERT_EQ(Render(same).code, 0);
    ASSERT_EQ(Render(own).code, 0);
    EXPECT_NEAR(PixelOf("same.png", 19, 13).green, 188 * kStep, 0.01);
    EXPECT_NEAR(PixelOf("own.png", 19, 13).green, 0.502887, 0.01);
    EXPECT_EQ(PixelOf("own.png", 10, 8).red, PixelOf("same.png", 10, 8).red) << "the layer is not converted";
}

TEST_F(CliColor, FilesSayWhichSpaceTheyAreIn) {
    ASSERT_EQ(Render({"in.png", "-o", "aces.exr", "--input-space", "sRGB", "--output-space", "ACEScg"}).code, 0);
    const auto aces = ReadRaw(folder_ / "aces.exr");
    const auto* primaries = aces.layout.find_attribute("chromaticities");
    ASSERT_TRUE(primaries);
    EXPECT_FLOAT_EQ(static_cast<const float*>(primaries->data())[0], 0.713f);
    ASSERT_EQ(Render({"aces.exr", "-o", "linear.png", "--input-space", "ACEScg", "--output-space", "linear"}).code, 0);
    EXPECT_EQ(ReadRaw(folder_ / "linear.png").layout.get_string_attribute("oiio:ColorSpace"), "linear");
    ASSERT_EQ(Render({"aces.exr", "-o", "back.exr", "--input-space", "ACEScg", "--output-space", "linear"}).code, 0);
    const auto back = ReadRaw(folder_ / "back.exr");
    EXPECT_FLOAT_EQ(static_cast<const float*>(back.layout.find_attribute("chromaticities")->data())[0], 0.64f);
    ASSERT_EQ(Render({"aces.exr", "-o", "same.exr", "--input-space", "ACEScg"}).code, 0);
    EXPECT_TRUE(ReadRaw(folder_ / "same.exr").layout.find_attribute("chromaticities")) << "as in the input";
}

TEST_F(CliColor, NumbersStayAsTheyAreWithANote) {
    const Outcome outcome = Render({"in.png", "-o", "out.exr"});
    ASSERT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err,
              "note: the numbers of the colours stay as they are, although most programs read 'in.png' as sRGB and "
              "'out.exr' as linear; --input-space and --output-space convert them\n");
    EXPECT_NEAR(PixelOf("out.exr", 10, 8).red, 188 * kStep, 1e-3);
    EXPECT_THAT(Render({"in.png", "-o", "out.exr", "--quiet"}).err, IsEmpty());
    EXPECT_THAT(Render({"in.png", "-o", "out.tif"}).err, IsEmpty());
    EXPECT_THAT(Render({"out.exr", "-o", "out.png"}).err, HasSubstr("'out.exr' as linear and 'out.png' as sRGB"));
    EXPECT_THAT(Render({"in.png", "-o", "out.exr", "--input-space", "linear"}).err, IsEmpty()) << "the user knows";
}

TEST_F(CliColor, TheRecipeHasTheSpaces) {
    ASSERT_EQ(Render({"in.png", "-o", "a.exr", "--input-space", "sRGB", "--output-space", "linear", "--working-space",
                      "ACEScg", "--set", "style/color=teal"})
                  .code,
              0);
    const Outcome outcome = Render({"--like", "a.exr", "in.png", "-o", "b.exr"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(ReadBytes(folder_ / "a.exr"), ReadBytes(folder_ / "b.exr"));
}

TEST_F(CliColor, WrongRequestsAreOneSentence) {
    const struct {
        std::vector<std::string> options;
        const char* sentence;
    } rows[] = {
        {{"--input-space", "sRBG"}, "there is no colour space 'sRBG'; did you mean 'sRGB'?"},
        {{"--input-space", "sRGB", "--output-space", "ACESg"},
         "there is no colour space 'ACESg'; did you mean 'ACEScg'?"},
        {{"--input-space", "sRGB", "--working-space", "ACESg"}, "there is no colour space 'ACESg'; did you mean "},
        {{"--input-space", "sRGB", "--texture-space", "ACESg"}, "there is no colour space 'ACESg'; did you mean "},
        {{"--working-space", "sRGB"}, "a conversion of colours needs --input-space, because "},
        {{"--input-space", "sRGB", "--depth", "8"}, "--depth 8 has too few steps for a conversion of colours, "},
        {{"--input-space", ""}, "--input-space: '' names no colour space"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> words = {"in.png", "-o", "out.png"};
        words.insert(words.end(), row.options.begin(), row.options.end());
        const Outcome outcome = Render(words);
        EXPECT_EQ(outcome.code, 2) << row.sentence;
        EXPECT_THAT(outcome.err, StartsWith(std::string("umbrant: ") + row.sentence));
        EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
    }
    // A job is refused before its tasks are.
    const Outcome job = RunInProcess(folder_, {"farm", "parallel", "in.png", "-o", "f.@.png", "--frames", "1-2",
                                               "--input-space", "sRBG", "--module", UMBRANT_MODULE_FILE});
    EXPECT_EQ(job.code, 2);
    EXPECT_THAT(job.out, IsEmpty());
}

TEST_F(CliColor, AConfigurationOfTheUsersIsTaken) {
    const std::string spaces =
        "strictparsing: true\ncolorspaces:\n  - !<ColorSpace>\n    name: full\n  - !<ColorSpace>\n    name: halved\n"
        "    to_reference: !<MatrixTransform> {matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}\n";
    WriteBytes(folder_ / "no roles.ocio", "ocio_profile_version: 1\n" + spaces);
    WriteBytes(folder_ / "broken.ocio", "ocio_profile_version: 2\ncolorspaces: [\n");
    Outcome outcome =
        RenderWith("no roles.ocio", {"in.png", "-o", "out.png", "--input-space", "full", "--output-space", "halved"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NEAR(PixelOf("out.png", 10, 8).red, 94 * kStep, 1e-4);
    outcome = RenderWith("no roles.ocio", {"in.png", "-o", "new.png", "--input-space", "halve"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err, "umbrant: there is no colour space 'halve' in 'no roles.ocio'; did you mean 'halved'?\n");
    for (const auto& [config, reason] :
         {std::pair("broken.ocio", "Error: Loading the OCIO profile 'broken.ocio' failed. "),
          std::pair("none.ocio", "there is no such file; "), std::pair("in.png", ""),
          std::pair(".", "a folder, not a file; ")}) {
        outcome = RenderWith(config, {"in.png", "-o", "new.png", "--input-space", "sRGB"});
        EXPECT_EQ(outcome.code, 3) << config;
        EXPECT_THAT(outcome.err, StartsWith("umbrant: the configuration of colours '" + std::string(config) +
                                            "', which the variable OCIO names, cannot be read: " + reason));
        EXPECT_THAT(outcome.err, EndsWith("; correct it, or unset OCIO to use the program's own colour spaces\n"));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
    EXPECT_FALSE(std::filesystem::exists(folder_ / "new.png"));
    EXPECT_EQ(RenderWith("none.ocio", {"in.png", "-o", "new.png"}).code, 0) << "read only when it is needed";
}

}  // namespace

}  // namespace umbrant::host
