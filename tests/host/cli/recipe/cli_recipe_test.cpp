// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` and its recipes: what was drawn can be drawn again, and everything that prevents it is one sentence.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/cli/recipe/recipe.h"
#include "host/image/recipe/recipe_text.h"
#include "tests/host/cli/in_process.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CliRecipe : public testing::Test {
 protected:
    CliRecipe() {
        World layer = World::Create(24, 16, Depth::k8);
        for (int y = 4; y < 12; ++y) {
            for (int x = 6; x < 18; ++x) Pixel8(layer, x, y) = {255, 230, 120, 40};
        }
        EXPECT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, 24, 16}, 24, 16}));
        WriteLayer(folder_ / "paper.png", 8, 8, {255, 40, 200, 90});
        WriteBytes(folder_ / "moving.json",
                   R"({"version":2,"values":{"style/softness":3},"keyframes":{"style/distance":[)"
                   R"({"frame":1,"value":4,"out":"ease"},{"frame":7,"value":20}]}})");
    }

    Outcome Render(std::vector<std::string> more) const {
        more.insert(more.begin(), {"render", "--renderer", "cpu", "--module", UMBRANT_MODULE_FILE});
        return RunInProcess(folder_, more);
    }
    /// An image with a recipe of any text.
    void WriteWith(const std::string& name, const std::string& recipe) const {
        WriteOptions options;
        options.recipe = recipe;
        ASSERT_TRUE(WritePicture(folder_ / name, Filled8(2, 2, {255, 1, 2, 3}), {{0, 0, 2, 2}, 2, 2}, options));
    }
    /// Draws an image and changes its recipe.
    void WriteChanged(const std::string& name, const std::string& from, const std::string& to) const {
        ASSERT_EQ(Render({"in.png", "-o", "drawn.png"}).code, 0);
        std::string text = RecipeOf("drawn.png");
        ASSERT_NE(text.find(from), std::string::npos) << text;
        WriteWith(name, text.replace(text.find(from), from.size(), to));
    }
    std::string RecipeOf(const std::string& name) const {
        const std::string bytes = ReadBytes(folder_ / name);
        return FindRecipe(MemoryBytes(std::as_bytes(std::span(bytes)))).text;
    }
    bool AreSame(const std::string& one, const std::string& other) const {
        return ReadBytes(folder_ / one) == ReadBytes(folder_ / other);
    }

    const Folder folder_;
};

TEST_F(CliRecipe, EveryFormatIsDrawnAgainToTheByte) {
    const std::vector<std::string> look = {"--set",        "style/distance=9",
                                           "--set",        "style/softness=4",
                                           "--set",        "style/color=teal",
                                           "--texture",    "paper.png",
                                           "--set",        "texture/strength=50",
                                           "--texture-at", "-2,3.5",
                                           "--depth",      "32",
                                           "--downsample", "2"};
    for (const char* format : {"png", "exr", "tif", "jpg"}) {
        SCOPED_TRACE(format);
        const std::string first = std::string("first.") + format;
        const std::string again = std::string("again.") + format;
        std::vector<std::string> words = {"in.png", "-o", first};
        words.insert(words.end(), look.begin(), look.end());
        ASSERT_EQ(Render(words).code, 0);
        const Outcome outcome = Render({"--like", first, "in.png", "-o", again, "--quiet"});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_TRUE(AreSame(first, again)) << RecipeOf(first) << "\n" << RecipeOf(again);
        EXPECT_THAT(RecipeOf(first), HasSubstr(R"("texture":"paper.png")"));
        EXPECT_THAT(RecipeOf(first), Not(HasSubstr(folder_.Path().string())));
        EXPECT_THAT(RecipeOf(first), Not(HasSubstr("in.png")));
    }
}

TEST_F(CliRecipe, TheCommandLineOverridesIt) {
    ASSERT_EQ(Render({"in.png", "-o", "a.png", "--set", "style/distance=9", "--downsample", "4", "--depth", "32",
                      "--compression", "small"})
                  .code,
              0);
    ASSERT_EQ(Render({"--like", "a.png", "in.png", "-o", "b.exr", "--downsample", "1", "--canvas", "layer", "--set",
                      "style/distance=3"})
                  .code,
              0);
    const auto recipe = ReadRecipe(folder_ / "b.exr");
    ASSERT_TRUE(recipe) << recipe.error().sentence;
    using Option = std::pair<std::string, std::string>;
    EXPECT_EQ(recipe->options, (std::vector<Option>{{"canvas", "layer"}, {"depth", "32"}, {"downsample", "1"}}))
        << "no EXR has the compression";
    EXPECT_THAT(recipe->preset, HasSubstr(R"("style/distance":3,)"));
    EXPECT_EQ(Read(folder_ / "b.exr").pixels.Width(), 24);
}

