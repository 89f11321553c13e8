// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/animation/located_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;
using Kind = LocatedJson::Kind;

LocatedJson Parse(const std::string& text) {
    auto parsed = ParseLocatedJson(text);
    if (!parsed) {
        ADD_FAILURE() << parsed.error().sentence;
        return {};
    }
    return std::move(*parsed);
}

TEST(LocatedJson, KnowsWhereEverythingStands) {
    const LocatedJson root = Parse(
        "\n{ \"a\": 12.50,\n"
        "  \"b\" :[true,null , \"x\\\"y\"],\n"
        "\t\"ü\":{\"c\":-3e1}}");
    EXPECT_EQ(root.kind, Kind::kObject);
    EXPECT_EQ(root.place, (TextPlace{2, 1}));
    ASSERT_EQ(root.members.size(), 3u);
    EXPECT_EQ(root.members[0].place, (TextPlace{2, 3}));
    const LocatedJson& number = root.members[0].value;
    EXPECT_EQ(number.place, (TextPlace{2, 8}));
    EXPECT_EQ(number.number, 12.5);
    EXPECT_EQ(number.text, "12.50") << "as it is written";
    EXPECT_EQ(root.members[1].place, (TextPlace{3, 3}));
    const LocatedJson& list = root.members[1].value;
    EXPECT_EQ(list.place, (TextPlace{3, 8}));
    ASSERT_EQ(list.items.size(), 3u);
    EXPECT_TRUE(list.items[0].boolean);
    EXPECT_EQ(list.items[0].place, (TextPlace{3, 9}));
    EXPECT_EQ(list.items[1].kind, Kind::kNull);
    EXPECT_EQ(list.items[1].place, (TextPlace{3, 14}));
    EXPECT_EQ(list.items[2].text, "x\"y");
    EXPECT_EQ(list.items[2].place, (TextPlace{3, 21}));
    EXPECT_EQ(root.members[2].key, "ü");
    EXPECT_EQ(root.members[2].place, (TextPlace{4, 2}));
    EXPECT_EQ(root.members[2].value.place, (TextPlace{4, 6})) << "columns are characters";
    const LocatedJson* inner = root.Find("ü")->Find("c");
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->number, -30);
    EXPECT_EQ(inner->text, "-3e1");
    EXPECT_EQ(inner->place, (TextPlace{4, 11}));
    EXPECT_EQ(root.Find("c"), nullptr);
}

TEST(LocatedJson, NumbersAtTheEndsOfThings) {
    const LocatedJson list = Parse("[[1],[2 ],{\"a\":3},4]");
    EXPECT_EQ(list.items[0].items[0].place, (TextPlace{1, 3}));
    EXPECT_EQ(list.items[1].place, (TextPlace{1, 6}));
    EXPECT_EQ(list.items[1].items[0].place, (TextPlace{1, 7}));
    EXPECT_EQ(list.items[2].place, (TextPlace{1, 11}));
    EXPECT_EQ(list.items[2].members[0].value.place, (TextPlace{1, 16}));
    EXPECT_EQ(list.items[3].place, (TextPlace{1, 19}));
    EXPECT_EQ(Parse("7").number, 7);
    EXPECT_EQ(Parse("18446744073709551615").text, "18446744073709551615");
}

TEST(LocatedJson, KeepsKeysThatComeTwice) {
    const LocatedJson root = Parse(R"({"a": 1, "a": 2})");
    ASSERT_EQ(root.members.size(), 2u);
    EXPECT_EQ(root.Find("a")->number, 1);
}

TEST(LocatedJson, TellsWhatIsNoJson) {
    for (const char* text : {"", "{", "[1,]", "{\"a\" 1}", "nan", "{} {}", "\"\xff\"", "[01]", "'a'"}) {
        const auto parsed = ParseLocatedJson(text);
        ASSERT_FALSE(parsed) << text;
        EXPECT_EQ(parsed.error().kind, ErrorKind::kFile);
        EXPECT_THAT(parsed.error().sentence, HasSubstr("line 1, column ")) << text;
    }
    const auto deep = ParseLocatedJson(std::string(100, '[') + std::string(100, ']'));
    ASSERT_FALSE(deep);
    EXPECT_EQ(deep.error().sentence, "nested too deeply");
}

TEST(LocatedJson, BoundsTheNumberOfValues) {
    std::string most = "[0";
    for (int i = 2; i < 2'000'000; ++i) most += ",0";
    EXPECT_TRUE(ParseLocatedJson(most + "]"));
    const auto more = ParseLocatedJson(most + ",0]");
    ASSERT_FALSE(more);
    EXPECT_EQ(more.error().kind, ErrorKind::kFile);
    EXPECT_EQ(more.error().sentence, "more than 2000000 values");
}

}  // namespace

}  // namespace umbrant::host
