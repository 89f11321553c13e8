// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` with the real module and a real driver: the shadow lies where it should.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "host/process/child_process.h"
#include "tests/host/cli/program.h"
#include "tests/host/cli/running_program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

constexpr int kWidth = 60;
constexpr int kHeight = 40;

/// A layer with an opaque block in its middle.
class CliRenderGl : public testing::Test {
 protected:
    void SetUp() override {
        const Outcome info = RunUmbrant(folder_, {"info", "--json"}, {{Module()}, ""});
        ASSERT_EQ(info.code, 0) << info.err;
        if (ParseJson(info.out)["gpu"]["renderer"] == "NULL") {
            GTEST_SKIP() << "no OpenGL driver: the effect's GPU rows read NULL";
        }
        World layer = World::Create(kWidth, kHeight, Depth::k8);
        for (int y = 10; y < 30; ++y) {
            for (int x = 20; x < 40; ++x) Pixel8(layer, x, y) = {255, 230, 120, 40};
        }
        ASSERT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, kWidth, kHeight}, kWidth, kHeight}));
    }

    Outcome Render(std::vector<std::string> arguments) {
        std::vector<std::string> all = {"render", "in.png"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return RunUmbrant(folder_, all, {{Module(), "UMBRANT_RENDERER=gl"}, ""});
    }

    static std::string Module() { return std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE; }

    const Folder folder_;
};

TEST_F(CliRenderGl, TheShadowFallsDownAndRightOfTheLayer) {
    const Outcome outcome = Render(
        {"-o", "out.exr", "--set", "style/distance=20", "--set", "style/softness=6", "--set", "style/color=#ff0000"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "out.exr\n");
    Picture picture = Read(folder_ / "out.exr");
    EXPECT_EQ(picture.frameWidth, kWidth);
    EXPECT_LE(picture.window.left, 0);
    EXPECT_LE(picture.window.top, 0);
    EXPECT_GE(picture.window.right, kWidth + 14);
    EXPECT_GE(picture.window.bottom, kHeight + 14);
    const auto at = [&](int x, int y) {
        return PixelFloat(picture.pixels, x - picture.window.left, y - picture.window.top);
    };
    EXPECT_NEAR(at(30, 20).red, 230 / 255.0, 0.002) << "the layer lies on top";
    EXPECT_EQ(at(30, 20).alpha, 1.0f);
    EXPECT_GT(at(45, 35).alpha, 0.3f) << "135 degrees: down and right";
    EXPECT_NEAR(at(45, 35).red, 1.0, 0.01);
    EXPECT_NEAR(at(45, 35).green, 0.0, 0.01);
    EXPECT_LT(at(15, 5).alpha, 0.05f) << "and not up and left";
}

TEST_F(CliRenderGl, VerboseNamesTheSuites) {
    const Outcome outcome =
        Render({"-o", "out.png", "--verbose", "--set", "style/distance=5", "--set", "style/softness=2"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("suite: PF World Transform Suite 1\n"));
    EXPECT_THAT(outcome.err, HasSubstr("PF_Cmd_SMART_RENDER"));
    EXPECT_THAT(outcome.err, testing::Not(HasSubstr("misbehaved")));
}

TEST_F(CliRenderGl, AnInnerShadowStaysInTheLayersAlpha) {
    for (const char* depth : {"8", "32"}) {
        SCOPED_TRACE(depth);
        ASSERT_EQ(Render({"-o", "out.exr", "--canvas", "layer", "--depth", depth, "--set", "style/shadow-type=inner",
                          "--set", "style/distance=8", "--set", "style/softness=4", "--set", "style/color=#0000ff"})
                      .code,
                  0);
        Picture picture = Read(folder_ / "out.exr");
        const auto at = [&](int x, int y) { return PixelFloat(picture.pixels, x, y); };
        EXPECT_NEAR(at(21, 11).blue, 1, 0.01) << "135 degrees: from above left";
        EXPECT_NEAR(at(21, 11).red, 0, 0.01);
        EXPECT_NEAR(at(36, 26).red, 230 / 255.0, 0.01) << "the layer where no shadow falls";
        EXPECT_NEAR(at(36, 26).alpha, 1, 0.002);
        EXPECT_EQ(at(15, 5).alpha, 0) << "nothing beyond the layer";
        EXPECT_EQ(at(45, 35).alpha, 0);
    }
}

TEST_F(CliRenderGl, ACollapsedLayerKeepsTheFrameOfARadialShadow) {
    const std::vector<std::string> look = {"--set", "style/shadow-type=radial", "--set", "style/distance=100",
                                           "--set", "style/softness=0",         "--set", "style/origin=20,10"};
    const auto draw = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), look.begin(), look.end());
        const Outcome outcome = Render(std::move(arguments));
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    };
    draw({"-o", "grown.png"});
    draw({"-o", "collapsed.png", "--collapsed"});
    draw({"-o", "cut.png", "--canvas", "layer"});
    EXPECT_EQ(Read(folder_ / "grown.png").pixels.Width(), 2 * kWidth);
    EXPECT_EQ(Read(folder_ / "grown.png").pixels.Height(), 2 * kHeight);
    Picture collapsed = Read(folder_ / "collapsed.png");
    EXPECT_EQ(collapsed.pixels.Width(), kWidth);
    EXPECT_EQ(collapsed.pixels.Height(), kHeight);
    EXPECT_GT(Pixel8(collapsed.pixels, 42, 32).alpha, 80) << "the shadow beside the layer";
    const Outcome same = RunUmbrant(folder_, {"compare", "collapsed.png", "cut.png"});
    EXPECT_EQ(same.code, 0) << "nothing moves, it is only cut: " << same.out;
}

