// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's parameters: named, set, read and listed as the program does it, and presets from memory and files.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using umbrant::Effect;
using umbrant::Parameter;
using umbrant::ParameterKind;

TEST(LibraryParameters, AreSetFromTheTextsOfTheCommandLine) {
    struct {
        const char* path;
        const char* text;
        const char* expected;
    } const cases[] = {
        {"paint/color", "#203060", "#203060"},
        {"paint/border", "7.5", "7.5"},
        {"paint/angle", "405", "405"},
        {"paint/centre", "3,4", "3,4"},
        {"paint/centre", "10%,20%", "10%,20%"},
        {"flaw", "leak", "leak"},
        {"flaw", "1", "none"},
        {"#2", "#010203", "#010203"},
    };
    Effect effect = Painter();
    for (const auto& row : cases) {
        effect.Set(row.path, row.text);
        EXPECT_EQ(effect.Get(row.path), row.expected) << row.path << "=" << row.text;
    }
    effect.Set("paint/border", 2.25);
    EXPECT_EQ(effect.Get("paint/border"), "2.25");
    effect.Set("paint/border", 3);
    EXPECT_EQ(effect.Get("#3"), "3");
}

TEST(LibraryParameters, ResetBringsTheDefaultsBack) {
    Effect effect = Painter();
    effect.ApplyPreset(
        R"({"version": 2, "keyframes": {"paint/border": [{"frame": 0, "value": 1}, {"frame": 9, "value": 5}]}})");
    effect.Set("paint/color", "#ffffff");
    effect.Reset();
    EXPECT_EQ(effect.Get("paint/color"), "#0a141e");
    EXPECT_THAT(effect.PresetText(), testing::Not(HasSubstr("keyframes")));
}

TEST(LibraryParameters, ThePainterIsDescribed) {
    const Effect effect = Painter();
    const std::vector<Parameter> all = effect.Parameters();
    ASSERT_EQ(all.size(), 9u);  // its group's end is no row
    EXPECT_EQ(all[0].kind, ParameterKind::kLayer);
    EXPECT_FALSE(all[0].hasValue);
    EXPECT_EQ(all[1].kind, ParameterKind::kGroup);
    EXPECT_EQ(all[1].path, "paint");

    const Parameter color = effect.Find("paint/color");
    EXPECT_EQ(color.index, 2);
    EXPECT_EQ(color.kind, ParameterKind::kColor);
    EXPECT_EQ(color.name, "Color");
    EXPECT_EQ(color.depth, 1);
    EXPECT_EQ(color.defaultText, "#0a141e");
    EXPECT_THAT(color.defaultNumbers, ElementsAre(10, 20, 30));

    const Parameter border = effect.Find("#3");
    EXPECT_EQ(border.kind, ParameterKind::kNumber);
    EXPECT_EQ(border.minimum, 0);
    EXPECT_EQ(border.maximum, 40000);
    EXPECT_EQ(border.sliderMaximum, 10);
    EXPECT_TRUE(border.canVary);

    const Parameter centre = effect.Find("paint/centre");
    EXPECT_EQ(centre.kind, ParameterKind::kPoint);
    EXPECT_EQ(centre.defaultText, "50%,25%");
    EXPECT_THAT(centre.defaultNumbers, ElementsAre(50, 25));

    EXPECT_EQ(effect.Find("paint/angle").kind, ParameterKind::kAngle);
    const Parameter flaw = effect.Find("flaw");
    EXPECT_EQ(flaw.kind, ParameterKind::kPopup);
    ASSERT_EQ(flaw.items.size(), 20u);
    EXPECT_EQ(flaw.items[4], "pre-render-error");
    EXPECT_EQ(flaw.itemNames[4], "Pre-Render Error");
    EXPECT_EQ(all.back().kind, ParameterKind::kButton);
    EXPECT_FALSE(all.back().hasValue);
}

TEST(LibraryParameters, TheListIsThatOfTheProgram) {
    const Effect effect = RealEffect();
    const Folder folder;
    const Outcome listed =
        RunUmbrant(folder, {"params", "--all"}, {{std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE}, ""});
    int withValues = 0, hidden = 0;
    for (const Parameter& parameter : effect.Parameters()) {
        const std::string name = parameter.path.empty() ? "#" + std::to_string(parameter.index) : parameter.path;
        EXPECT_THAT(listed.out, HasSubstr(" " + name + " ")) << parameter.name;
        hidden += parameter.isHidden;
        if (!parameter.hasValue) continue;
        ++withValues;
        EXPECT_FALSE(parameter.defaultNumbers.empty()) << name;
        EXPECT_EQ(effect.Get(name), parameter.defaultText) << name;
        if (parameter.kind == ParameterKind::kNumber || parameter.kind == ParameterKind::kInteger) {
            EXPECT_LE(parameter.minimum, parameter.defaultNumbers[0]) << name;
            EXPECT_GE(parameter.maximum, parameter.defaultNumbers[0]) << name;
        }
    }
    EXPECT_GT(withValues, 20);
    EXPECT_GT(hidden, 0);
}

TEST(LibraryParameters, TheEffectHidesRowsByTheValuesOfNow) {
    Effect effect = RealEffect();
    const auto hidden = [&] {
        std::vector<int> rows;
        for (const Parameter& parameter : effect.Parameters()) {
            if (parameter.isHidden) rows.push_back(parameter.index);
        }
        return rows;
    };
    const std::vector<int> before = hidden();
    effect.Set("style/shadow-type", "radial");
    EXPECT_NE(hidden(), before);
    effect.Set("style/shadow-type", effect.Find("style/shadow-type").defaultText);
    EXPECT_EQ(hidden(), before);
}

TEST(LibraryParameters, PresetsComeFromMemoryAndFilesAndGoBack) {
    const Folder folder;
    Effect effect = Painter();
    const std::string text = R"({"version": 1, "values": {"paint/border": "6", "paint/color": "#112233"}})";
    WriteBytes(folder / "preset.json", text);
    effect.LoadPreset((folder / "preset.json").string());
    EXPECT_EQ(effect.Get("paint/border"), "6");
    const std::string kept = effect.PresetText();
    effect.Reset();
    effect.ApplyPreset(kept);
    EXPECT_EQ(effect.Get("paint/color"), "#112233");
    EXPECT_EQ(effect.PresetText(), kept);
}

TEST(LibraryParameters, ASetParameterKeepsStill) {
    Effect effect = Painter();
    effect.ApplyPreset(
        R"({"version": 2, "keyframes": {"paint/border": [{"frame": 0, "value": 0}, {"frame": 24, "value": 4}]}})");
    const auto layer = Disc8(8, 8);
    umbrant::FrameOptions later;
    later.seconds = 1;
    EXPECT_EQ(effect.Render(layer.View()).Width(), 8);
    EXPECT_EQ(effect.Render(layer.View(), later).Width(), 16);
    effect.Set("paint/border", 1);
    EXPECT_EQ(effect.Render(layer.View(), later).Width(), 10);
}

TEST(LibraryParameters, AnEffectSaysWhatItIs) {
    const Effect effect = RealEffect();
    EXPECT_EQ(effect.ModuleFile(), UMBRANT_MODULE_FILE);
    EXPECT_FALSE(effect.Name().empty());
    EXPECT_EQ(effect.ChosenRenderer(), umbrant::Renderer::kProcessor);
    EXPECT_EQ(effect.RendererText(), "drawn by the CPU renderer: requested");
    EXPECT_EQ(umbrant::Version(), PROJECT_VERSION);
}

}  // namespace

}  // namespace umbrant::host
