// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant panel` as a person at a shell uses it.

#include <gmock/gmock.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "tests/host/cli/in_process.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// The indices of the rows that `panel --json` lists.
std::vector<int> RowsOf(const Folder& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"panel", "--json"});
    const Outcome run = RunInProcess(folder, arguments);
    EXPECT_EQ(run.code, 0) << run.err;
    std::vector<int> indices;
    const auto rows = ParseJsonOrDiscard(run.out);
    EXPECT_TRUE(rows.is_array()) << run.out;
    for (const auto& row : rows) indices.push_back(row["index"].get<int>());
    return indices;
}

TEST(CliPanel, WritesAPictureAndPrintsItsPath) {
    const Folder folder;
    const Outcome run = RunInProcess(folder, {"panel", "-o", "panel.png"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.out, "panel.png\n");
    EXPECT_EQ(run.err, "");
    const Picture picture = Read(folder / "panel.png");
    EXPECT_EQ(picture.frameWidth, 375);
    EXPECT_GT(picture.frameHeight, 300);
}

TEST(CliPanel, WidthScaleThemeAndTwirls) {
    const Folder folder;
    const Outcome run = RunInProcess(
        folder, {"panel", "-o", "panel.png", "--width", "400", "--scale", "2", "--theme", "light", "--close", "all"});
    EXPECT_EQ(run.code, 0) << run.err;
    const Picture picture = Read(folder / "panel.png");
    EXPECT_EQ(picture.frameWidth, 800);
    EXPECT_EQ(picture.frameHeight, 2 * (28 + 7 * 22 + 10)) << "seven closed groups";
}

TEST(CliPanel, RowsFollowTheShadowType) {
    const Folder folder;
    const auto has = [](const std::vector<int>& rows, int index) {
        return std::find(rows.begin(), rows.end(), index) != rows.end();
    };
    for (const char* type : {"normal", "inner", "radial"}) {
        SCOPED_TRACE(type);
        const auto rows = RowsOf(folder, {"--open", "all", "--set", std::string("style/shadow-type=") + type});
        EXPECT_EQ(has(rows, 15), std::string(type) != "radial");
        EXPECT_EQ(has(rows, 16), std::string(type) == "radial");
        EXPECT_EQ(has(rows, 20), std::string(type) == "inner");
        EXPECT_TRUE(has(rows, 2));
        for (int index : {46, 53, 54, 59}) EXPECT_FALSE(has(rows, index)) << index;
    }
    EXPECT_FALSE(has(RowsOf(folder, {}), 2)) << "About & Support begins closed";
    EXPECT_TRUE(has(RowsOf(folder, {"--open", "about-support"}), 2));
}

TEST(CliPanel, JsonTellsWhatIsDisabled) {
    const Folder folder;
    const Outcome run =
        RunInProcess(folder, {"panel", "--json", "--open", "compositing", "--set", "style/shadow-type=inner"});
    const auto rows = ParseJsonOrDiscard(run.out);
    ASSERT_TRUE(rows.is_array()) << run.out << run.err;
    for (const auto& row : rows) {
        EXPECT_EQ(row["disabled"].get<bool>(), row["index"] == 49) << row.dump();
        if (row["index"] != 17) continue;
        EXPECT_EQ(row["control"], "slider");
        EXPECT_EQ(row["name"], "Distance");
        EXPECT_EQ(row["value"], "250.00");
        EXPECT_EQ(row["open"], true);
    }
}

/// The folder alone in the search path.
ProgramOptions OpenersOf(const Folder& folder) {
    ProgramOptions run;
    run.environment = {"PATH=" + folder.Path().string()};
    return run;
}

struct PressRow {
    const char* button;
    const char* face;
};

TEST(CliPanel, PressingAButtonOpensItsPage) {
    const Folder folder;
    const std::filesystem::path given = folder / "given";
    std::ofstream(folder / "xdg-open") << "#!/bin/sh\necho \"$1\" > '" << given.string() << "'\n";
    std::filesystem::permissions(folder / "xdg-open", std::filesystem::perms::owner_all);
    std::vector<std::string> pages;
    for (const PressRow& row : {PressRow{"about-support/product-page", "Product Page"},
                                {"#4", "Free Plugins"},
                                {"get-support", "Get Support"}}) {
        SCOPED_TRACE(row.button);
        std::filesystem::remove(given);
        const Outcome run = RunUmbrant(folder, {"panel", "--press", row.button}, OpenersOf(folder));
        EXPECT_EQ(run.code, 0) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, std::string("pressed '") + row.face + "'\n");
        for (int wait = 0; wait < 30000 && ReadBytes(given).empty(); ++wait) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        pages.push_back(ReadBytes(given));
        EXPECT_THAT(pages.back(), ::testing::StartsWith("https://"));
    }
    EXPECT_NE(pages[0], pages[1]);
    EXPECT_NE(pages[0], pages[2]);
    EXPECT_NE(pages[1], pages[2]);
}

