// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/frame_numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;

FrameNumber Quarters(int count) {
    return FrameNumber::OfParts(std::int64_t{count} * FrameNumber::kParts / 4);
}

TEST(FrameNumbers, ReadTheWholeGrammar) {
    const struct {
        const char* name;
        const char* text;
        std::vector<FrameNumber> frames;
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
        {"quarters of a frame", "1-2x0.25", {1, Quarters(5), Quarters(6), Quarters(7), 2}},
        {"quarters downwards", "2-1x0.5", {2, Quarters(6), 1}},
        {"a frame between frames", "1.5", {Quarters(6)}},
        {"whole steps from between frames", "0.25-2.75", {Quarters(1), Quarters(5), Quarters(9)}},
        {"below zero", "-0.5-0.5x0.5", {Quarters(-2), 0, Quarters(2)}},
        {"both ends below zero", "-2.5--1.75x0.75", {Quarters(-10), Quarters(-7)}},
        {"a step that does not divide a frame", "1-3x0.75", {1, Quarters(7), Quarters(10)}},
        {"the others of parts", "0.5-3.5y2", {Quarters(6), Quarters(14)}},
        {"noughts at the end say nothing", "1.50000000,1.5", {Quarters(6)}},
        {"the finest", "1-1.0002x0.0001", {1, FrameNumber::OfParts(10001), FrameNumber::OfParts(10002)}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = ParseFrames(row.text);
        ASSERT_TRUE(frames) << frames.error().sentence;
        EXPECT_EQ(*frames, row.frames);
    }
}

TEST(FrameNumbers, TellWhatIsWrong) {
    const struct {
        const char* name;
        const char* text;
        const char* reason;
    } rows[] = {
        {"nothing", "", "'' is not a set of frames: nothing before or after a comma"},
        {"nothing beside a comma", "1,,2", "nothing before or after a comma"},
        {"a comma in the end", "1,", "nothing before or after a comma"},
        {"a word", "all", "'all' does not begin with a frame"},
        {"a number too long for anything", "99999999999", "does not begin with a frame"},
        {"an open end", "1-", "'1-' has no end"},
        {"an unknown sign", "1-10z3", "'z3' is not expected here"},
        {"no step", "1-10x", "in '1-10x' the 'x' must be followed by a number above 0 with up to four decimals"},
        {"every nothing", "1-10x0", "the 'x' must be followed by a number above 0 with up to four decimals"},
        {"a step of 0", "1-10:0", "a whole number of at least 1 must follow the ':'"},
        {"a step below 0", "1-10y-2", "a whole number of at least 1 must follow the 'y'"},
        {"something after the step", "1-10x2x3", "a number above 0 with up to four decimals"},
        {"coarse to fine by parts", "1-10:0.5", "a whole number of at least 1 must follow the ':'"},
        {"the others of parts", "1-10y1.5", "a whole number of at least 1 must follow the 'y'"},
        {"more decimals than four", "1.00001", "'1.00001' does not begin with a frame of up to four decimals"},
        {"a point without a number", "1.", "'.' is not expected here"},
        {"a number without a front", ".5", "'.5' does not begin with a frame"},
        {"more than memory holds", "1-999x0.0001", "'1-999x0.0001' has more than 1999999 frames"},
        {"the same in parts", "1-150x0.0001,200-350x0.0001", "more than 1999999 frames"},
        {"all but every first", "1-10y1", "'1-10y1' leaves no frame"},
        {"too far", "1-1000000", "frame 1000000 is not between -999999 and 999999"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto frames = ParseFrames(row.text);
        ASSERT_FALSE(frames);
        EXPECT_EQ(frames.error().kind, ErrorKind::kUsage);
        EXPECT_THAT(frames.error().sentence, HasSubstr(row.reason));
        EXPECT_THAT(
            frames.error().sentence,
            HasSubstr("write frames as 7, 1-10, 1-240x2, 1-10x0.25, 1-100y5 or 1-100:8, several of them with commas"));
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
        EXPECT_EQ(refused.error().kind, ErrorKind::kUsage);
        EXPECT_EQ(refused.error().sentence,
                  "'" + std::string(wrong) + "' is not a chunk: write the i-th of n as i/n, such as 1/4 to 4/4");
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
        EXPECT_EQ(refused.error().kind, ErrorKind::kUsage);
        EXPECT_EQ(refused.error().sentence,
                  "'" + std::string(wrong) +
                      "' is not a frame rate: write frames per second from 0.1 to 1000, such as 24, "
                      "29.97 or 30000/1001");
    }
}

TEST(FrameNumbers, AreWrittenAsTheyAreRead) {
    const struct {
        const char* name;
        FrameNumber frame;
        int width;
        const char* text;
        int begun;
    } rows[] = {
        {"a whole one", 7, 4, "0007", 7},
        {"between frames", Quarters(29), 4, "0007.25", 7},
        {"without noughts at its end", Quarters(30), 1, "7.5", 7},
        {"the finest", FrameNumber::OfParts(70001), 4, "0007.0001", 7},
        {"below zero", Quarters(-1), 4, "-000.25", -1},
        {"a whole one below zero", -7, 4, "-007", -7},
        {"further below zero", Quarters(-30), 1, "-7.5", -8},
        {"longer than its field", Quarters(4 * 12345 + 2), 4, "12345.5", 12345},
        {"zero", 0, 3, "000", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.frame.Text(row.width), row.text);
        EXPECT_EQ(row.frame.Begun(), row.begun);
        EXPECT_EQ(*ParseFrames(row.frame.Text()), std::vector<FrameNumber>{row.frame});
    }
    EXPECT_EQ(FramesText({1, 2, 3, Quarters(14), Quarters(18), 5}), "1-3, 3.5, 4.5, 5");
    const std::vector<FrameNumber> mixed = {3, 4, 5, Quarters(22), 1, -2, -1};
    EXPECT_EQ(FrameSetText(mixed), "3-5,5.5,1,-2--1");
    EXPECT_EQ(*ParseFrames(FrameSetText(mixed)), mixed);
}

}  // namespace

}  // namespace umbrant::host
