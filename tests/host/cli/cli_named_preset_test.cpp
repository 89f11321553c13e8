// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Presets by name: which file a name means, the list, what stands in the way, and how they look.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "host/image/similarity.h"
#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;

constexpr char kMine[] = R"({"version": 1, "values": {"style/distance": 77}})";

/// The program with this folder's `config` as the user's folder of settings.
Outcome RunWithConfig(const Folder& folder, std::vector<std::string> arguments) {
    return RunUmbrant(folder, std::move(arguments),
                      {{"XDG_CONFIG_HOME=" + std::filesystem::absolute(folder / "config").string()}, ""});
}

Outcome ValuesOf(const Folder& folder, const std::string& preset) {
    return RunWithConfig(folder, {"params", "--json", "--values", "--preset", preset});
}

std::filesystem::path MakeUsersFolder(const Folder& folder) {
    const std::filesystem::path presets = folder / "config/umbrant/presets";
    std::filesystem::create_directories(presets);
    return presets;
}

/// As one looks at it: on an opaque ground.
Picture OverGrey(Picture picture) {
    for (int y = 0; y < picture.pixels.Height(); ++y) {
        for (int x = 0; x < picture.pixels.Width(); ++x) {
            PF_Pixel& pixel = Pixel8(picture.pixels, x, y);
            for (A_u_char* channel : {&pixel.red, &pixel.green, &pixel.blue}) {
                *channel = static_cast<A_u_char>((*channel * pixel.alpha + 128 * (255 - pixel.alpha) + 127) / 255);
            }
            pixel.alpha = 255;
        }
    }
    return picture;
}

std::vector<std::string> Names(const json& list) {
    std::vector<std::string> names;
    for (const json& preset : list) names.push_back(preset["name"]);
    return names;
}

TEST(CliNamedPreset, TheInstalledOnesAreListedAndEachIsAPresetOfTheEffect) {
    const Folder folder;
    const Outcome listed = RunWithConfig(folder, {"presets", "--json"});
    ASSERT_EQ(listed.code, 0) << listed.err;
    const json list = ParseJson(listed.out);
    const std::vector<std::string> names = Names(list);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (const char* name : {"soft-drop", "long-flat", "long-faded", "neon", "paper-cut", "inner-press", "inner-glow",
                             "radial-burst", "light-rays", "texture", "double", "animated-reveal"}) {
        EXPECT_THAT(names, Contains(name));
    }
    for (const json& preset : list) {
        EXPECT_EQ(preset["isYours"], false);
        const Outcome byName = ValuesOf(folder, preset["name"]);
        const Outcome byFile = ValuesOf(folder, preset["file"]);
        EXPECT_EQ(byName.code, 0) << byName.err;
        EXPECT_EQ(byName.out, byFile.out);
        EXPECT_NE(byName.out, ValuesOf(folder, "").out) << preset["name"];
    }
    const auto soft = std::ranges::find(list, "soft-drop", [](const json& preset) { return preset["name"]; });
    ASSERT_NE(soft, list.end());
    const Outcome text = RunWithConfig(folder, {"presets"});
    EXPECT_EQ(text.code, 0);
    EXPECT_THAT(text.out, HasSubstr("\nsoft-drop        " + (*soft)["file"].get<std::string>() + "\n"));
}

TEST(CliNamedPreset, TheUsersOwnIsFoundAfterTheInstalledOnes) {
    const Folder folder;
    const auto users = MakeUsersFolder(folder);
    WriteBytes(users / "mine.json", kMine);
    WriteBytes(users / "soft-drop.json", kMine);
    WriteBytes(users / "notes.txt", "no preset");
    const json list = ParseJson(RunWithConfig(folder, {"presets", "--json"}).out);
    EXPECT_EQ(list.back()["name"], "mine");
    EXPECT_EQ(list.back()["isYours"], true);
    EXPECT_EQ(std::ranges::count(Names(list), "soft-drop"), 1);
    EXPECT_EQ(ParseJson(ValuesOf(folder, "mine").out)["values"]["style/distance"], 77);
    EXPECT_NE(ParseJson(ValuesOf(folder, "soft-drop").out)["values"]["style/distance"], 77);
}