TEST(CliPanel, WithoutAnOpenerAPressDoesNothingQuietly) {
    const Folder folder;
    const Outcome run = RunUmbrant(folder, {"panel", "--press", "#3"}, OpenersOf(folder));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "pressed 'Product Page'\n");
}

struct BadRow {
    const char* name;
    std::vector<std::string> arguments;
    int code;
    const char* says;
};

TEST(CliPanel, BadUsageIsToldAndLeavesNoFile) {
    const BadRow rows[] = {
        {"nothing to do", {}, 2, "nothing to do; use -o FILE, --json or --press BUTTON"},
        {"an unknown theme", {"-o", "a.png", "--theme", "pink"}, 2, "--theme"},
        {"too narrow", {"-o", "a.png", "--width", "319"}, 2, "--width"},
        {"too large", {"-o", "a.png", "--scale", "5"}, 2, "--scale"},
        {"an unknown row", {"-o", "a.png", "--set", "style/distanc=1"}, 2, "style/distance"},
        {"a value out of range", {"-o", "a.png", "--set", "style/distance=-1"}, 2, "style/distance"},
        {"no value", {"-o", "a.png", "--set", "style/distance"}, 2, "PATH=VALUE"},
        {"a row without a twirl", {"-o", "a.png", "--open", "style/color"}, 2, "cannot be opened or closed"},
        {"an unknown group", {"-o", "a.png", "--close", "stile"}, 2, "style"},
        {"no button", {"-o", "a.png", "--press", "style/color"}, 2, "is no button"},
        {"an unknown format", {"-o", "a.gif"}, 3, "a.gif"},
        {"an unknown folder", {"-o", "none/a.png"}, 3, "none"},
        {"no module", {"-o", "a.png", "--module", "missing.so"}, 4, "missing.so"},
    };
    for (const BadRow& row : rows) {
        SCOPED_TRACE(row.name);
        const Folder folder;
        std::vector<std::string> arguments = {"panel"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const Outcome run = RunInProcess(folder, arguments);
        EXPECT_EQ(run.code, row.code) << run.err;
        EXPECT_THAT(run.err, HasSubstr(row.says));
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    }
}

TEST(CliPanel, AnotherEffectsPanelIsDrawnToo) {
    const Folder folder;
    const Outcome run =
        RunInProcess(folder, {"panel", "-o", "panel.png", "--open", "all", "--module", TestModule("painter")});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_GT(Read(folder / "panel.png").frameHeight, 28);
}

TEST(CliPanel, ShowsAPresetAsItIsAtAMoment) {
    const Folder folder;
    WriteBytes(folder / "moving.json", R"({ "version": 2, "values": { "style/softness": "12" }, "keyframes": {
        "style/distance": [ { "frame": 0, "value": 100 }, { "frame": 48, "value": 196 } ] } })");
    const auto value = [&](const char* name, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"panel", "--json", "--open", "all", "--preset", "moving.json"});
        const Outcome run = RunInProcess(folder, arguments);
        EXPECT_EQ(run.code, 0) << run.err;
        for (const auto& row : ParseJson(run.out)) {
            if (row["name"] == name) return row["value"].get<std::string>();
        }
        return std::string("no such row");
    };
    EXPECT_THAT(value("Softness", {}), HasSubstr("12"));
    EXPECT_THAT(value("Distance", {}), HasSubstr("100"));
    EXPECT_THAT(value("Distance", {"--time", "1"}), HasSubstr("148"));
    EXPECT_THAT(value("Distance", {"--time", "1", "--rate", "12"}), HasSubstr("124"));
    EXPECT_THAT(value("Distance", {"--time", "1", "--zero-frame", "12"}), HasSubstr("172"));
    EXPECT_THAT(value("Distance", {"--time", "9000"}), HasSubstr("196"));
    EXPECT_THAT(value("Distance", {"--time", "1", "--set", "style/distance=7"}), HasSubstr("7"));

    const struct {
        const char* name;
        std::vector<std::string> arguments;
        int code;
        const char* sentence;
    } rows[] = {
        {"no moment without a preset", {"--time", "1"}, 2, "--time requires --preset"},
        {"a moment that is none",
         {"--preset", "moving.json", "--time", "-1"},
         2,
         "'-1' is not a number from 0 to 86400"},
        {"a rate that is none", {"--preset", "moving.json", "--rate", "fast"}, 2, "'fast' is not a frame rate"},
        {"no such file", {"--preset", "none.json"}, 3, "'none.json'"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments = {"panel", "-o", "panel.png"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const Outcome run = RunInProcess(folder, arguments);
        EXPECT_EQ(run.code, row.code);
        EXPECT_THAT(run.err, HasSubstr(row.sentence));
        EXPECT_FALSE(std::filesystem::exists(folder / "panel.png"));
    }
}

}  // namespace

}  // namespace umbrant::host
