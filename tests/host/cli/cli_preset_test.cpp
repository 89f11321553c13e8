// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Presets: written by `umbrant params --json --values`, read by `--preset`, refused with all their mistakes at once.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "tests/host/cli/in_process.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;

Outcome Values(const Folder& folder, std::vector<std::string> arguments, bool painter = true) {
    arguments.insert(arguments.begin(), {"params", "--json", "--values"});
    if (painter) arguments.insert(arguments.end(), {"--module", TestModule("painter")});
    return RunInProcess(folder, arguments);
}

TEST(CliPreset, TheRealModulesValuesGoRound) {
    const Folder folder;
    const Outcome written =
        Values(folder,
               {"--set", "style/distance=80.5", "--set", "style/color=#203060", "--set", "style/shadow-type=radial",
                "--set", "style/origin=12.5,-3", "--set", "opacity/opacity-start=12%"},
               false);
    ASSERT_EQ(written.code, 0) << written.err;
    const json preset = ParseJson(written.out);
    EXPECT_EQ(preset["version"], 1);
    EXPECT_EQ(preset["values"]["style/distance"], 80.5);
    EXPECT_EQ(preset["values"]["style/color"], "#203060");
    EXPECT_EQ(preset["values"]["style/shadow-type"], "radial");
    EXPECT_EQ(preset["values"]["style/origin"], "12.5,-3");
    EXPECT_EQ(preset["values"]["opacity/opacity-start"], 12);
    EXPECT_FALSE(preset["values"].contains("about-support/renderer")) << "a machine's own words are no values";
    EXPECT_FALSE(preset["values"].contains("texture/layer"));
    WriteBytes(folder / "p.json", written.out);
    const Outcome again = Values(folder, {"--preset", "p.json"}, false);
    EXPECT_EQ(again.code, 0) << again.err;
    EXPECT_EQ(again.out, written.out);
}

TEST(CliPreset, EveryDefaultGoesRound) {
    const Folder folder;
    for (const bool painter : {false, true}) {
        const Outcome written = Values(folder, {}, painter);
        ASSERT_EQ(written.code, 0) << written.err;
        WriteBytes(folder / "p.json", written.out);
        const Outcome again = Values(folder, {"--preset", "p.json"}, painter);
        EXPECT_EQ(again.code, 0) << again.err;
        EXPECT_EQ(again.out, written.out);
        EXPECT_GT(ParseJson(written.out)["values"].size(), 3u);
    }
}