TEST(CliNamedPreset, ANameThatIsAlsoAFileIsRefused) {
    const Folder folder;
    WriteBytes(folder / "soft-drop", kMine);
    const Outcome outcome = ValuesOf(folder, "soft-drop");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err,
                HasSubstr("umbrant: 'soft-drop' is the name of a preset and of a file in this folder; write "
                          "'./soft-drop' for the file, or '"));
    EXPECT_EQ(ParseJson(ValuesOf(folder, "./soft-drop").out)["values"]["style/distance"], 77);
    // A folder of that name is no file that could be meant.
    std::filesystem::remove(folder / "soft-drop");
    std::filesystem::create_directory(folder / "soft-drop");
    EXPECT_EQ(ValuesOf(folder, "soft-drop").code, 0);
}

TEST(CliNamedPreset, FilesWithAnyNameAreReadAsBefore) {
    const Folder folder;
    WriteBytes(folder / "plain", kMine);
    WriteBytes(folder / "neon.json", kMine);
    for (const char* file : {"plain", "neon.json", "./plain"}) {
        EXPECT_EQ(ParseJson(ValuesOf(folder, file).out)["values"]["style/distance"], 77) << file;
    }
}

TEST(CliNamedPreset, AnUnknownNameHasTheClosestOne) {
    const Folder folder;
    const Outcome outcome = ValuesOf(folder, "soft-dorp");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.err,
              "umbrant: there is no preset 'soft-dorp' and no file of this name; did you mean 'soft-drop'? `umbrant "
              "presets` lists the presets\n");
}

TEST(CliNamedPreset, AUsersFolderThatCannotBeReadIsReported) {
    const Folder folder;
    // A loop of links stops also a user who may read everything.
    std::filesystem::create_directories(folder / "config/umbrant");
    std::filesystem::create_symlink("presets", folder / "config/umbrant/presets");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"presets"}, {"params", "--json", "--values", "--preset", "mine"}}) {
        const Outcome outcome = RunWithConfig(folder, arguments);
        EXPECT_EQ(outcome.code, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err,
                    HasSubstr("config/umbrant/presets' cannot be read: Too many levels of symbolic links; make "
                              "it readable, or name the file of a preset with its folder\n"));
    }
}

TEST(CliNamedPreset, NamesAreCompletedUntilAPathIsTyped) {
    const Folder folder;
    const Outcome names = RunWithConfig(folder, {"__complete", "--", "render", "--preset", "lo"});
    EXPECT_THAT(names.out, HasSubstr("long-faded\n"));
    EXPECT_THAT(names.out, HasSubstr(":words\t"));
    EXPECT_EQ(RunWithConfig(folder, {"__complete", "--", "render", "--preset", "./"}).out, ":files\t\n");
}

TEST(CliNamedPreset, TheInstalledOnesLookDifferent) {
    const Folder folder;
    for (const char* layer : {"title", "card"}) {
        std::vector<std::pair<std::string, Picture>> results;
        for (const json& preset : ParseJson(RunWithConfig(folder, {"presets", "--json"}).out)) {
            const std::string name = preset["name"];
            if (name == "turning-title") continue;
            const Outcome drawn =
                RunWithConfig(folder, {"render", std::string(ASSETS) + "/layers/" + layer + ".png", "-o", name + ".png",
                                       "--canvas", "layer", "--downsample", "8", "--renderer", "cpu", "--time", "2",
                                       "--preset", name, "--texture", std::string(ASSETS) + "/layers/dusk.jpg"});
            ASSERT_EQ(drawn.code, 0) << drawn.err;
            results.emplace_back(name, OverGrey(Read(folder / (name + ".png"))));
        }
        EXPECT_EQ(results.size(), 12u);
        for (std::size_t i = 0; i < results.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_LT(*Ssim(results[i].second, results[j].second), 0.95)
                    << layer << ": " << results[i].first << " and " << results[j].first;
            }
        }
    }
}

}  // namespace

}  // namespace umbrant::host
