// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The table beside the effect's own rows, and beside the list of what may never change.

#include "openfx/parameters/parameter_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

#include <umbrant/effect.h>

#include "openfx/parameters/describe_parameters.h"

namespace umbrant::openfx {
namespace {

using enum ParameterKind;

Effect TheEffect() {
    return Effect({UMBRANT_MODULE_FILE, Renderer::kProcessor, false, {}});
}

const char* WordOf(ParameterKind kind) {
    static constexpr const char* words[] = {"group",  "double", "integer", "angle", "color", "point",
                                            "choice", "file",   "button",  "label", "switch"};
    return words[static_cast<std::size_t>(kind)];
}

std::string NameOfPath(std::string path) {
    for (char& c : path) c = c == '/' || c == '-' ? '_' : c;
    return path;
}

TEST(ParameterTable, IsTheListThatNeverChanges) {
    std::ifstream file(OPENFX_FOLDER "/parameters/parameter_names.txt");
    std::string line;
    std::vector<std::string> listed;
    while (std::getline(file, line)) {
        if (!line.starts_with('#')) listed.push_back(line);
    }
    std::vector<std::string> table;
    for (const ParameterRow& row : ParameterTable()) {
        table.push_back(std::string(row.name) + " " + WordOf(row.kind));
        for (const char* item : row.items) table.back() += (item == row.items.front() ? " " : "|") + std::string(item);
    }
    EXPECT_EQ(table, listed);
}

TEST(ParameterTable, HasEveryRowOfTheEffectThatAHostCanSet) {
    // The page about the program, the driver's texts, the texture's layer, a heading, and the rows for debugging.
    const std::set<std::string> left = {"about-support", "texture/layer", "easing/advanced/easing-per-attribute",
                                        "debug"};
    std::set<std::string> paths;
    for (const ParameterRow& row : ParameterTable()) {
        if (!row.path) continue;
        EXPECT_TRUE(paths.insert(row.path).second) << row.path;
    }
    for (const Parameter& parameter : TheEffect().Parameters()) {
        const std::string& path = parameter.path;
        const bool isLeft =
            path.empty() || path.starts_with("about-support/") || path.starts_with("debug/") || left.contains(path);
        EXPECT_EQ(paths.contains(path), !isLeft) << path;
    }
}

ParameterKind KindOf(const Parameter& parameter) {
    switch (parameter.kind) {
        case umbrant::ParameterKind::kGroup:
            return kGroup;
        case umbrant::ParameterKind::kAngle:
            return kAngle;
        case umbrant::ParameterKind::kColor:
            return kColor;
        case umbrant::ParameterKind::kPoint:
            return kPoint;
        case umbrant::ParameterKind::kPopup:
            return kChoice;
        default:
            return parameter.precision == 0 ? kInteger : kDouble;
    }
}

TEST(ParameterTable, IsWhatTheEffectDeclares) {
    const Effect effect = TheEffect();
    for (const ParameterRow& row : ParameterTable()) {
        if (!row.path) continue;
        SCOPED_TRACE(row.path);
        const Parameter parameter = effect.Find(row.path);
        EXPECT_EQ(row.name, NameOfPath(row.path));
        EXPECT_EQ(row.label, parameter.name);
        EXPECT_EQ(row.kind, KindOf(parameter));
        const std::string path = row.path;
        const std::size_t slash = path.rfind('/');
        EXPECT_EQ(row.parent ? row.parent : "", slash == path.npos ? "" : NameOfPath(path.substr(0, slash)));
        if (row.kind == kGroup) continue;
        EXPECT_EQ(row.varies, parameter.canVary);
        if (row.kind == kDouble || row.kind == kInteger) {
            EXPECT_EQ(row.valid.low, parameter.minimum);
            EXPECT_EQ(row.valid.high, parameter.maximum);
            EXPECT_EQ(row.slider.low, std::max(parameter.minimum, parameter.sliderMinimum));
            EXPECT_EQ(row.slider.high,
                      std::min(parameter.maximum, std::max(parameter.sliderMaximum, parameter.defaultNumbers[0])));
            EXPECT_EQ(row.standard[0], parameter.defaultNumbers[0]);
        }
    }
}

TEST(ParameterTable, HasTheItemsWithoutSeparators) {
    const Effect effect = TheEffect();
    for (const ParameterRow& row : ParameterTable()) {
        if (!row.path || row.kind != kChoice) continue;
        SCOPED_TRACE(row.path);
        const Parameter parameter = effect.Find(row.path);
        std::vector<std::string> names = parameter.itemNames;
        std::erase(names, "");
        EXPECT_EQ(std::vector<std::string>(row.items.begin(), row.items.end()), names);
        const auto item = static_cast<std::size_t>(parameter.defaultNumbers[0]) - 1;
        EXPECT_EQ(row.items[static_cast<std::size_t>(row.standard[0])], parameter.itemNames[item]);
    }
}

TEST(ParameterTable, EveryValueHasAHintAndAGroupBeforeIt) {
    std::set<std::string> before;
    for (const ParameterRow& row : ParameterTable()) {
        if (row.kind != kGroup) {
            EXPECT_NE(HintOf(row), "") << row.name;
        }
        if (row.parent) {
            EXPECT_TRUE(before.contains(row.parent)) << row.name;
        }
        EXPECT_TRUE(before.insert(row.name).second) << row.name;
        EXPECT_EQ(std::string(row.name).find_first_not_of("abcdefghijklmnopqrstuvwxyz_"), std::string::npos)
            << row.name;
    }
}

TEST(ParameterTable, HintsAreTheLibrarysDescriptions) {
    EXPECT_EQ(HintOf(RowNamed("style_softness")), DescriptionOf("style/softness"));
    EXPECT_EQ(HintOf(RowNamed("style_color")),
              std::string(DescriptionOf("style/color")) +
                  " It is in the colour space of the image. Values above 1 are used in float images.");
    EXPECT_EQ(HintOf(RowNamed(kPresetFileName)), "A preset of Umbrant 2: a file that ends in .json.");
}

}  // namespace
}  // namespace umbrant::openfx