TEST_F(CliRecipe, CanBeLeftOut) {
    ASSERT_EQ(Render({"in.png", "-o", "a.png", "--no-recipe"}).code, 0);
    EXPECT_THAT(RecipeOf("a.png"), IsEmpty());
    const Outcome outcome = Render({"--like", "a.png", "in.png", "-o", "b.png"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err,
              "umbrant: 'a.png' has no recipe: it was not drawn by `umbrant render`, or with --no-recipe, or another "
              "program left the recipe out; give the values with --preset and --set\n");
    EXPECT_EQ(folder_.Entries(), 4);
}

TEST_F(CliRecipe, AFrameIsDrawnAgainAloneAndInItsSequence) {
    ASSERT_EQ(Render({"in.png", "-o", "f.@.png", "--frames", "1-3", "--preset", "moving.json", "--rate", "29.97"}).code,
              0);
    EXPECT_FALSE(AreSame("f.2.png", "f.3.png"));
    Outcome outcome = Render({"--like", "f.2.png", "in.png", "-o", "alone.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(AreSame("f.2.png", "alone.png")) << RecipeOf("f.2.png") << "\n" << RecipeOf("alone.png");
    outcome = Render({"--like", "f.2.png", "in.png", "-o", "g.@.png", "--frames", "1-3"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    for (const char* frame : {"1", "2", "3"}) {
        EXPECT_TRUE(AreSame(std::string("f.") + frame + ".png", std::string("g.") + frame + ".png")) << frame;
    }
    // A time of the command line is another one.
    ASSERT_EQ(Render({"--like", "f.2.png", "in.png", "-o", "other.png", "--time", "0.2"}).code, 0);
    EXPECT_FALSE(AreSame("f.2.png", "other.png"));
}

TEST_F(CliRecipe, FailuresAreOneSentence) {
    WriteBytes(folder_ / "note.png", "no image");
    WriteWith("damaged.png", "{\"recipe\":1,");
    WriteWith("newer.png", R"({"recipe":2,"program":"9.0"})");
    WriteChanged("unknown.png", "\"style/distance\"", "\"style/distances\"");
    WriteChanged("range.png", "\"style/distance\":250", "\"style/distance\":\"far\"");
    WriteChanged("option.png", "\"canvas\":\"grow\"", "\"canvas\":\"grow\",\"sparkle\":\"1\"");
    WriteChanged("value.png", "\"canvas\":\"grow\"", "\"canvas\":\"grow\",\"downsample\":\"-1\"");
    WriteChanged("other.png", "\"canvas\":\"grow\"", "\"canvas\":\"grow\",\"threads\":\"2\"");
    WriteChanged("input.png", "\"canvas\":\"grow\"", "\"canvas\":\"grow\",\"texture\":\"-\"");
    WriteChanged("pixels.png", "\"pixels\":1", "\"pixels\":7");
    const struct {
        const char* file;
        int code;
        std::string sentence;
    } rows[] = {
        {"none.png", 3, "cannot read the recipe of 'none.png': "},
        {".", 3, "cannot read the recipe of '.': not a regular file"},
        {"note.png", 2,
         "'note.png' cannot have a recipe: not a PNG, EXR, TIFF, JPEG, MOV, MP4, Matroska or WebM; name a "
         "file that `umbrant render` wrote\n"},
        {"damaged.png", 2, "the recipe of 'damaged.png' is damaged: the text is not whole; take another file "},
        {"newer.png", 2, "the recipe of 'newer.png' is of a newer program, umbrant 9.0: its form is 2, and "},
        {"unknown.png", 2,
         "the recipe of 'unknown.png' sets parameters that this module does not have: "
         "'style/distances'; draw with the module that drew it, Umbrant 2 1.3.3 (--module)\n"},
        {"range.png", 2, "the recipe of 'range.png' has a mistake: line 1, column "},
        {"option.png", 2,
         "the recipe of 'option.png' cannot be used: this program has no option '--sparkle' for recipes; draw with the "
         "program that wrote it\n"},
        {"other.png", 2,
         "the recipe of 'other.png' cannot be used: this program has no option '--threads' for recipes; "},
        {"input.png", 2,
         "the recipe of 'input.png' cannot be used: its texture came from standard input; name a file with "
         "--texture\n"},
        {"value.png", 2, "the recipe of 'value.png' cannot be used: --downsample: "},
        {"pixels.png", 2, "'pixels.png' was drawn by umbrant "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.file);
        const Outcome outcome = Render({"--like", row.file, "in.png", "-o", "new.png"});
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_THAT(outcome.err, testing::StartsWith("umbrant: " + row.sentence));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_FALSE(std::filesystem::exists(folder_ / "new.png"));
    }
    EXPECT_EQ(Render({"--like", "value.png", "in.png", "-o", "new.png", "--downsample", "1"}).code, 0);
}

TEST_F(CliRecipe, DifferencesOfRendererAndModuleAreNoted) {
    WriteChanged("gl.png", "\"renderer\":\"cpu\"", "\"renderer\":\"gl\"");
    Outcome outcome = Render({"--like", "gl.png", "in.png", "-o", "new.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err,
              "note: 'gl.png' was drawn by the renderer gl, and this image is drawn by cpu; the pixels may differ by a "
              "step of 8 bits; --renderer gl selects the same\n");
    WriteChanged("old.png", "\"version\":\"1.3.3\"", "\"version\":\"1.0.0\"");
    outcome = Render({"--like", "old.png", "in.png", "-o", "new.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(
        outcome.err,
        "note: 'old.png' was drawn by the module Umbrant 2 1.0.0, and this image is drawn by Umbrant 2 1.3.3; the "
        "pixels may differ\n");
    EXPECT_THAT(Render({"--like", "old.png", "in.png", "-o", "new.png", "--quiet"}).err, IsEmpty());
}

TEST_F(CliRecipe, ATooLongOneIsLeftOutWithANote) {
    std::string keys;
    for (int frame = 1; frame <= 5000; ++frame) {
        keys += R"({"frame":)" + std::to_string(frame) + R"(,"value":)" + std::to_string(frame % 90) + "},";
    }
    keys.pop_back();
    WriteBytes(folder_ / "long.json", R"({"version":2,"keyframes":{"style/angle":[)" + keys + "]}}");
    const Outcome outcome = Render({"in.png", "-o", "a.png", "--preset", "long.json"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err,
                testing::MatchesRegex("note: the recipe is left out of the output: its keyframes make it "
                                      "[0-9]+ bytes long, and a file takes 100000; keep the preset with the "
                                      "output\n"));
    EXPECT_THAT(RecipeOf("a.png"), IsEmpty());
}

TEST_F(CliRecipe, StandardOutputAndOtherModulesHaveOneToo) {
    const Outcome outcome = Render({"in.png", "-o", "-", "--format", "png"});
    ASSERT_EQ(outcome.code, 0);
    EXPECT_THAT(FindRecipe(MemoryBytes(std::as_bytes(std::span(outcome.out)))).text, HasSubstr("\"pixels\":1"));
    ASSERT_EQ(RunInProcess(folder_, {"render", "in.png", "-o", "a.png", "--module", TestModule("painter")}).code, 0);
    EXPECT_THAT(RecipeOf("a.png"), Not(HasSubstr("\"pixels\"")));
    EXPECT_THAT(RecipeOf("a.png"), HasSubstr("\"values\""));
}

TEST_F(CliRecipe, AJobTakesItsCanvasFromIt) {
    ASSERT_EQ(Render({"in.png", "-o", "a.png", "--canvas", "1,2,9,8", "--texture", "paper.png"}).code, 0);
    const Outcome outcome = RunInProcess(folder_, {"farm", "parallel", "--like", "a.png", "in.png", "-o", "f.#.png",
                                                   "--frames", "1-2", "--module", UMBRANT_MODULE_FILE});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, HasSubstr("--like a.png"));
    EXPECT_THAT(
        RunInProcess(folder_, {"farm", "parallel", "--like", "none.png", "in.png", "-o", "f.#.png", "--frames", "1-2"})
            .err,
        HasSubstr("cannot read the recipe of 'none.png'"));
}

}  // namespace

}  // namespace umbrant::host
