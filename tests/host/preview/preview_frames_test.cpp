// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a page gets to see: to the byte what `umbrant render` writes, in order, and an account of everything that fails.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "host/compositing/resample.h"
#include "tests/host/preview/preview_client.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;

/// Draws with the program, and returns the picture's pixels.
std::string Rendered(const Folder& folder, const std::string& input, const json& values,
                     const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"render", input, "-o", "out.png", "--renderer", "cpu"};
    for (const auto& [path, value] : values.items()) {
        arguments.insert(arguments.end(), {"--set", path + "=" + value.get<std::string>()});
    }
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome run = RunUmbrant(folder, arguments);
    EXPECT_EQ(run.code, 0) << run.err;
    const Picture picture = Read(folder / "out.png");
    return RgbaOf(picture.pixels);
}

TEST(PreviewFrames, AreThoseOfRender) {
    const Folder folder;
    const std::string input = LAYERS "/card.png";
    const RunningPreview preview(folder, {input, "--renderer", "cpu"});
    Page page(preview);
    ASSERT_TRUE(page.IsConnected());
    const json rows[] = {
        json::object(),
        {{"style/distance", "80"}, {"style/color", "#203060"}},
        {{"style/shadow-type", "inner"}, {"style/softness", "40"}},
        {{"style/shadow-type", "radial"}, {"style/origin", "10,20"}},
        {{"style/angle", "-400.5"}, {"easing/mode", "2"}},
        {{"opacity/opacity-master", "35"}, {"compositing/source-opacity", "0"}},
        json::object(),
    };
    for (const json& values : rows) {
        ASSERT_EQ(page.Draw(values), 202);
        const json frame = page.Await("frame");
        ASSERT_TRUE(frame.is_object()) << values;
        EXPECT_FALSE(frame["draft"].get<bool>());
        const std::string pixels = page.Pixels(frame);
        EXPECT_EQ(pixels.size(), 4U * (frame["rect"][2].get<int>() - frame["rect"][0].get<int>()) *
                                     (frame["rect"][3].get<int>() - frame["rect"][1].get<int>()));
        EXPECT_TRUE(pixels == Rendered(folder, input, values)) << values;
    }
}

TEST(PreviewFrames, DraftsAreThoseOfRenderAtALowerResolution) {
    const Folder folder;
    const std::string input = LAYERS "/title.png";
    const RunningPreview preview(folder, {input, "--renderer", "cpu"});
    Page page(preview);
    const json values = {{"style/distance", "60"}, {"quality/samples", "20"}};
    ASSERT_EQ(page.Draw(values, true), 202);
    const json frame = page.Await("frame");
    ASSERT_TRUE(frame.is_object());
    const int downsample = frame["downsample"].get<int>();
    EXPECT_EQ(frame["draft"].get<bool>(), downsample > 1);
    EXPECT_GT(downsample, 1) << "before the first frame a slow renderer is assumed";
    EXPECT_TRUE(page.Pixels(frame) == Rendered(folder, input, values, {"--downsample", std::to_string(downsample)}));
}

TEST(PreviewFrames, TexturesDepthsAndTheValuesOfTheCommandLine) {
    const Folder folder;
    const std::string input = LAYERS "/card.png";
    const std::string texture = LAYERS "/dusk.jpg";
    const RunningPreview preview(folder, {input, "--texture", texture, "--depth", "32", "--renderer", "cpu", "--set",
                                          "texture/blend-mode=normal", "--set", "style/distance=30"});
    const json panel = preview.Get("panel").Json();
    EXPECT_EQ(panel["values"], (json{{"texture/blend-mode", "normal"}, {"style/distance", "30"}}));
    EXPECT_EQ(panel["layer"]["name"], input);
    EXPECT_EQ(panel["renderArguments"], (json{"--depth", "32", "--renderer", "cpu"}));
    Page page(preview);
    ASSERT_EQ(page.Draw(panel["values"], false, 1, 2), 202);
    const json frame = page.Await("frame");
    ASSERT_TRUE(frame.is_object());
    EXPECT_EQ(frame["bits"], 32);
    Rendered(folder, input, panel["values"], {"--texture", texture, "--depth", "32", "--output-depth", "8"});
    EXPECT_TRUE(page.Pixels(frame) == RgbaOf(Read(folder / "out.png").pixels));

    // A pixel of the float frame that is drawn is as `render` writes it.
    const int x = 200 - frame["rect"][0].get<int>();
    const int y = 150 - frame["rect"][1].get<int>();
    const json pixel = preview
                           .Get("pixel?client=" + std::to_string(page.Client()) +
                                "&frame=" + std::to_string(frame["frame"].get<int>()) + "&x=" + std::to_string(x) +
                                "&y=" + std::to_string(y))
                           .Json();
    const Outcome exact =
        RunUmbrant(folder, {"render", input, "-o", "out.tif", "--texture", texture, "--depth", "32", "--renderer",
                            "cpu", "--set", "texture/blend-mode=normal", "--set", "style/distance=30"});
    ASSERT_EQ(exact.code, 0) << exact.err;
    Picture picture = Read(folder / "out.tif");
    EXPECT_EQ(std::strtof(pixel["rgba"][0].get<std::string>().c_str(), nullptr), PixelFloat(picture.pixels, x, y).red);
    EXPECT_EQ(std::strtof(pixel["rgba"][3].get<std::string>().c_str(), nullptr),
              PixelFloat(picture.pixels, x, y).alpha);
}