TEST(CliPreset, TextsNumbersAndALaterSetting) {
    const Folder folder;
    WriteBytes(folder / "p.json", R"({"version": 1, "values": {"paint/border": 7, "#4": "1.5%, 2%"}})");
    const Outcome plain = Values(folder, {"--preset", "p.json"});
    ASSERT_EQ(plain.code, 0) << plain.err;
    EXPECT_EQ(ParseJson(plain.out)["values"]["paint/border"], 7);
    const Outcome won = Values(folder, {"--set", "paint/border=9", "--preset", "p.json"});
    EXPECT_EQ(ParseJson(won.out)["values"]["paint/border"], 9) << "wherever it is on the line";
}

TEST(CliPreset, ARenderTakesItsValues) {
    const Folder folder;
    WriteLayer(folder / "in.png", 5, 3, {255, 200, 100, 50});
    WriteBytes(folder / "p.json", R"({"version": 1, "values": {"paint/border": "2", "paint/color": "#0a141e"}})");
    const auto paint = [&](std::vector<std::string> more) {
        std::vector<std::string> all = {"render",   "in.png", "-o", "out.png", "--module", TestModule("painter"),
                                        "--preset", "p.json"};
        all.insert(all.end(), more.begin(), more.end());
        const Outcome outcome = RunInProcess(folder, all);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return Read(folder / "out.png");
    };
    Picture picture = paint({});
    EXPECT_EQ(picture.pixels.Width(), 9);
    EXPECT_EQ(Pixel8(picture.pixels, 0, 0).blue, 30);
    EXPECT_EQ(paint({"--set", "paint/border=1"}).pixels.Width(), 7);
}

struct WrongPreset {
    const char* name;
    const char* text;
    int code;
    std::vector<const char*> sentences;
};

const WrongPreset kWrongPresets[] = {
    {"several",
     R"({"version": 1, "values": {"paint/boarder": 1, "paint/border": 40001, "flaw": "leek", "paint/color": "reddish"}})",
     2,
     {"the preset 'p.json' has 4 mistakes:\n",
      "\n  line 1, column 27: there is no parameter 'paint/boarder'; closest: 'paint/border'",
      ": 'paint/border' takes 0 to 40000, not 40001\n", ": 'flaw' has no item 'leek'; closest: 'leak'",
      ": 'paint/color' takes a colour as #rrggbb, #rgb or a CSS name, not 'reddish'"}},
    {"not a number",
     R"({"version": 1, "values": {"paint/border": "nan"}})",
     2,
     {"the preset 'p.json' has a mistake: line 1, column 43: 'paint/border' takes a number from 0 to 40000, not "
      "'nan'"}},
    {"no version", R"({"values": {}})", 2, {"\"version\" is missing; this program reads versions 1 and 2"}},
    {"another version",
     R"({"version": 3, "values": {}})",
     2,
     {"version 3 is not supported; this program reads versions 1 and 2"}},
    {"a version that is a text", R"({"version": "1", "values": {}})", 2, {"version \"1\""}},
    {"no values", R"({"version": 1})", 2, {"\"values\" is missing"}},
    {"a misspelt key",
     R"({"version": 1, "value": {}, "values": {}})",
     2,
     {"there is no key 'value' in a preset; closest: 'values'"}},
    {"values in a list", R"({"version": 1, "values": []})", 2, {"\"values\" is not an object"}},
    {"a list", "[1]", 2, {"the file is not an object with \"version\" and \"values\""}},
    {"a value of no kind",
     R"({"version": 1, "values": {"paint/border": [1]}})",
     2,
     {"'paint/border' takes a string or a number, not an array"}},
    {"one row under two names",
     R"({"version": 1, "values": {"paint/border": 1, "#3": 1}})",
     2,
     {"'paint/border' and '#3' are the same parameter"}},
    {"one key twice",
     R"({"version": 1, "values": {"paint/border": 1, "paint/border": 2}})",
     2,
     {"the key 'paint/border' is repeated"}},
    {"a layer", R"({"version": 1, "values": {"#0": "1"}})", 2, {"is a layer; pass an image instead of a value"}},
    {"no JSON", "distance = 80", 3, {"cannot read the preset 'p.json': not valid JSON (parse error at line 1"}},
    {"a number that no double holds",
     R"({"version": 1, "values": {"paint/border": 1e400}})",
     3,
     {"not valid JSON (number overflow parsing '1e400')"}},
    {"an empty file", "", 3, {"cannot read the preset 'p.json': not valid JSON"}},
    {"a bare nan", R"({"version": 1, "values": {"paint/border": nan}})", 3, {"not valid JSON"}},
};

TEST(CliPreset, MistakesAreAllToldAndNothingIsDrawn) {
    for (const WrongPreset& row : kWrongPresets) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        WriteLayer(folder / "in.png", 2, 2, {255, 1, 2, 3});
        WriteBytes(folder / "p.json", row.text);
        const Outcome outcome = RunInProcess(
            folder, {"render", "in.png", "-o", "out.png", "--module", TestModule("painter"), "--preset", "p.json"});
        EXPECT_EQ(outcome.code, row.code) << outcome.err;
        for (const char* sentence : row.sentences) EXPECT_THAT(outcome.err, HasSubstr(sentence));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(folder.Entries(), 2);
    }
}

TEST(CliPreset, MissingFilesAndMissingCompanions) {
    const Folder folder;
    std::filesystem::create_directory(folder / "folder");
    Outcome outcome = Values(folder, {"--preset", "none.json"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("cannot read the preset 'none.json': there is no such file"));
    outcome = Values(folder, {"--preset", "folder"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("a folder, not a file"));
    EXPECT_EQ(RunInProcess(folder, {"params", "--values"}).code, 2);
    EXPECT_EQ(RunInProcess(folder, {"params", "--json", "--preset", "p.json"}).code, 2);
    EXPECT_EQ(RunInProcess(folder, {"params", "--set", "paint/border=1"}).code, 2);
}

TEST(CliPreset, ANulDoesNotCutTheMessage) {
    const Folder folder;
    WriteBytes(folder / "p.json", R"({"version": 1, "values": {"paint/a\u0000b": 1, "paint/border": "z"}})");
    const Outcome outcome = Values(folder, {"--preset", "p.json"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err, HasSubstr("there is no parameter 'paint/a\\u0000b'"));
    EXPECT_THAT(outcome.err, HasSubstr("'paint/border' takes a number from 0 to 40000, not 'z'\n"));
}

TEST(CliPreset, APipeIsReadToItsEndAndNoFurtherThan64MiB) {
    const Folder folder;
    const std::string pipe = (folder / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto fromPipe = [&](const std::string& program, const std::string& argument) {
        // The program waits for its reader.
        std::thread writer([&] {
            ProgramStart start;
            start.output = Stream::File(pipe);
            RunProgram({program, argument}, start);
        });
        const Outcome outcome =
            RunUmbrant(folder, {"params", "--json", "--values", "--module", TestModule("painter"), "--preset", "pipe"});
        // Where nothing has read it, the writer would wait for good.
        const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        close(reader);
        writer.join();
        return outcome;
    };
    const Outcome whole = fromPipe("echo", R"({"version": 1, "values": {"paint/border": 7}})");
    ASSERT_EQ(whole.code, 0) << whole.err;
    EXPECT_EQ(ParseJson(whole.out)["values"]["paint/border"], 7);
    const Outcome endless = fromPipe("cat", "/dev/zero");
    EXPECT_EQ(endless.code, 3);
    EXPECT_EQ(endless.err, "umbrant: cannot read the preset 'pipe': the file is larger than 64 MiB\n");
}

}  // namespace

}  // namespace umbrant::host
