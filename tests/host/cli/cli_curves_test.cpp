// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Presets with keyframes on the command line: `curves`, `params`, and refusals with the real module's rows.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using Json = nlohmann::json;

constexpr char kMovingColor[] = R"({ "version": 2, "keyframes": {
    "paint/border": [ { "frame": 1, "value": 0 }, { "frame": 5, "value": 4 } ],
    "paint/color": [ { "frame": 1, "value": "#000000", "out": "ease" }, { "frame": 9, "value": "#404040" } ] } })";

class CliCurves : public testing::Test {
 protected:
    CliCurves() { WriteBytes(folder_ / "moving.json", kMovingColor); }
    Outcome Curves(std::vector<std::string> arguments, const std::string& module = TestModule("painter")) const {
        arguments.insert(arguments.begin(), {"curves", "--module", module});
        return RunInProcess(folder_, arguments);
    }
    const Folder folder_;
};

TEST_F(CliCurves, DrawsAPlotForEachRow) {
    const Outcome outcome = Curves({"--preset", "moving.json", "-o", "curves.png"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "curves.png\n");
    const Picture picture = Read(folder_ / "curves.png");
    EXPECT_EQ(picture.pixels.Width(), 960);
    EXPECT_EQ(picture.pixels.Height(), 30 + 2 * 150);
    EXPECT_EQ(
        Curves({"--preset", "moving.json", "-o", "curves.png", "--width", "500", "--set", "paint/color=#123456"}).code,
        0);
    EXPECT_EQ(Read(folder_ / "curves.png").pixels.Width(), 500);
    EXPECT_EQ(Read(folder_ / "curves.png").pixels.Height(), 30 + 150) << "a row that is set keeps still";
}

TEST_F(CliCurves, TellsTheValuesOfEachFrame) {
    Outcome outcome = Curves({"--preset", "moving.json", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    Json report = ParseJson(outcome.out);
    EXPECT_EQ(report["framesPerSecond"], 24);
    EXPECT_EQ(report["frames"], Json({1, 2, 3, 4, 5, 6, 7, 8, 9})) << "from the first key to the last";
    EXPECT_EQ(report["rows"]["paint/border"], Json({0, 1, 2, 3, 4, 4, 4, 4, 4}));
    EXPECT_EQ(report["rows"]["paint/color"][8], "#404040");

    outcome = Curves({"--preset", "moving.json", "--json", "--frames", "3,-1", "--rate", "25", "-o", "c.png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    report = ParseJson(outcome.out);
    EXPECT_EQ(report["rows"]["paint/border"], Json({2, 0})) << "keys in frames stay on their frames";
    EXPECT_TRUE(std::filesystem::exists(folder_ / "c.png"));
}

TEST_F(CliCurves, SecondsFollowTheRate) {
    WriteBytes(folder_ / "s.json", R"({ "version": 2, "keyframes": {
        "paint/border": [ { "seconds": 0, "value": 0 }, { "seconds": 1, "value": 10 } ] } })");
    for (const auto& [rate, frame] : {std::pair("10", "5"), std::pair("50", "25")}) {
        const Outcome outcome = Curves({"--preset", "s.json", "--json", "--rate", rate, "--frames", frame});
        EXPECT_EQ(ParseJson(outcome.out)["rows"]["paint/border"], Json::array({5})) << rate;
    }
    const Outcome outcome =
        Curves({"--preset", "s.json", "--json", "--rate", "10", "--zero-frame", "100", "--frames", "105"});
    EXPECT_EQ(ParseJson(outcome.out)["rows"]["paint/border"], Json::array({5}));
}

TEST_F(CliCurves, WrongUses) {
    WriteBytes(folder_ / "still.json", R"({"version": 1, "values": {"paint/border": 1}})");
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        int code;
        const char* sentence;
    } rows[] = {
        {"nothing to do", {"--preset", "moving.json"}, 2, "nothing to do; use -o FILE or --json"},
        {"no preset", {"-o", "c.png"}, 2, "--preset is required"},
        {"a preset that is not there", {"--preset", "none.json", "--json"}, 3, "there is no such file"},
        {"nothing moves",
         {"--preset", "still.json", "--json"},
         2,
         "there are no curves to draw: 'still.json' has no keyframes"},
        {"wrong frames", {"--preset", "moving.json", "--json", "--frames", "1-"}, 2, "'1-' is not a set of frames"},
        {"a wrong rate", {"--preset", "moving.json", "--json", "--rate", "0"}, 2, "'0' is not a frame rate"},
        {"a wrong format", {"--preset", "moving.json", "-o", "c.gif"}, 3, "'.gif' is not a format"},
        {"too narrow", {"--preset", "moving.json", "-o", "c.png", "--width", "10"}, 2, "--width"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Curves(row.arguments);
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(outcome.out, "");
    }
}

TEST_F(CliCurves, RowsThatCannotVaryAreRefusedByName) {
    for (const char* path : {"style/shadow-type", "quality/prioritise"}) {
        WriteBytes(folder_ / "p.json",
                   std::string(R"({"version": 2, "keyframes": {")") + path + R"(": [{"frame": 1, "value": 1}]}})");
        const Outcome outcome = Curves({"--preset", "p.json", "--json"}, UMBRANT_MODULE_FILE);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err,
                    HasSubstr("the preset 'p.json' has a mistake: line 1, column 30: '" + std::string(path) +
                              "' cannot have keyframes: the effect does not let it vary over time"));
    }
}

TEST_F(CliCurves, EveryRowThatCanVaryMoves) {
    // The module itself says which; each is given its own default as a key.
    const Outcome listed = RunInProcess(folder_, {"params", "--json", "--module", UMBRANT_MODULE_FILE});
    ASSERT_EQ(listed.code, 0) << listed.err;
    Json keyframes = Json::object();
    for (const Json& row : ParseJson(listed.out)) {
        if (!row.contains("default") || (row["flagBits"].get<int>() & 2) != 0) continue;
        if (row["type"] == "popup" && row["items"].size() == 1) continue;
        const std::string path = row.value("path", "");
        keyframes[path.empty() ? "#" + std::to_string(row["index"].get<int>()) : path] = {
            {{"frame", 1}, {"value", row["default"]}}, {{"frame", 2}, {"value", row["default"]}}};
    }
    EXPECT_GT(keyframes.size(), 20u);
    WriteBytes(folder_ / "all.json", Json({{"version", 2}, {"keyframes", keyframes}}).dump());
    const Outcome outcome = Curves({"--preset", "all.json", "--json"}, UMBRANT_MODULE_FILE);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(ParseJson(outcome.out)["rows"].size(), keyframes.size());
}

TEST_F(CliCurves, ParamsWritesKeyframesBack) {
    const std::vector<std::string> ask = {"params",  "--json", "--values", "--module", TestModule("painter"),
                                          "--preset"};
    auto first = ask;
    first.insert(first.end(), {"moving.json", "--set", "paint/angle=30"});
    const Outcome once = RunInProcess(folder_, first);
    ASSERT_EQ(once.code, 0) << once.err;
    EXPECT_EQ(ParseJson(once.out)["version"], 2);
    EXPECT_EQ(ParseJson(once.out)["keyframes"].size(), 2u);
    EXPECT_EQ(ParseJson(once.out)["values"]["paint/angle"], 30);
    WriteBytes(folder_ / "again.json", once.out);
    auto second = ask;
    second.push_back("again.json");
    EXPECT_EQ(RunInProcess(folder_, second).out, once.out);
    second.insert(second.end(), {"--set", "paint/border=1", "--set", "paint/color=#010203"});
    EXPECT_EQ(ParseJson(RunInProcess(folder_, second).out)["version"], 1) << "nothing moves any more";
}

TEST_F(CliCurves, RenderMovesFromFrameToFrame) {
    WriteLayer(folder_ / "in.png", 4, 4, {255, 1, 2, 3});
    const std::vector<std::string> render = {"render",   "in.png",      "--module", TestModule("painter"),
                                             "--preset", "moving.json", "-o"};
    auto sequence = render;
    sequence.insert(sequence.end(), {"out.#.png", "--frames", "1-5", "--canvas", "frame"});
    const Outcome outcome = RunInProcess(folder_, sequence);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    for (int frame = 1; frame <= 5; ++frame) {
        EXPECT_EQ(Read(folder_ / ("out.000" + std::to_string(frame) + ".png")).pixels.Width(), 4 + 2 * (frame - 1));
    }
    auto single = render;
    single.insert(single.end(), {"single.png", "--time", "0.125", "--rate", "24"});
    ASSERT_EQ(RunInProcess(folder_, single).code, 0);
    EXPECT_EQ(Read(folder_ / "single.png").pixels.Width(), 4 + 2 * 2) << "frame 3";
    auto stopped = sequence;
    stopped.insert(stopped.end(), {"--set", "paint/border=1"});
    ASSERT_EQ(RunInProcess(folder_, stopped).code, 0);
    EXPECT_EQ(Read(folder_ / "out.0005.png").pixels.Width(), 6);
}

}  // namespace

}  // namespace umbrant::host
