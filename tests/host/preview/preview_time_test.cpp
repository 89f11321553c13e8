// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Timelines, keyframes and files of a preview: to the byte what `umbrant render` writes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/host/preview/preview_client.h"
#include "tests/host/video/clips.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;

constexpr char kMoving[] = R"({"version": 2, "values": {"style/softness": 12}, "keyframes": {
    "style/angle": [{"frame": 1, "value": 20, "out": "ease"}, {"frame": 9, "value": 200, "in": "ease"}],
    "style/distance": [{"frame": 1, "value": 10}, {"frame": 9, "value": 40}],
    "quality/resolution": [{"frame": 1, "value": "draft"}, {"frame": 8, "value": "high"}]}})";

void WriteText(const std::filesystem::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

class PreviewTime : public testing::Test {
 protected:
    PreviewTime() { WriteText(folder_ / "moving.json", kMoving); }

    /// The values and keys with which the page begins, as a request.
    static json Beginning(const RunningPreview& preview, const Page& page) {
        const json panel = preview.Get("panel").Json();
        json request = {
            {"client", page.Client()}, {"serial", 1}, {"moving", false}, {"layer", 1}, {"texture", 0}, {"frame", 0}};
        request["values"] = panel["values"];
        request["keyframes"] = panel["keyframes"].empty() ? "" : panel["keyframes"].dump();
        request["frames"] = panel["frames"];
        request["rate"] = panel["rate"];
        return request;
    }

    void Render(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "render");
        arguments.insert(arguments.end(), {"--renderer", "cpu", "--quiet"});
        const Outcome run = RunUmbrant(folder_, arguments);
        ASSERT_EQ(run.code, 0) << run.err;
    }

    const Folder folder_;
};

TEST_F(PreviewTime, KeyframesAtAFrameAreThoseOfRender) {
    const std::string input = LAYERS "/card.png";
    const RunningPreview preview(folder_, {input, "--preset", "moving.json", "--renderer", "cpu"});
    Page page(preview);
    json request = Beginning(preview, page);
    EXPECT_EQ(request["frames"], "1-9");
    for (const int frame : {1, 4, 8, 9}) {
        request["frame"] = frame - 1;
        const json drawn = page.DrawThis(request);
        ASSERT_TRUE(drawn.is_object());
        EXPECT_EQ(drawn["shotFrame"], frame - 1);
        Render({input, "-o", "out.png", "--preset", "moving.json", "--frames", std::to_string(frame)});
        EXPECT_TRUE(page.Pixels(drawn) == RgbaOf(Read(folder_ / "out.png").pixels)) << frame;
    }
}

TEST_F(PreviewTime, FilesAreThoseOfRender) {
    const std::string input = LAYERS "/card.png";
    const RunningPreview preview(folder_, {input, "--preset", "moving.json", "--renderer", "cpu"});
    Page page(preview);
    json request = Beginning(preview, page);
    const json canvas = preview.Post("canvas", request.dump()).Json();
    Render({input, "-o", "out.####.png", "--preset", "moving.json", "--frames", "1-9", "--rate", "24"});
    for (const int frame : {1, 5, 9}) {
        request["frame"] = frame - 1;
        request["canvas"] = canvas["canvas"];
        request["format"] = "png";
        const WireReply file = preview.Post("render", request.dump());
        ASSERT_EQ(file.status, 200) << file.body;
        EXPECT_TRUE(file.body == ReadBytes(folder_ / ("out.000" + std::to_string(frame) + ".png"))) << frame;
    }
    for (const std::string format : {"png", "tif", "exr", "jpg"}) {
        const json still = {{"client", page.Client()},
                            {"serial", 1},
                            {"moving", false},
                            {"layer", 1},
                            {"texture", 0},
                            {"values", {{"style/distance", "33"}}},
                            {"format", format}};
        const WireReply file = preview.Post("render", still.dump());
        ASSERT_EQ(file.status, 200) << file.body;
        Render({input, "-o", "still." + format, "--set", "style/distance=33"});
        EXPECT_TRUE(file.body == ReadBytes(folder_ / ("still." + format))) << format;
    }
}

