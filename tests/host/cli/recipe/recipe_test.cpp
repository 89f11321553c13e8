// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The text of a recipe: what is written is read again, and what is wrong with a text is one sentence.

#include "host/cli/recipe/recipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

constexpr char kWhole[] =
    R"({"recipe":1,"program":"1.2","module":{"name":"Effect","version":"3.4"},"pixels":1,"renderer":"cpu",)"
    R"("options":{"canvas":"grow","collapsed":""},"version":1,"values":{"style/distance":80}})";

std::string With(const std::string& from, const std::string& to) {
    std::string text = kWhole;
    return text.replace(text.find(from), from.size(), to);
}

TEST(RecipeJson, IsReadAsItWasWritten) {
    Recipe recipe;
    recipe.program = "1.2";
    recipe.moduleName = "Effect \xc3\xa9";
    recipe.moduleVersion = "3.4";
    recipe.renderer = "gl";
    recipe.options = {{"canvas", "1,2,3,4"}, {"collapsed", ""}, {"texture", "a \"b\".png"}};
    recipe.preset = R"({"version":1,"values":{"style/distance":80.25}})";
    for (const auto& [pixels, frame] :
         {std::pair(std::optional<int>(), std::optional<double>()), std::pair(std::optional(0), std::optional(12.0)),
          std::pair(std::optional(1), std::optional(-7.3))}) {
        recipe.pixels = pixels;
        recipe.frame = frame;
        const std::string text = RecipeText(recipe);
        EXPECT_EQ(text.find_first_not_of("\x20!\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
                                         "abcdefghijklmnopqrstuvwxyz{|}~"),
                  std::string::npos)
            << "ASCII in one line";
        const auto read = ParseRecipe(text, "a.png");
        ASSERT_TRUE(read) << read.error().sentence;
        EXPECT_EQ(*read, recipe);
    }
}

TEST(RecipeJson, WhatIsWrongIsOneSentence) {
    const std::string damaged = "the recipe of 'a.png' is damaged: ";
    const std::string advice =
        "; take another file that was drawn with the same values, or give them with --preset and --set";
    const struct {
        std::string text;
        std::string sentence;
    } rows[] = {
        {"", damaged + "the text is not whole" + advice},
        {"[1]", damaged + "the text is not whole" + advice},
        {std::string(kWhole).substr(0, 100), damaged + "the text is not whole" + advice},
        {std::string(100'000, '['), damaged + "the text is not whole" + advice},
        {"{}", damaged + "\"recipe\" is not a whole number" + advice},
        {With("\"recipe\":1", "\"recipe\":-1"), damaged + "\"recipe\" is not a whole number" + advice},
        {With("\"1.2\"", "2"), damaged + "\"program\" is not a text" + advice},
        {With("\"cpu\"", "null"), damaged + "\"renderer\" is not a text" + advice},
        {With("{\"name\":\"Effect\",\"version\":\"3.4\"}", "4"), damaged + "\"module\" is not an object" + advice},
        {With("\"name\":\"Effect\",", ""), damaged + "\"module\" has no name or no version" + advice},
        {With("\"grow\"", "7"), damaged + "\"options\" is not an object of texts" + advice},
        {With("\"pixels\":1", "\"pixels\":\"1\""), damaged + "\"pixels\" is not a whole number" + advice},
        {With("\"version\":1,\"values\"", "\"value\""), damaged + "it has no values" + advice},
        {With("\"values\"", "\"frame\":\"1\",\"values\""), damaged + "\"frame\" is not a number" + advice},
    };
    for (const auto& row : rows) {
        const auto read = ParseRecipe(row.text, "a.png");
        ASSERT_FALSE(read) << row.text;
        EXPECT_EQ(read.error().kind, ErrorKind::kUsage);
        EXPECT_EQ(read.error().sentence, row.sentence);
    }
}

TEST(RecipeJson, NewerOnesNameTheProgramThatDrawsThem) {
    const auto form = ParseRecipe(R"({"recipe":2,"program":"9.1"})", "a.png");
    ASSERT_FALSE(form);
    EXPECT_EQ(form.error().kind, ErrorKind::kUsage);
    EXPECT_THAT(
        form.error().sentence,
        testing::MatchesRegex("the recipe of 'a.png' is of a newer program, umbrant 9.1: its form is 2, and umbrant "
                              "[0-9.]+ reads up to 1; draw with that program"));
    const auto pixels = ParseRecipe(With("\"pixels\":1", "\"pixels\":2"), "a.png");
    ASSERT_FALSE(pixels);
    EXPECT_EQ(pixels.error().kind, ErrorKind::kUsage);
    EXPECT_THAT(
        pixels.error().sentence,
        testing::MatchesRegex("'a.png' was drawn by umbrant 1.2 with pixel version 2, and umbrant [0-9.]+ draws "
                              "versions 0 and 1; draw with that program, or give the values with --preset and "
                              "--set"));
}

}  // namespace

}  // namespace umbrant::host
