// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/sequence/frame_numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::HasSubstr;

TEST(FrameNumbers, ReadTheWholeGrammar) {
    const struct {
        const char* name;
        const char* text;
        std::vector<int> frames;
    } rows[] = {
        {"one frame", "7", {7}},
        {"a range", "1-4", {1, 2, 3, 4}},
        {"a range of one", "4-4", {4}},
        {"downwards", "4-1", {4, 3, 2, 1}},
        {"every second", "1-10x2", {1, 3, 5, 7, 9}},
        {"every third, the last one met", "1-10x3", {1, 4, 7, 10}},
        {"every third downwards", "10-1x3", {10, 7, 4, 1}},
        {"the others", "1-10y3", {2, 3, 5, 6, 8, 9}},
        {"the others downwards", "10-1y3", {9, 8, 6, 5, 3, 2}},
        {"from coarse to fine", "1-10:4", {1, 5, 9, 3, 7, 2, 4, 6, 8, 10}},
        {"by a step that is no power of two", "1-10:5", {1, 6, 3, 5, 7, 9, 2, 4, 8, 10}},
        {"every frame in turn", "1-3:1", {1, 2, 3}},
        {"below zero", "-3--1", {-3, -2, -1}},
        {"over zero", "-1-1", {-1, 0, 1}},
        {"one below zero", "-5", {-5}},
        {"below zero and every second", "-10--5x2", {-10, -8, -6}},
        {"parts, in their order", "9,1-3", {9, 1, 2, 3}},
        {"blanks beside commas", " 1 , 3 ", {1, 3}},
        {"a frame that comes again counts once", "1-3,2-5", {1, 2, 3, 4, 5}},
        {"a step beyond the range", "1-10x1000000000", {1}},
        {"the farthest", "-999999,999999", {-999999, 999999}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = ParseFrames(row.text);
        ASSERT_TRUE(frames) << frames.Error().sentence;
        EXPECT_EQ(*frames, row.frames);
    }
}

TEST(FrameNumbers, TellWhatIsWrong) {
    const struct {
        const char* name;
        const char* text;
        const char* reason;
    } rows[] = {
        {"nothing", "", "'' is no set of frames: there is nothing beside a comma"},
        {"nothing beside a comma", "1,,2", "there is nothing beside a comma"},
        {"a comma in the end", "1,", "there is nothing beside a comma"},
        {"a word", "all", "'all' does not begin with a frame"},
        {"a number too long for anything", "99999999999", "does not begin with a frame"},
        {"an open end", "1-", "'1-' does not say where it ends"},
        {"an unknown sign", "1-10z3", "'z3' means nothing here"},
        {"no step", "1-10x", "in '1-10x' a whole number of at least 1 belongs after the 'x'"},
        {"a step of 0", "1-10:0", "a whole number of at least 1 belongs after the ':'"},
        {"a step below 0", "1-10y-2", "a whole number of at least 1 belongs after the 'y'"},
        {"something after the step", "1-10x2x3", "a whole number of at least 1"},
        {"a part of a frame", "1-10x0.25", "frames are whole numbers"},
        {"a frame between frames", "1.5", "frames are whole numbers"},
        {"all but every first", "1-10y1", "'1-10y1' leaves no frame"},
        {"too far", "1-1000000", "frame 1000000 is not between -999999 and 999999"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = ParseFrames(row.text);
        ASSERT_FALSE(frames);
        EXPECT_EQ(frames.Error().code, ExitCode::kUsage);
        EXPECT_THAT(frames.Error().sentence, HasSubstr(row.reason));
        EXPECT_THAT(frames.Error().sentence,
                    HasSubstr("write frames as 7, 1-10, 1-240x2, 1-100y5 or 1-100:8, several of them with commas"));
    }
}

TEST(FrameNumbers, AreShownAsRuns) {
    EXPECT_EQ(FramesText({}), "");
    EXPECT_EQ(FramesText({5}), "5");
    EXPECT_EQ(FramesText({2, 1}), "1, 2");
    EXPECT_EQ(FramesText({12, 1, 2, 3, 7, 11, -1}), "-1, 1-3, 7, 11, 12");
    EXPECT_EQ(FramesText({1, 3, 5, 7, 9, 11, 13, 15, 17, 18, 20}), "1, 3, 5, 7, 9, 11, 13, 15 and 3 more");
}

TEST(Chunks, AreTheSetTogether) {
    for (const std::size_t size : {0u, 1u, 7u, 48u, 240u}) {
        for (const int count : {1, 2, 5, 48, 100}) {
            std::size_t next = 0;
            for (int number = 1; number <= count; ++number) {
                const auto [begin, end] = ChunkRange(size, {number, count});
                EXPECT_EQ(begin, next);
                EXPECT_LE(end - begin, size / static_cast<std::size_t>(count) + 1);
                EXPECT_GE(end - begin, size / static_cast<std::size_t>(count));
                next = end;
            }
            EXPECT_EQ(next, size);
        }
    }
}

TEST(Chunks, AreWrittenAsOneOfMany) {
    const auto chunk = ParseChunk("2/4");
    ASSERT_TRUE(chunk);
    EXPECT_EQ(chunk->number, 2);
    EXPECT_EQ(chunk->count, 4);
    for (const char* wrong : {"", "2", "2/", "/4", "0/4", "5/4", "-1/4", "1/0", "2/4x", "a/b", "1.5/4"}) {
        const auto refused = ParseChunk(wrong);
        ASSERT_FALSE(refused) << wrong;
        EXPECT_EQ(refused.Error().code, ExitCode::kUsage);
        EXPECT_EQ(refused.Error().sentence,
                  "'" + std::string(wrong) + "' is no chunk: write the i-th of n as i/n, like 1/4 to 4/4");
    }
}

TEST(FrameRates, AreFractions) {
    const struct {
        const char* text;
        FrameRate rate;
    } rows[] = {
        {"24", {24, 1}},          {"25", {25, 1}},          {"12.5", {12500, 1000}},       {"23.976", {24000, 1001}},
        {"29.97", {30000, 1001}}, {"59.94", {60000, 1001}}, {"30000/1001", {30000, 1001}}, {"1/10", {1, 10}},
        {"0.1", {100, 1000}},     {"1000", {1000, 1}},
    };
    for (const auto& row : rows) {
        const auto rate = ParseRate(row.text);
        ASSERT_TRUE(rate) << row.text;
        EXPECT_EQ(*rate, row.rate) << row.text;
    }
    EXPECT_DOUBLE_EQ((FrameRate{30000, 1001}).PerSecond(), 30000.0 / 1001);
    for (const char* wrong :
         {"", "fast", "0", "-24", "1001", "0.05", "24/0", "24/", "/1", "24/1/1", "nan", "inf", "24 "}) {
        const auto refused = ParseRate(wrong);
        ASSERT_FALSE(refused) << wrong;
        EXPECT_EQ(refused.Error().code, ExitCode::kUsage);
        EXPECT_EQ(refused.Error().sentence, "'" + std::string(wrong) +
                                                "' is no frame rate: write frames per second from 0.1 to 1000, as 24, "
                                                "29.97 or 30000/1001");
    }
}

}  // namespace