TEST_F(PreviewTime, ASequenceIsShownFrameByFrame) {
    WriteLayer(folder_ / "in.0003.png", 6, 4, {255, 200, 100, 50});
    WriteLayer(folder_ / "in.0004.png", 6, 4, {255, 20, 100, 250});
    WriteLayer(folder_ / "in.0006.png", 6, 4, {128, 20, 10, 90});
    const RunningPreview preview(folder_, {"in.####.png", "--frames", "3-6", "--rate", "12", "--renderer", "cpu"});
    Page page(preview);
    json request = Beginning(preview, page);
    const json panel = preview.Get("panel").Json();
    EXPECT_EQ(panel["layer"]["moving"], true);
    EXPECT_EQ(panel["frames"], "3-6");
    const json timeline = preview.Post("timeline", request.dump()).Json();
    EXPECT_EQ(timeline["numbers"], (json{3, 4, 5, 6}));
    EXPECT_EQ(timeline["missing"], (json{2}));
    EXPECT_EQ(timeline["framesPerSecond"], 12);
    for (const int frame : {3, 4, 6}) {
        request["frame"] = frame - 3;
        const json drawn = page.DrawThis(request);
        ASSERT_TRUE(drawn.is_object());
        Render({"in.####.png", "-o", "out.####.png", "--rate", "12", "--frames", std::to_string(frame)});
        const auto rendered = folder_ / ("out.000" + std::to_string(frame) + ".png");
        EXPECT_TRUE(page.Pixels(drawn) == RgbaOf(Read(rendered).pixels)) << frame;
        request["format"] = "png";
        EXPECT_TRUE(preview.Post("render", request.dump()).body == ReadBytes(rendered)) << frame;
        const std::string original =
            preview.Get("original?layer=1&frames=3-6&rate=12&frame=" + std::to_string(frame - 3)).body;
        EXPECT_TRUE(original == RgbaOf(Read(folder_ / ("in.000" + std::to_string(frame) + ".png")).pixels));
    }
    request["frame"] = 2;
    const json failure = page.DrawThis(request, "failure");
    EXPECT_THAT(failure["sentence"].get<std::string>(), HasSubstr("in.0005.png"));
    request["frame"] = 0;
    EXPECT_TRUE(page.DrawThis(request).is_object()) << "the session goes on";
}

TEST_F(PreviewTime, AnEffectThatLooksAtOtherTimesSeesThem) {
    for (const int frame : {1, 2, 3}) {
        WriteLayer(folder_ / ("in.000" + std::to_string(frame) + ".png"), 5, 3,
                   {255, static_cast<A_u_char>(40 * frame), 100, 50});
    }
    const std::vector<std::string> module = {"--module", TestModule("looking_painter")};
    const RunningPreview preview(folder_, {"in.####.png", module[0], module[1]});
    Page page(preview);
    json request = Beginning(preview, page);
    for (const int frame : {3, 1, 2}) {
        request["frame"] = frame - 1;
        const json drawn = page.DrawThis(request);
        ASSERT_TRUE(drawn.is_object());
        Render({"in.####.png", "-o", "out.####.png", "--frames", std::to_string(frame), module[0], module[1]});
        EXPECT_TRUE(page.Pixels(drawn) == RgbaOf(Read(folder_ / ("out.000" + std::to_string(frame) + ".png")).pixels))
            << frame;
    }
}

TEST_F(PreviewTime, AClipIsShownFrameByFrame) {
    NEEDS_FFMPEG();
    const ProgramRun made = [&] {
        ProgramStart start;
        start.folder = folder_.Path().string();
        return RunProgram(Words("ffmpeg -nostdin -v error -y " + Clip("-c:v ffv1 -pix_fmt bgra clip.mkv")), start);
    }();
    ASSERT_EQ(made.code, 0) << made.errors;
    const RunningPreview preview(folder_, {"clip.mkv", "--renderer", "cpu", "--set", "style/distance=5"});
    Page page(preview);
    json request = Beginning(preview, page);
    const json panel = preview.Get("panel").Json();
    EXPECT_EQ(panel["frames"], "0-11");
    EXPECT_EQ(panel["rate"], "30000/1001");
    EXPECT_EQ(panel["rateIsFixed"], true);
    for (const int frame : {7, 2}) {
        request["frame"] = frame;
        const json drawn = page.DrawThis(request);
        ASSERT_TRUE(drawn.is_object());
        Render({"clip.mkv", "-o", "out.####.png", "--set", "style/distance=5", "--frames", std::to_string(frame)});
        const auto rendered = folder_ / ("out.000" + std::to_string(frame) + ".png");
        EXPECT_TRUE(page.Pixels(drawn) == RgbaOf(Read(rendered).pixels)) << frame;
        request["format"] = "png";
        EXPECT_TRUE(preview.Post("render", request.dump()).body == ReadBytes(rendered)) << frame;
    }
}

