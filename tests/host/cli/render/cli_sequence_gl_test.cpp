// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Sequences with the real module: the same bytes whatever the threads and the order, and a title that moves.

#include <gtest/gtest.h>

#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

constexpr char kMovingSoftness[] =
    R"({ "version": 2, "values": { "style/softness": 8, "quality/samples": 6 }, "keyframes": {
    "style/angle": [ { "frame": 1, "value": 60, "out": "ease" }, { "frame": 8, "value": 420, "in": "ease" } ],
    "style/distance": [ { "frame": 1, "value": 0, "out": "ease" }, { "frame": 8, "value": 30 } ] } })";

class CliSequenceGl : public testing::Test {
 protected:
    void SetUp() override {
        const Outcome info = RunUmbrant(folder_, {"info", "--json", "--module", UMBRANT_MODULE_FILE});
        ASSERT_EQ(info.code, 0) << info.err;
        if (ParseJson(info.out)["gpu"]["renderer"] == "NULL") {
            GTEST_SKIP() << "no OpenGL driver: the effect's GPU rows read NULL";
        }
        World layer = Filled8(40, 30, {0, 0, 0, 0});
        for (int y = 8; y < 22; ++y) {
            for (int x = 10; x < 30; ++x) Pixel8(layer, x, y) = {255, 220, static_cast<A_u_char>(8 * x), 40};
        }
        ASSERT_TRUE(WritePicture(folder_ / "in.png", layer, {{0, 0, 40, 30}, 40, 30}));
        WriteBytes(folder_ / "moving.json", kMovingSoftness);
    }
    void Render(const std::string& output, std::vector<std::string> more) const {
        more.insert(more.begin(),
                    {"render", "in.png", "-o", output, "--preset", "moving.json", "--module", UMBRANT_MODULE_FILE});
        const Outcome outcome = RunUmbrant(folder_, more);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    }
    std::string Frame(const std::string& name, int frame) const {
        return ReadBytes(folder_ / (name + "." + std::to_string(frame) + ".png"));
    }

    const Folder folder_;
};

TEST_F(CliSequenceGl, FilesDependOnNeitherThreadsNorOrderNorChunks) {
    Render("one.%d.png", {"--frames", "1-8", "--threads", "1"});
    Render("two.%d.png", {"--frames", "1-8", "--threads", "2"});
    Render("four.%d.png", {"--frames", "8-1", "--threads", "4"});
    Render("fine.%d.png", {"--frames", "1-8:4", "--threads", "3"});
    for (const char* chunk : {"1/3", "2/3", "3/3"}) Render("part.%d.png", {"--frames", "1-8", "--chunk", chunk});
    for (int frame = 1; frame <= 8; ++frame) {
        SCOPED_TRACE(frame);
        const std::string expected = Frame("one", frame);
        EXPECT_FALSE(expected.empty());
        for (const char* name : {"two", "four", "fine", "part"}) EXPECT_EQ(Frame(name, frame), expected) << name;
    }
    EXPECT_NE(Frame("one", 1), Frame("one", 5)) << "it moves";
}

TEST_F(CliSequenceGl, AFrameIsTheSinglePictureOfItsMoment) {
    // The recipe of one has the frame, that of the other its time.
    Render("seq.%d.png", {"--frames", "1-4", "--canvas", "frame", "--no-recipe"});
    Render("single.png", {"--time", "0.125", "--no-recipe"});
    EXPECT_EQ(ReadBytes(folder_ / "single.png"), Frame("seq", 3));
}

}  // namespace

}  // namespace umbrant::host
