// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// When a clip's frames are shown: rates that are kept and that are not, and one rate seen at another.

#include "host/video/clip_timing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace umbrant::host {

namespace {

/// `count` frames at a rate, their times rounded to ticks as a file would.
ClipTimes Times(double rate, int count, double tick) {
    ClipTimes times;
    times.tick = tick;
    for (int i = 0; i < count; ++i) times.seconds.push_back(std::round(i / rate / tick) * tick);
    times.length = std::round(count / rate / tick) * tick;
    return times;
}

std::string Found(const ClipTimes& times, const std::vector<FrameRate>& candidates) {
    const auto rate = ConstantRate(times, candidates);
    return rate ? std::to_string(rate->scale) + "/" + std::to_string(rate->step) : "none";
}

TEST(ClipTiming, RatesThatFramesKeepTo) {
    const std::vector<FrameRate> usual = {{24000, 1001}, {24, 1}, {25, 1}, {30000, 1001}, {30, 1}, {60, 1}};
    ClipTimes gap = Times(25, 20, 0.04);
    for (std::size_t i = 10; i < gap.seconds.size(); ++i) gap.seconds[i] += 0.04;
    ClipTimes late = Times(25, 20, 1.0 / 90000);
    late.seconds[7] += 0.015;
    const struct {
        const char* name;
        ClipTimes times;
        const char* rate;
    } rows[] = {
        {"exact times", Times(30000 / 1001.0, 300, 1.0 / 30000), "30000/1001"},
        {"milliseconds", Times(30000 / 1001.0, 300, 0.001), "30000/1001"},
        {"milliseconds of 24 and not of 24000/1001", Times(24, 3000, 0.001), "24/1"},
        {"a tick a frame", Times(25, 20, 0.04), "25/1"},
        {"a single frame keeps to any", Times(25, 1, 0.001), "24000/1001"},
        {"a frame left out, a tick a frame", gap, "none"},
        {"one late by more than a third of a frame", late, "none"},
        {"a rate that nobody asked about", Times(17, 50, 0.001), "none"},
    };
    for (const auto& row : rows) EXPECT_EQ(Found(row.times, usual), row.rate) << row.name;
}

TEST(ClipTiming, ReadsRatesOfFiles) {
    EXPECT_EQ(ReadRate("30000/1001"), (FrameRate{30000, 1001}));
    EXPECT_EQ(ReadRate("24/1"), (FrameRate{24, 1}));
    for (const char* none : {"0/0", "90000/1", "", "N/A"}) EXPECT_FALSE(ReadRate(none)) << none;
}

std::vector<int> ShownAt(const ClipTimes& times, const FrameRate& rate) {
    std::vector<int> shown;
    for (int i = 0; i < FrameCount(times, rate); ++i) shown.push_back(FrameShown(times, rate, i));
    return shown;
}

TEST(ClipTiming, OneRateSeenAtAnother) {
    using testing::ElementsAre;
    EXPECT_THAT(ShownAt(Times(25, 5, 0.001), {25, 1}), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(ShownAt(Times(25, 4, 0.001), {50, 1}), ElementsAre(0, 0, 1, 1, 2, 2, 3, 3)) << "frames repeat";
    EXPECT_THAT(ShownAt(Times(50, 6, 0.001), {25, 1}), ElementsAre(0, 2, 4)) << "frames are left out";
    EXPECT_THAT(ShownAt(Times(24, 4, 0.001), {30, 1}), ElementsAre(0, 0, 1, 2, 3));
    ClipTimes varying;
    varying.seconds = {0, 0.1, 0.5};
    varying.length = 0.6;
    EXPECT_THAT(ShownAt(varying, {10, 1}), ElementsAre(0, 1, 1, 1, 1, 2));
    EXPECT_EQ(RatesText(varying), "2.5 to 10");
    EXPECT_THAT(ShownAt(Times(30000 / 1001.0, 300, 0.001), {30000, 1001}).back(), 299);
}

}  // namespace

}  // namespace umbrant::host
