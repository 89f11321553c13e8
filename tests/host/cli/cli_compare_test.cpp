// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant compare`: its codes, its line, its heat map of the differences, its measures.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/cli/compare/heat_map.h"
#include "tests/host/cli/in_process.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class CliCompare : public testing::Test {
 protected:
    CliCompare() {
        WriteLayer(folder_ / "a.png", 20, 10, {255, 100, 100, 100});
        World other = Filled8(20, 10, {255, 100, 100, 100});
        Pixel8(other, 7, 4).red = 102;
        EXPECT_TRUE(WritePicture(folder_ / "b.png", other, {{0, 0, 20, 10}, 20, 10}));
    }
    const Folder folder_;
};

TEST_F(CliCompare, EqualPicturesAreClose) {
    const Outcome outcome = RunInProcess(folder_, {"compare", "a.png", "a.png"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "close: worst difference 0 (0/255); 0 of 200 pixels differ by the warning step or more\n");
}

TEST_F(CliCompare, TheWorstPixelIsToldWithBothValues) {
    const Outcome outcome = RunInProcess(folder_, {"compare", "b.png", "a.png"});
    EXPECT_EQ(outcome.code, 0) << "one of 200 is the half percent that is allowed";
    EXPECT_EQ(
        outcome.out,
        "close: worst difference 0.00784314 (2/255) at (7, 4): alpha 1 red 0.4 green 0.392157 blue 0.392157 against "
        "alpha 1 red 0.392157 green 0.392157 blue 0.392157; 1 of 200 pixels differ by the warning step or more\n");
}

TEST_F(CliCompare, TheThreeNumbersAreOptions) {
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--hard", "1/255"}).code, 1);
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--percent", "0.1"}).code, 1);
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--percent", "0.1", "--warn", "0.01"}).code, 0);
}

TEST_F(CliCompare, TheDifferencesMayBeDrawnAsAHeatMapWithAKey) {
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--diff", "diff.png"}).code, 0);
    Picture map = Read(folder_ / "diff.png");
    EXPECT_EQ(map.frameWidth, 360);
    EXPECT_EQ(map.frameHeight, 10 + 56);
    const auto expectColor = [&](int x, int y, const PF_Pixel& color) {
        const PF_Pixel pixel = Pixel8(map.pixels, x, y);
        EXPECT_EQ(pixel.alpha, 255);
        // Differences are kept in single precision.
        EXPECT_NEAR(pixel.red, color.red, 1) << x << ", " << y;
        EXPECT_NEAR(pixel.green, color.green, 1) << x << ", " << y;
        EXPECT_NEAR(pixel.blue, color.blue, 1) << x << ", " << y;
    };
    expectColor(7, 4, HeatColor(2 / 255.0));
    expectColor(0, 0, {255, 0, 0, 0});
    expectColor(20, 0, {255, 28, 28, 28});
    // The key's bar, from the smallest difference to the largest.
    expectColor(16, 10 + 30, HeatColor(0.25 / 255));
    expectColor(16 + 327, 10 + 30, HeatColor(1));
}

TEST_F(CliCompare, LargerDifferencesHaveLighterColours) {
    const auto lightness = [](double difference) {
        const PF_Pixel color = HeatColor(difference);
        return 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue;
    };
    double before = lightness(0);
    for (const double steps : {0.25, 0.5, 1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 64.0, 128.0, 255.0}) {
        EXPECT_GT(lightness(steps / 255), before) << steps;
        before = lightness(steps / 255);
    }
    EXPECT_EQ(lightness(std::numeric_limits<double>::infinity()), before);
}

TEST_F(CliCompare, AMeasureMayBeAskedForAndLimited) {
    const Outcome same = RunInProcess(folder_, {"compare", "a.png", "a.png", "--metric", "psnr"});
    EXPECT_EQ(same.code, 0);
    EXPECT_THAT(same.out, EndsWith("; PSNR infinite\n"));
    const Outcome psnr = RunInProcess(folder_, {"compare", "a.png", "b.png", "--metric", "psnr", "--json"});
    // One channel of 800 is off by 2/255.
    EXPECT_NEAR(ParseJson(psnr.out)["psnr"], 10 * std::log10(800 / (4 / 65025.0)), 1e-9);
    EXPECT_TRUE(
        ParseJson(RunInProcess(folder_, {"compare", "a.png", "a.png", "--metric", "psnr", "--json"}).out)["psnr"]
            .is_null());
    EXPECT_THAT(RunInProcess(folder_, {"compare", "a.png", "a.png", "--metric", "ssim", "--least", "1"}).out,
                EndsWith("; SSIM 1.00000\n"));
    const Outcome below = RunInProcess(folder_, {"compare", "a.png", "b.png", "--metric", "ssim", "--least", "1"});
    EXPECT_EQ(below.code, 1);
    EXPECT_THAT(below.out, StartsWith("different: "));
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--least", "1"}).code, 2);
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--metric", "vmaf"}).code, 2);
}

TEST_F(CliCompare, AsJson) {
    const Outcome outcome = RunInProcess(folder_, {"compare", "a.png", "b.png", "--json", "--hard", "1/255"});
    EXPECT_EQ(outcome.code, 1);
    const auto result = ParseJson(outcome.out);
    EXPECT_EQ(result["close"], false);
    EXPECT_EQ(result["x"], 7);
    EXPECT_EQ(result["y"], 4);
    EXPECT_EQ(result["counted"], 1);
    EXPECT_EQ(result["pixels"], 200);
}

TEST_F(CliCompare, DifferentSizesAndMissingFiles) {
    WriteLayer(folder_ / "small.png", 5, 5, {255, 1, 1, 1});
    const Outcome sizes = RunInProcess(folder_, {"compare", "a.png", "small.png"});
    EXPECT_EQ(sizes.code, 1);
    EXPECT_EQ(sizes.out, "different: 20 x 10 against 5 x 5 pixels\n");
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "none.png"}).code, 3);
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--diff", "none/diff.png"}).code, 3);
}

}  // namespace

}  // namespace umbrant::host
