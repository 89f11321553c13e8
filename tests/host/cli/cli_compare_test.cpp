// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant compare`: its codes, its line, its picture of the differences.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/cli/in_process.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

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

TEST_F(CliCompare, TheDifferencesMayBeDrawn) {
    EXPECT_EQ(RunInProcess(folder_, {"compare", "a.png", "b.png", "--diff", "diff.png"}).code, 0);
    Picture difference = Read(folder_ / "diff.png");
    EXPECT_EQ(Pixel8(difference.pixels, 7, 4).red, 64);
    EXPECT_EQ(Pixel8(difference.pixels, 7, 4).green, 0);
    EXPECT_EQ(Pixel8(difference.pixels, 0, 0).red, 0);
    EXPECT_EQ(Pixel8(difference.pixels, 0, 0).alpha, 255);
}

TEST_F(CliCompare, AsJson) {
    const Outcome outcome = RunInProcess(folder_, {"compare", "a.png", "b.png", "--json", "--hard", "1/255"});
    EXPECT_EQ(outcome.code, 1);
    const auto result = nlohmann::json::parse(outcome.out);
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
