// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Files that a preview's page saves contain the recipe of the command that the page copies, and are drawn again from
// it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/image/recipe/recipe_text.h"
#include "tests/host/preview/preview_client.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class PreviewRecipe : public testing::Test {
 protected:
    PreviewRecipe() {
        World layer = World::Create(24, 16, Depth::k8);
        for (int y = 4; y < 12; ++y) {
            for (int x = 6; x < 18; ++x) Pixel8(layer, x, y) = {255, 230, 120, 40};
        }
        EXPECT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, 24, 16}, 24, 16}));
        WriteLayer(folder_ / "paper.png", 8, 8, {255, 40, 200, 90});
        WriteLayer(folder_ / "new paper.png", 8, 8, {255, 240, 20, 190});
    }

    /// Saves what the page asks for, as a file in the folder.
    void Save(const RunningPreview& preview, const json& more, const std::string& name) const {
        json request = {{"client", 1},
                        {"serial", 1},
                        {"moving", false},
                        {"layer", 1},
                        {"texture", 0},
                        {"values", json::object()},
                        {"format", name.substr(name.rfind('.') + 1)}};
        request.update(more);
        const WireReply file = preview.Post("render", request.dump());
        ASSERT_EQ(file.status, 200) << file.body;
        WriteBytes(folder_ / name, file.body);
    }
    void Render(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "render");
        const Outcome run = RunUmbrant(folder_, arguments);
        ASSERT_EQ(run.code, 0) << run.err;
        EXPECT_THAT(run.err, Not(HasSubstr("may differ")));
    }
    std::string RecipeOf(const std::string& name) const {
        const std::string bytes = ReadBytes(folder_ / name);
        return FindRecipe(MemoryBytes(std::as_bytes(std::span(bytes)))).text;
    }
    void ExpectSame(const std::string& one, const std::string& other) const {
        EXPECT_TRUE(ReadBytes(folder_ / one) == ReadBytes(folder_ / other)) << RecipeOf(one) << "\n" << RecipeOf(other);
    }

    const Folder folder_;
};

TEST_F(PreviewRecipe, ASavedFileIsDrawnAgainFromIt) {
    const RunningPreview preview(
        folder_, {"in.png", "--texture", "paper.png", "--texture-at", "-2,3.5", "--depth", "32", "--renderer", "cpu"});
    const json values = {{"style/distance", "9"}, {"style/softness", "4.50"}, {"texture/blend-mode", "normal"}};
    const int uploaded =
        preview.Post("layer?name=new%20paper.png", ReadBytes(folder_ / "new paper.png")).Json()["id"].get<int>();
    const std::vector<std::string> same = {"--renderer", "cpu",
                                           "--depth",    "32",
                                           "--set",      "style/distance=9",
                                           "--set",      "style/softness=4.50",
                                           "--set",      "texture/blend-mode=normal"};
    for (const std::string format : {"png", "tif", "exr", "jpg"}) {
        SCOPED_TRACE(format);
        const std::string saved = "saved." + format;
        const std::string rendered = "rendered." + format;
        Save(preview, {{"texture", uploaded}, {"values", values}}, saved);
        std::vector<std::string> words = {"in.png",        "-o",           rendered, "--texture",
                                          "new paper.png", "--texture-at", "-2,3.5"};
        words.insert(words.end(), same.begin(), same.end());
        Render(words);
        ExpectSame(saved, rendered);
        EXPECT_THAT(RecipeOf(saved), HasSubstr(R"("texture":"new paper.png","texture-at":"-2,3.5")"));
        const std::string again = "again." + format;
        Render({"--like", saved, "in.png", "-o", again, "--renderer", "cpu"});
        ExpectSame(saved, again);
    }
    // Without a texture there is no place of one.
    Save(preview, {{"values", values}}, "plain.png");
    std::vector<std::string> words = {"in.png", "-o", "rendered.png"};
    words.insert(words.end(), same.begin(), same.end());
    Render(words);
    ExpectSame("plain.png", "rendered.png");
    Render({"--like", "plain.png", "in.png", "-o", "again.png", "--renderer", "cpu"});
    ExpectSame("plain.png", "again.png");
}

TEST_F(PreviewRecipe, AFrameOfATimelineIsDrawnAgainFromIt) {
    const json keyframes = {
        {"style/distance", {{{"frame", 1}, {"value", 4}, {"out", "ease"}}, {{"frame", 7}, {"value", 20}}}}};
    WriteBytes(folder_ / "keys.json", json{{"version", 2}, {"keyframes", keyframes}}.dump());
    const json time = {{"keyframes", keyframes.dump()}, {"frames", "1-7"}, {"rate", "29.97"}, {"frame", 4}};
    for (const std::string canvas : {"grow", "frame", "layer", "-3,-2,40,30"}) {
        SCOPED_TRACE(canvas);
        const RunningPreview preview(folder_, {"in.png", "--canvas", canvas, "--renderer", "cpu", "--zero-frame", "2"});
        Save(preview, time, "saved.png");
        Render({"in.png", "-o", "rendered.@.png", "--canvas", canvas, "--renderer", "cpu", "--zero-frame", "2",
                "--frames", "5", "--rate", "29.97", "--preset", "keys.json"});
        ExpectSame("saved.png", "rendered.5.png");
        EXPECT_THAT(RecipeOf("saved.png"), HasSubstr("\"frame\":5"));
        Render({"--like", "saved.png", "in.png", "-o", "again.png", "--renderer", "cpu"});
        ExpectSame("saved.png", "again.png");
        Save(preview, json::object(), "still.png");
        Render({"in.png", "-o", "rendered.png", "--canvas", canvas, "--renderer", "cpu", "--zero-frame", "2"});
        ExpectSame("still.png", "rendered.png");
    }
}

TEST_F(PreviewRecipe, ATooLongOneIsLeftOut) {
    json keys = json::array();
    for (int frame = 1; frame <= 5000; ++frame) keys.push_back({{"frame", frame}, {"value", frame % 90}});
    const json keyframes = {{"style/angle", keys}};
    const RunningPreview preview(folder_, {"in.png", "--renderer", "cpu"});
    Save(preview, {{"keyframes", keyframes.dump()}, {"frames", "1-5000"}, {"rate", "24"}}, "saved.png");
    EXPECT_GT(Read(folder_ / "saved.png").frameWidth, 0);
    EXPECT_THAT(RecipeOf("saved.png"), IsEmpty());
}

TEST_F(PreviewRecipe, AFileOfAnotherModuleHasOneToo) {
    const RunningPreview preview(folder_, {"in.png", "--module", TestModule("painter")});
    Save(preview, json::object(), "saved.png");
    Render({"in.png", "-o", "rendered.png", "--module", TestModule("painter")});
    ExpectSame("saved.png", "rendered.png");
    EXPECT_THAT(RecipeOf("saved.png"), HasSubstr("\"values\""));
    EXPECT_THAT(RecipeOf("saved.png"), Not(HasSubstr("\"pixels\"")));
}

}  // namespace

}  // namespace umbrant::host