TEST(PreviewFrames, OnlyTheNewestOfManyRequestsIsAnsweredAndInOrder) {
    const Folder folder;
    const RunningPreview preview(folder, {LAYERS "/title.png", "--renderer", "cpu"});
    Page page(preview);
    for (int i = 0; i < 40; ++i) ASSERT_EQ(page.Draw({{"style/distance", std::to_string(i)}}, true), 202);
    const json last = page.Await("frame");
    ASSERT_TRUE(last.is_object());
    EXPECT_EQ(last["serial"], 40);
    EXPECT_LE(last["frame"].get<int>(), 40);
}

TEST(PreviewFrames, TwoPagesHaveTheirOwnValuesAndLayers) {
    const Folder folder;
    WriteLayer(folder / "in.png", 6, 4, {255, 200, 100, 50});
    const RunningPreview preview(folder, {LAYERS "/card.png", "--renderer", "cpu"});
    Page one(preview);
    Page other(preview);
    const auto layer = preview.Post("example?name=title.png", "").Json();
    ASSERT_EQ(one.Draw({{"style/distance", "10"}}), 202);
    ASSERT_EQ(other.Draw({{"style/shadow-type", "inner"}}, false, layer["id"].get<int>()), 202);
    const std::string first = one.Pixels(one.Await("frame"));
    const std::string second = other.Pixels(other.Await("frame"));
    EXPECT_TRUE(first == Rendered(folder, LAYERS "/card.png", {{"style/distance", "10"}}));
    EXPECT_TRUE(second == Rendered(folder, LAYERS "/title.png", {{"style/shadow-type", "inner"}}));
}

TEST(PreviewFrames, RowsFollowTheEffect) {
    const Folder folder;
    const RunningPreview preview(folder, {"--renderer", "cpu"});
    Page page(preview);
    ASSERT_EQ(page.Draw({{"style/shadow-type", "radial"}}, false, 0), 202);
    const json rows = page.Await("panel")["rows"];
    EXPECT_TRUE(rows["style/distance"]["hidden"].is_boolean());
    EXPECT_TRUE(rows["style/angle"]["hidden"].get<bool>());
    EXPECT_FALSE(rows["style/origin"]["hidden"].get<bool>());
    EXPECT_EQ(rows["style/shadow-type"]["text"], "radial");
    ASSERT_EQ(page.Draw(json::object(), false, 0), 202);
    EXPECT_FALSE(page.Await("panel")["rows"]["style/angle"]["hidden"].get<bool>());
}

TEST(PreviewFrames, AValueThatIsRefusedIsNamedAndTheSessionGoesOn) {
    const Folder folder;
    const RunningPreview preview(folder, {LAYERS "/card.png", "--renderer", "cpu"});
    Page page(preview);
    ASSERT_EQ(page.Draw({{"style/distance", "far"}}), 202);
    json failure = page.Await("failure");
    EXPECT_EQ(failure["row"], "style/distance");
    EXPECT_THAT(failure["sentence"].get<std::string>(), HasSubstr("far"));
    EXPECT_FALSE(failure.contains("gone"));
    ASSERT_EQ(page.Draw(json::object(), false, 77), 202);
    EXPECT_EQ(page.Await("failure")["sentence"], "the image is not kept any more; choose it again");
    ASSERT_EQ(page.Draw(json::object()), 202);
    EXPECT_TRUE(page.Await("frame").is_object());
}

TEST(PreviewFrames, TheEffectsOwnRowIsAnImage) {
    const Folder folder;
    const RunningPreview preview(folder, {"--renderer", "cpu"});
    for (const char* scale : {"1", "2"}) {
        const WireReply row = preview.Get(std::string("row?index=2&theme=light&scale=") + scale);
        ASSERT_EQ(row.status, 200) << row.body;
        std::ofstream(folder / "row.png", std::ios::binary) << row.body;
        EXPECT_EQ(Read(folder / "row.png").frameWidth, 250 * std::atoi(scale));
    }
}

