// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` with the real module, drawn by the CPU renderer: the shadow lies where it should.

#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"

namespace umbrant::host {

namespace {

constexpr int kWidth = 60;
constexpr int kHeight = 40;

/// A layer with an opaque block in its middle.
class CliRenderProcessor : public testing::Test {
 protected:
    void SetUp() override {
        World layer = World::Create(kWidth, kHeight, Depth::k8);
        for (int y = 10; y < 30; ++y) {
            for (int x = 20; x < 40; ++x) Pixel8(layer, x, y) = {255, 230, 120, 40};
        }
        ASSERT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, kWidth, kHeight}, kWidth, kHeight}));
    }

    Outcome Render(std::vector<std::string> arguments) {
        std::vector<std::string> all = {"render", "in.png", "--renderer", "cpu", "--module", UMBRANT_MODULE_FILE};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return RunInProcess(folder_, all);
    }

    const Folder folder_;
};

TEST_F(CliRenderProcessor, TheLayersFrameCutsTheShadow) {
    ASSERT_EQ(
        Render({"-o", "out.png", "--canvas", "layer", "--set", "style/distance=20", "--set", "style/softness=6"}).code,
        0);
    Picture picture = Read(folder_ / "out.png");
    EXPECT_EQ(picture.pixels.Width(), kWidth);
    EXPECT_EQ(picture.pixels.Height(), kHeight);
    EXPECT_EQ(Pixel8(picture.pixels, 30, 20).red, 230);
    EXPECT_GT(Pixel8(picture.pixels, 45, 35).alpha, 80);
    EXPECT_EQ(Pixel8(picture.pixels, 45, 35).red, 0);
}

TEST_F(CliRenderProcessor, FloatAndEightBitsDrawTheSame) {
    const std::vector<std::string> look = {"--set", "style/distance=15", "--set", "style/softness=10"};
    std::vector<std::string> eight = {"-o", "eight.png"};
    std::vector<std::string> real = {"-o", "float.png", "--depth", "32"};
    eight.insert(eight.end(), look.begin(), look.end());
    real.insert(real.end(), look.begin(), look.end());
    ASSERT_EQ(Render(eight).code, 0);
    ASSERT_EQ(Render(real).code, 0);
    const Outcome outcome =
        RunInProcess(folder_, {"compare", "eight.png", "float.png", "--warn", "1.5/255", "--hard", "3/255"});
    EXPECT_EQ(outcome.code, 0) << outcome.out;
}

TEST_F(CliRenderProcessor, APictureMayBeLargerThanAnyTexture) {
    WriteLayer(folder_ / "strip.png", 900, 2, {255, 255, 255, 255});
    const Outcome outcome = RunInProcess(
        folder_, {"render", "strip.png", "-o", "out.png", "--renderer", "cpu", "--module", UMBRANT_MODULE_FILE, "--set",
                  "style/shadow-type=radial", "--set", "style/distance=2000", "--set", "style/softness=0"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(Read(folder_ / "out.png").pixels.Width(), 18900);
}

}  // namespace

}  // namespace umbrant::host