TEST_F(PreviewTime, ACanvasAndATexturesPlaceAreThoseOfRender) {
    const std::string input = LAYERS "/card.png";
    const std::vector<std::string> both = {
        "--texture", LAYERS "/dusk.jpg", "--texture-at", "40,-12.5",
        "--canvas",  "-20,-10,300,200",  "--set",        "texture/blend-mode=normal"};
    std::vector<std::string> arguments = {input, "--renderer", "cpu"};
    arguments.insert(arguments.end(), both.begin(), both.end());
    const RunningPreview preview(folder_, arguments);
    Page page(preview);
    const json panel = preview.Get("panel").Json();
    EXPECT_EQ(panel["renderArguments"],
              (json{"--renderer", "cpu", "--canvas", "-20,-10,300,200", "--texture-at", "40,-12.5"}));
    ASSERT_EQ(page.Draw(panel["values"], false, 1, 2), 202);
    const json drawn = page.Await("frame");
    ASSERT_TRUE(drawn.is_object());
    EXPECT_EQ(drawn["rect"], (json{-20, -10, 300, 200}));
    arguments = {input, "-o", "out.png"};
    arguments.insert(arguments.end(), both.begin(), both.end());
    Render(arguments);
    EXPECT_TRUE(page.Pixels(drawn) == RgbaOf(Read(folder_ / "out.png").pixels));
}

TEST_F(PreviewTime, PresetsComeAndGo) {
    const RunningPreview preview(folder_, {LAYERS "/card.png", "--preset", "moving.json", "--renderer", "cpu"});
    Page page(preview);
    const json request = Beginning(preview, page);
    const WireReply saved = preview.Post("preset", request.dump());
    ASSERT_EQ(saved.status, 200);
    WriteText(folder_ / "saved.json", saved.body);
    for (const char* preset : {"moving", "saved"}) {
        Render({LAYERS "/card.png", "-o", std::string(preset) + ".png", "--preset", std::string(preset) + ".json",
                "--frames", "5"});
    }
    EXPECT_TRUE(ReadBytes(folder_ / "moving.png") == ReadBytes(folder_ / "saved.png"));

    const json loaded = preview.Post("load?name=moving.json", kMoving).Json();
    EXPECT_EQ(loaded["keyframes"]["style/angle"].size(), 2U);
    EXPECT_EQ(loaded["values"], (json{{"style/softness", "12"}}));
    EXPECT_EQ(loaded["frames"], "1-9");
    const json seconds = preview
                             .Post("load?name=s.json", R"({"version": 2, "keyframes": {"style/angle": [
        {"seconds": 0.5, "value": 1}, {"seconds": 1, "value": 2}]}})")
                             .Json();
    EXPECT_EQ(seconds["frames"], "12-24") << "in frames of 1/24 second";
    const WireReply wrong = preview.Post("load?name=wrong.json", R"({"version": 1, "values": {"style/nothing": 1}})");
    EXPECT_EQ(wrong.status, 422);
    EXPECT_THAT(wrong.Error(), HasSubstr("wrong.json"));
    EXPECT_EQ(preview.Post("load?name=no.json", "no preset").status, 500);

    WriteText(folder_ / "moving.json", R"({"version": 1, "values": {"style/distance": 77}})");
    std::filesystem::last_write_time(folder_ / "moving.json",
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(page.NextOf("preset")["name"], "moving.json");
    EXPECT_EQ(preview.Post("reload", "").Json()["values"], (json{{"style/distance", "77"}}));
    std::filesystem::remove(folder_ / "moving.json");
    const WireReply gone = preview.Post("reload", "");
    EXPECT_EQ(gone.status, 500);
    EXPECT_THAT(gone.Error(), HasSubstr("moving.json"));
}

TEST_F(PreviewTime, CurvesHaveTheValuesOfTheFrames) {
    const RunningPreview preview(folder_, {LAYERS "/card.png", "--preset", "moving.json", "--renderer", "cpu"});
    Page page(preview);
    const json curves = preview.Post("curves", Beginning(preview, page).dump()).Json();
    EXPECT_EQ(curves["frames"].front(), 1.0);
    EXPECT_EQ(curves["frames"].back(), 9.0);
    const json& angle = curves["rows"]["style/angle"];
    EXPECT_EQ(angle.size(), curves["frames"].size());
    EXPECT_EQ(angle.front(), (json{20.0}));
    EXPECT_EQ(angle.back(), (json{200.0}));
    EXPECT_FALSE(curves["rows"].contains("style/softness"));
}