TEST_F(CliRenderGl, AnInterruptedFrameEndsAtOnceAndLeavesNothing) {
    // A frame of many seconds, interrupted as soon as the effect says that it draws.
    WriteLayer(folder_ / "large.png", 1200, 800, {255, 10, 20, 30});
    ProgramStart start;
    start.program = UMBRANT_PROGRAM;
    start.arguments = Words(
        "render large.png -o out.png --progress 0.05 --set quality/samples=256 --set style/softness=500 "
        "--set style/distance=2000 --set quality/resolution=extreme");
    start.environment = {std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE};
    start.folder = folder_.Path().string();
    start.output = Stream::Nothing();
    start.errors = Stream::File("progress.txt");
    const auto program = ChildProcess::Start(start);
    ASSERT_TRUE(program) << program.error().sentence;
    EXPECT_TRUE(WaitUntil(
        [&] { return ReadBytes(folder_ / "progress.txt").find("s, the effect draws") != std::string::npos; }));
    const auto begin = std::chrono::steady_clock::now();
    kill((*program)->Process(), SIGINT);
    EXPECT_EQ((*program)->Wait().code, 130) << ReadBytes(folder_ / "progress.txt");
    EXPECT_THAT(ReadBytes(folder_ / "progress.txt"), testing::HasSubstr(" s, the effect draws\n"));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(50))
        << "however long the frame would have taken";
    EXPECT_FALSE(std::filesystem::exists(folder_ / "out.png"));
    for (const char* name : {"large.png", "progress.txt"}) std::filesystem::remove(folder_ / name);
    EXPECT_EQ(folder_.Entries(), 1) << "the other input alone, no file under construction";
}

TEST_F(CliRenderGl, APictureLargerThanATextureIsToldItsSizeAndTheLimit) {
    WriteLayer(folder_ / "strip.png", 900, 2, {255, 255, 255, 255});
    const auto entries = folder_.Entries();
    const Outcome outcome = RunUmbrant(folder_,
                                       {"render", "strip.png", "-o", "out.png", "--set", "style/shadow-type=radial",
                                        "--set", "style/distance=2000", "--set", "style/softness=0"},
                                       {{Module(), "UMBRANT_GL=software", "UMBRANT_RENDERER=gl"}, ""});
    if (outcome.code == 0) GTEST_SKIP() << "this driver takes textures of 18900 pixels";
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(folder_.Entries(), entries) << "nothing is left behind";
    if (outcome.err.find("invalid pixel format") != std::string::npos) {
        // A machine with other drivers alone.
        EXPECT_THAT(outcome.err, HasSubstr("no OpenGL context could be made, so the effect cannot draw"));
        return;
    }
    EXPECT_THAT(outcome.err, HasSubstr("FBO bad, res: 18900 42 (error 4, PF_Err_OUT_OF_MEMORY); the image would be "
                                       "18900 x 42 pixels, and many OpenGL drivers support at most 16384 x 16384"));
    EXPECT_EQ(outcome.out, "");
}

}  // namespace

}  // namespace umbrant::host
