// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Contact sheets without pixels: what is varied, the combinations, and where everything is.

#include "host/cli/sheet/sheet_layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "host/cli/sheet/vary.h"

namespace umbrant::host {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

double WidthOf(SheetText, const std::string& text) {
    return 7.0 * static_cast<double>(text.size());
}

SheetContent Content(std::vector<std::vector<std::string>> labels, int width = 100, int height = 60) {
    return {"title.png", "", std::move(labels), width, height};
}

SheetLayout LayOut(const SheetContent& content) {
    auto layout = LayOutSheet(content, WidthOf);
    EXPECT_TRUE(layout) << layout.error().sentence;
    return layout ? *layout : SheetLayout{};
}

TEST(Vary, ValuesBetweenCommasOrSemicolons) {
    const auto plain = ParseVary("style/angle=0,45, 90");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->key, "style/angle");
    EXPECT_THAT(plain->values, ElementsAre("0", "45", " 90"));
    const auto points = ParseVary("style/origin=0,0;100,50");
    ASSERT_TRUE(points);
    EXPECT_THAT(points->values, ElementsAre("0,0", "100,50"));
    for (const char* wrong : {"", "style/angle", "=1", "style/angle=", "style/angle=1,,2", "style/angle=1, "}) {
        SCOPED_TRACE(wrong);
        const auto failed = ParseVary(wrong);
        ASSERT_FALSE(failed);
        EXPECT_EQ(failed.error().kind, ErrorKind::kUsage);
        EXPECT_THAT(failed.error().sentence, HasSubstr("write --vary PATH=VALUE,VALUE"));
    }
    EXPECT_THAT(ParseVaries({"a/b=1", "a/b=2"}).error().sentence, HasSubstr("'a/b' is varied twice"));
}

TEST(Vary, TheLastAxisChangesFirst) {
    const auto all = Combinations({{"preset", {"p", "q"}, {}}, {"a/b", {"1", "2"}, {}}}, {"common", {"c/d=5"}});
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[0].preset, "p");
    EXPECT_THAT(all[0].settings, ElementsAre("c/d=5", "a/b=1"));
    EXPECT_THAT(all[1].settings, ElementsAre("c/d=5", "a/b=2"));
    EXPECT_EQ(all[2].preset, "q");
    EXPECT_EQ(Combinations({}, {"common", {}}).size(), 1u);
}

TEST(SheetLayout, TheFirstAxisMakesRowsAndTheSecondColumns) {
    const SheetLayout layout = LayOut(Content({{"a", "b", "c"}, {"x", "y"}}));
    ASSERT_EQ(layout.cells.size(), 6u);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(layout.cells[i].x, layout.cells[i % 2].x) << i;
        EXPECT_EQ(layout.cells[i].y, layout.cells[i / 2 * 2].y) << i;
    }
    EXPECT_LT(layout.cells[0].x, layout.cells[1].x);
    EXPECT_LT(layout.cells[0].y, layout.cells[2].y);
    std::set<std::string> texts;
    for (const SheetLabel& label : layout.labels) texts.insert(label.text);
    EXPECT_EQ(texts, (std::set<std::string>{"a", "b", "c", "x", "y", "title.png"}));
}

TEST(SheetLayout, FurtherAxesMakeBlocksWithHeadings) {
    const SheetLayout layout = LayOut(Content({{"a", "b"}, {"x", "y"}, {"1", "2"}, {"p"}}));
    ASSERT_EQ(layout.cells.size(), 8u);
    std::vector<std::string> headings;
    for (const SheetLabel& label : layout.labels) {
        if (label.kind == SheetText::kHeading) headings.push_back(label.text);
    }
    EXPECT_THAT(headings, ElementsAre("1 · p", "2 · p"));
    // Cells 0 and 1 are the same row and column of two blocks.
    const bool apart = layout.cells[1].x > layout.cells[2].x || layout.cells[1].y > layout.cells[4].y;
    EXPECT_TRUE(apart);
}

TEST(SheetLayout, NothingOverlapsAndTheMarginsAreEven) {
    for (const auto& labels : std::vector<std::vector<std::vector<std::string>>>{
             {},
             {{"one"}},
             {{"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13"}},
             {{"a", "b", "c"}, {"x", "y"}},
             {{"a", "b"}, {"x", "y", "z"}, {"1", "2", "3"}}}) {
        const SheetLayout layout = LayOut(Content(labels));
        int right = 0;
        int bottom = 0;
        for (std::size_t i = 0; i < layout.cells.size(); ++i) {
            const SheetPlace& one = layout.cells[i];
            right = std::max(right, one.x + 100);
            bottom = std::max(bottom, one.y + 60);
            for (std::size_t j = 0; j < i; ++j) {
                const SheetPlace& other = layout.cells[j];
                const bool apart = std::abs(one.x - other.x) >= 100 || std::abs(one.y - other.y) >= 60;
                EXPECT_TRUE(apart) << i << " and " << j;
            }
        }
        EXPECT_LE(right + 28, layout.width);
        EXPECT_LE(bottom + 28, layout.height);
        for (const SheetLabel& label : layout.labels) {
            EXPECT_GE(label.x, 28);
            EXPECT_LE(label.x + label.room, layout.width - 28) << label.text;
        }
    }
}

TEST(SheetLayout, LongRowLabelsAreCutAndLargeSheetsRefused) {
    const SheetLayout layout = LayOut(Content({{std::string(200, 'a'), "b"}, {"x", "y"}}));
    for (const SheetLabel& label : layout.labels) {
        if (label.text.size() == 200) {
            EXPECT_EQ(label.room, 220);
        }
    }
    const auto large = LayOutSheet(Content({{"a"}, {"x", "y", "z"}}, 4000, 4000), WidthOf);
    ASSERT_FALSE(large);
    EXPECT_EQ(large.error().kind, ErrorKind::kUsage);
    EXPECT_THAT(large.error().sentence, HasSubstr("no side may be longer than 10000"));
}

}  // namespace

}  // namespace umbrant::host