TEST_F(PreviewTime, OnlyItsPageIsAnswered) {
    const RunningPreview preview(folder_, {LAYERS "/card.png", "--preset", "moving.json", "--renderer", "cpu"});
    Page page(preview);
    const std::string body = Beginning(preview, page).dump();
    const std::string port = std::to_string(preview.Port());
    for (const std::string path : {"timeline", "curves", "preset", "load?name=a.json", "named?name=neon", "reload",
                                   "render", "canvas", "covers"}) {
        const std::string line = "POST /" + preview.Token() + "/" + path;
        const std::string wrong = "POST /" + std::string(preview.Token().size(), '0') + "/" + path;
        EXPECT_EQ(preview.Ask(wrong, {}, body).status, 403) << path;
        EXPECT_EQ(preview.Ask(line, {{"Host", "attacker.example:" + port}}, body).status, 403) << path;
        EXPECT_EQ(preview.Ask(line, {{"Origin", "http://attacker.example"}}, body).status, 403) << path;
        EXPECT_EQ(preview.Ask(line, {{"Sec-Fetch-Site", "cross-site"}}, body).status, 403) << path;
        EXPECT_EQ(preview.Ask(line, {{"Content-Length", "2000000"}}).status, 413) << path;
        EXPECT_EQ(preview.Get(path).status, 404) << path << ": it is no page";
        // A text whose nesting would take the stack.
        if (path != "reload" && !path.starts_with("named")) {
            const WireReply deep = preview.Post(path, std::string(1'000'000, '['));
            EXPECT_GE(deep.status, 400) << path;
            EXPECT_FALSE(deep.Error().empty()) << path;
        }
    }
    EXPECT_EQ(preview.Post("timeline", body).status, 200) << "the session goes on";
}

TEST_F(PreviewTime, WhatIsWrongIsRefusedInOneSentence) {
    const RunningPreview preview(folder_, {LAYERS "/card.png", "--renderer", "cpu"});
    Page page(preview);
    json request = {{"client", page.Client()},
                    {"serial", 1},
                    {"moving", false},
                    {"layer", 1},
                    {"texture", 0},
                    {"frame", 0},
                    {"frames", "1-48"},
                    {"rate", "24"},
                    {"values", json::object()}};
    const auto refused = [&](const char* path, const char* field, const json& value) {
        json changed = request;
        changed[field] = value;
        return preview.Post(path, changed.dump());
    };
    EXPECT_THAT(refused("timeline", "frames", "many").Error(), HasSubstr("many"));
    EXPECT_THAT(refused("timeline", "frames", "1-30000").Error(), HasSubstr("20000"));
    EXPECT_THAT(refused("timeline", "rate", "fast").Error(), HasSubstr("fast"));
    EXPECT_THAT(refused("render", "format", "gif").Error(), HasSubstr("png"));
    request["format"] = "png";
    EXPECT_THAT(refused("render", "layer", 0).Error(), HasSubstr("no image"));
    EXPECT_THAT(refused("render", "canvas", "wide").Error(), HasSubstr("wide"));
    EXPECT_THAT(refused("render", "frame", 48).Error(), HasSubstr("48 frames"));
    EXPECT_THAT(refused("render", "keyframes", "{\"style/angle\": 3}").Error(), HasSubstr("style/angle"));
    EXPECT_THAT(refused("curves", "keyframes", "no JSON").Error(), HasSubstr("JSON"));
    for (const auto& [field, value] : {std::pair<const char*, json>("keyframes", 3),
                                       {"frame", "1"},
                                       {"downsample", 65},
                                       {"downsample", -1},
                                       {"canvas", json::object()}}) {
        EXPECT_EQ(refused("draw", field, value).status, 400) << field;
        EXPECT_EQ(refused("render", field, value).status, 400) << field;
    }
    // A row that must not vary over time.
    const json panel = preview.Get("panel").Json();
    int still = 0;
    for (const json& row : panel["rows"]) {
        if (!row.contains("default") || row.contains("animatable")) continue;
        ++still;
        const json keys = {{row["key"].get<std::string>(), {{{"frame", 1}, {"value", row["default"]}}}}};
        EXPECT_THAT(refused("render", "keyframes", keys.dump()).Error(), HasSubstr("cannot have keyframes")) << row;
    }
    EXPECT_GT(still, 0);
    EXPECT_EQ(preview.Post("render", request.dump()).status, 200) << "the session goes on";
}

}  // namespace

}  // namespace umbrant::host
