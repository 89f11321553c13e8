// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

FramePattern Pattern(const std::string& path) {
    const auto found = FramePattern::Find(path);
    if (!found || !*found) {
        ADD_FAILURE() << path;
        return {};
    }
    return **found;
}

TEST(FramePattern, HasManySpellings) {
    const struct {
        const char* name;
        const char* path;
        int frame;
        const char* file;
    } rows[] = {
        {"one hash is four digits", "shot.#.exr", 7, "shot.0007.exr"},
        {"four hashes", "shot.####.exr", 7, "shot.0007.exr"},
        {"three hashes", "shot.###.exr", 7, "shot.007.exr"},
        {"two hashes", "shot.##.exr", 7, "shot.07.exr"},
        {"at signs", "shot.@@@.exr", 7, "shot.007.exr"},
        {"one at sign", "shot.@.exr", 12, "shot.12.exr"},
        {"hash and at signs", "shot.#@@.exr", 7, "shot.000007.exr"},
        {"printf", "shot.%04d.exr", 7, "shot.0007.exr"},
        {"printf without a width", "shot.%d.exr", 7, "shot.7.exr"},
        {"brackets", "shot_[####].exr", 7, "shot_0007.exr"},
        {"one hash in brackets is one digit", "shot_[#].exr", 7, "shot_7.exr"},
        {"a variable", "shot.$F4.exr", 7, "shot.0007.exr"},
        {"a variable without a width", "shot.$F.exr", 7, "shot.7.exr"},
        {"more digits than the field has", "shot.##.exr", 1234, "shot.1234.exr"},
        {"below zero", "shot.####.exr", -7, "shot.-007.exr"},
        {"a folder", "a/b/shot.####.exr", 7, "a/b/shot.0007.exr"},
        {"fields in a folder are its name", "a####/shot.#.exr", 7, "a####/shot.0007.exr"},
        {"at signs beside another field are signs", "title@2x.####.png", 7, "title@2x.0007.png"},
        {"no ending", "shot.####", 7, "shot.0007"},
        {"the field first", "####.png", 7, "0007.png"},
        {"per cent without a d", "50%.####.png", 7, "50%.0007.png"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const FramePattern pattern = Pattern(row.path);
        EXPECT_EQ(pattern.PathOf(row.frame), row.file);
        const std::string file = row.file;
        EXPECT_EQ(pattern.FrameOf(file.substr(file.rfind('/') + 1)), row.frame);
    }
}

TEST(FramePattern, IsNotInEveryName) {
    for (const char* path : {"title.png", "a/b.png", "100%.png", "$f.png", "a####/b.png", "[1].png", ""}) {
        const auto found = FramePattern::Find(path);
        ASSERT_TRUE(found) << path;
        EXPECT_FALSE(found->has_value()) << path;
    }
    EXPECT_TRUE(Pattern("a@2x.png").IsWeak());
    EXPECT_FALSE(Pattern("a.#.png").IsWeak());
}

TEST(FramePattern, TellsWrongFields) {
    const struct {
        const char* name;
        const char* path;
        const char* sentence;
    } rows[] = {
        {"two", "a.####.%d.png", "'a.####.%d.png' has 2 fields for the frame's number, '####' and '%d'; use one"},
        {"two runs of at signs", "a@.@.png", "has 2 fields for the frame's number, '@' and '@'; use one"},
        {"padding with blanks", "a.%4d.png",
         "'%4d' in 'a.%4d.png' is not a field for a frame's number; write #### or %04d"},
        {"too many digits", "a.#############.png", "write #### or %04d for 4 digits, up to 12 of them"},
        {"very many digits", "a.%0999d.png", "is not a field for a frame's number"},
        {"no digits", "a.$F0.png", "'$F0' in 'a.$F0.png' is not a field"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto found = FramePattern::Find(row.path);
        ASSERT_FALSE(found);
        EXPECT_EQ(found.error().kind, ErrorKind::kUsage);
        EXPECT_THAT(found.error().sentence, HasSubstr(row.sentence));
    }
}

TEST(FramePattern, KnowsItsFilesByTheirWholeNames) {
    const FramePattern pattern = Pattern("shot.####.exr");
    for (const char* other : {"shot.007.exr", "shot.00007.exr", "shot.0007.png", "shat.0007.exr", "shot.0007.exr.bak",
                              "shot..exr", "shot.exr", "shot.00a7.exr", "shot.+007.exr", "shot.-0007.exr", ""}) {
        EXPECT_FALSE(pattern.FrameOf(other)) << other;
    }
    EXPECT_EQ(pattern.FrameOf("shot.12345.exr"), 12345);
    EXPECT_FALSE(pattern.FrameOf("shot.1000000.exr")) << "farther than frames go";
}

TEST(FramePattern, FindsTheFramesOnDisk) {
    const Folder folder;
    for (const char* name : {"s.0003.png", "s.0001.png", "s.-002.png", "s.10000.png", "s.2.png", "t.0009.png"}) {
        WriteBytes(folder / name, "");
    }
    EXPECT_THAT(Pattern((folder / "s.####.png").string()).FramesOnDisk(), ElementsAre(-2, 1, 3, 10000));
    EXPECT_THAT(Pattern((folder / "none/s.####.png").string()).FramesOnDisk(), IsEmpty());
}

}  // namespace

}  // namespace umbrant::host