class PreviewModules : public testing::Test {
 protected:
    PreviewModules() { WriteLayer(folder_ / "in.png", 5, 3, {255, 200, 100, 50}); }
    const Folder folder_;
};

TEST_F(PreviewModules, AModuleThatCrashesIsReportedAndCanBeStartedAgain) {
    for (const char* place : {"render:crash", "pre-render:exit", "panel:abort"}) {
        const RunningPreview preview(folder_, {"in.png", "--module", TestModule("leaver")},
                                     {std::string("UMBRANT_TEST_LEAVES=") + place});
        Page page(preview);
        ASSERT_TRUE(page.IsConnected()) << place;
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(page.Draw(json::object()), 202);
            const json failure = page.Await("failure");
            EXPECT_THAT(failure["sentence"].get<std::string>(), HasSubstr("examines the module")) << place;
            EXPECT_EQ(failure["gone"], true) << place;
            ASSERT_EQ(page.Draw(json::object()), 202);
            EXPECT_EQ(page.Await("failure")["sentence"], "the module is not running; start it again") << place;
            EXPECT_EQ(preview.Post("restart", "").status, 200);
        }
    }
}

TEST_F(PreviewModules, AModuleThatDoesNotAnswerIsEndedOnRequest) {
    const RunningPreview preview(folder_, {"in.png", "--module", TestModule("leaver")},
                                 {"UMBRANT_TEST_LEAVES=render:hang"});
    Page page(preview);
    ASSERT_EQ(page.Draw(json::object()), 202);
    // What was sent before the frame begins has come; the module may not be drawing yet.
    ASSERT_TRUE(page.Await("panel").is_object());
    EXPECT_EQ(preview.Post("restart", "").status, 200);
    const json failure = page.Await("failure");
    EXPECT_EQ(failure["sentence"], "the module did not answer and was ended; start it again");
    EXPECT_EQ(failure["gone"], true);
    EXPECT_EQ(preview.Get("panel").status, 200);
}

TEST_F(PreviewModules, AnotherModuleIsShownLikeTheOwnOne) {
    const RunningPreview preview(folder_, {"in.png", "--module", TestModule("painter")});
    Page page(preview);
    ASSERT_EQ(page.Draw(json::object()), 202);
    const json frame = page.Await("frame");
    ASSERT_TRUE(frame.is_object());
    const Outcome run = RunUmbrant(folder_, {"render", "in.png", "-o", "out.png", "--module", TestModule("painter")});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(page.Pixels(frame) == RgbaOf(Read(folder_ / "out.png").pixels));
}

TEST_F(PreviewModules, AModuleThatIsGoneIsReportedUntilItIsBack) {
    const auto module = folder_ / "module.so";
    std::filesystem::copy_file(TestModule("leaver"), module);
    const RunningPreview preview(folder_, {"in.png", "--module", "./module.so"});
    Page page(preview);
    ASSERT_EQ(page.Draw(json::object()), 202);
    EXPECT_TRUE(page.Await("frame").is_object());
    std::filesystem::rename(module, folder_ / "away.so");
    // A layer of another size needs a new session.
    const int layer = preview.Post("example?name=card.png", "").Json()["id"].get<int>();
    ASSERT_EQ(page.Draw(json::object(), false, layer), 202);
    const json failure = page.Await("failure");
    EXPECT_THAT(failure["sentence"].get<std::string>(), HasSubstr("module.so"));
    EXPECT_EQ(failure["gone"], true);
    const WireReply restart = preview.Post("restart", "");
    EXPECT_EQ(restart.status, 500);
    EXPECT_THAT(restart.Error(), HasSubstr("module.so"));
    std::filesystem::rename(folder_ / "away.so", module);
    EXPECT_EQ(preview.Post("restart", "").status, 200);
    ASSERT_EQ(page.Draw(json::object(), false, layer), 202);
    EXPECT_TRUE(page.Await("frame").is_object());
}

TEST_F(PreviewModules, AnErrorOfTheEffectIsShownAndTheSessionGoesOn) {
    const RunningPreview preview(folder_, {"in.png", "--module", TestModule("JudgedFailsAtMaximum")});
    Page page(preview);
    ASSERT_EQ(page.Draw({{"look/amount", "100"}}), 202);
    const json failure = page.Await("failure");
    EXPECT_FALSE(failure["sentence"].get<std::string>().empty());
    EXPECT_FALSE(failure.contains("gone"));
    ASSERT_EQ(page.Draw({{"look/amount", "50"}}), 202);
    EXPECT_TRUE(page.Await("frame").is_object());
}

}  // namespace

}  // namespace umbrant::host
