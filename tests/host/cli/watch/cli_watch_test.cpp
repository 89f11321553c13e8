// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render --watch` over real files: what is drawn again after which change.

#include "host/cli/render/render_options.h"
#include "host/cli/watch/render_watch.h"
#include "tests/host/cli/render/sequence_fixture.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class CliWatch : public CliSequence {
 protected:
    CliWatch() {
        options_.module = TestModule("painter");
        options_.sequence.progress = "lines";
    }
    std::string Path(const std::string& name) const { return (folder_ / name).string(); }

    /// Watches while the steps are done, one before each wait for a change: each makes one, and the next finds what was
    /// drawn. Returns standard error.
    std::string Watch(const std::string& input, const std::string& output,
                      const std::vector<std::function<void()>>& steps) {
        options_.input = Path(input);
        options_.output = Path(output);
        WatchHooks hooks;
        hooks.pace = 0.05;
        std::size_t step = 0;
        hooks.waits = [&] {
            if (step == steps.size()) return false;
            steps[step++]();
            return true;
        };
        testing::internal::CaptureStderr();
        const auto code = WatchRender(options_, hooks);
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(code) << (code ? "" : code.error().sentence);
        return said;
    }
    /// An image that replaces the one of that name at once.
    void Replace(const std::string& name, int red) const {
        WriteLayer(folder_ / "new.png", 5, 3, {255, static_cast<A_u_char>(red), 100, 50});
        fs::rename(folder_ / "new.png", folder_ / name);
    }

    RenderOptions options_;
};

TEST_F(CliWatch, AStillIsDrawnAgainWhenItsInputChanges) {
    const std::string said = Watch("still.png", "shadow.png",
                                   {[&] {
                                        EXPECT_EQ(Red("shadow.png"), 200);
                                        Replace("still.png", 30);
                                    },
                                    [&] {
                                        EXPECT_EQ(Red("shadow.png"), 30);
                                        fs::remove(folder_ / "still.png");
                                    },
                                    [&] {
                                        EXPECT_EQ(Red("shadow.png"), 30) << "it stays";
                                        Replace("still.png", 60);
                                    },
                                    [&] {
                                        EXPECT_EQ(Red("shadow.png"), 60);
                                        WriteBytes(folder_ / "still.png", "no picture");
                                    },
                                    [&] {
                                        EXPECT_EQ(Red("shadow.png"), 60);
                                        WriteBytes(folder_ / "other.png", "of no interest");
                                    }});
    EXPECT_THAT(said, HasSubstr("umbrant: watching '" + Path("still.png") + "' for changes; Ctrl-C ends\n"));
    EXPECT_THAT(said, HasSubstr("umbrant: '" + Path("still.png") + "' has changed\n"));
    EXPECT_THAT(said, HasSubstr("umbrant: '" + Path("still.png") + "' is gone\n"));
    EXPECT_THAT(said, HasSubstr("umbrant: cannot read '" + Path("still.png") + "': not an image"));
}

TEST_F(CliWatch, TheTextureAndThePresetCountAsWell) {
    WriteBytes(folder_ / "p.json", R"({"version": 1, "values": {"paint/border": 0}})");
    WriteLayer(folder_ / "tex.png", 5, 3, {255, 1, 2, 3});
    options_.preset = Path("p.json");
    options_.texture = Path("tex.png");
    const auto width = [&] { return Read(folder_ / "shadow.png").pixels.Width(); };
    const std::string said =
        Watch("still.png", "shadow.png",
              {[&] {
                   EXPECT_EQ(width(), 5);
                   WriteBytes(folder_ / "p.json", R"({"version": 1, "values": {"paint/border": 2}})");
               },
               [&] {
                   EXPECT_EQ(width(), 9);
                   WriteBytes(folder_ / "p.json", R"({"version": 1, "values": {"paint/bord": 2}})");
               },
               [&] { Replace("tex.png", 9); },
               [&] {
                   fs::remove(folder_ / "shadow.png");
                   WriteBytes(folder_ / "p.json", R"({"version": 1, "values": {}})");
               },
               [&] { EXPECT_EQ(width(), 5); }});
    EXPECT_THAT(said, HasSubstr("has a mistake"));
    EXPECT_THAT(said, HasSubstr("'" + Path("tex.png") + "' has changed\n"));
}

TEST_F(CliWatch, OnlyFramesThatShowAChangedFileAreDrawnAgain) {
    options_.sequence.skipExisting = true;
    const std::string said = Watch("in.@.png", "in.##.exr",
                                   {[&] {
                                        EXPECT_TRUE(Exists("in.06.exr"));
                                        WriteBytes(folder_ / "in.03.exr", "mine");
                                        Replace("in.2.png", 90);
                                    },
                                    [&] {
                                        EXPECT_EQ(ReadBytes(folder_ / "in.03.exr"), "mine") << "was not drawn again";
                                        Replace("in.7.png", 5);
                                    },
                                    [&] {
                                        EXPECT_TRUE(Exists("in.07.exr")) << "without --frames the set follows";
                                        EXPECT_EQ(ReadBytes(folder_ / "in.03.exr"), "mine");
                                    }});
    EXPECT_THAT(said, HasSubstr("umbrant: frame 2 (1 of 1): "));
    EXPECT_THAT(said, HasSubstr("umbrant: frame 7 (1 of 1): "));
}

TEST_F(CliWatch, AnotherCanvasMeansAllFrames) {
    options_.canvas = "grow";
    Watch("in.@.png", "out.@.png",
          {[&] {
               WriteBytes(folder_ / "out.3.png", "mine");
               WriteLayer(folder_ / "in.2.png", 9, 3, {255, 1, 2, 3});
           },
           [&] {
               EXPECT_EQ(Read(folder_ / "out.3.png").pixels.Width(), 9);
               WriteBytes(folder_ / "out.3.png", "mine");
               Replace("in.4.png", 1);
           },
           [&] { EXPECT_EQ(ReadBytes(folder_ / "out.3.png"), "mine") << "the canvas is that of the run before"; }});
}

TEST_F(CliWatch, AFailureIsFollowedByARunOfAllFrames) {
    options_.sequence.frames = "1-3";
    options_.sequence.missing = "error";
    Watch("in.@.png", "out.@.png",
          {[&] { WriteBytes(folder_ / "in.2.png", "no picture"); },
           [&] {
               WriteBytes(folder_ / "out.3.png", "mine");
               Replace("in.2.png", 70);
           },
           [&] {
               EXPECT_EQ(Red("out.2.png"), 70);
               EXPECT_EQ(Red("out.3.png"), 30);
           }});
}

TEST_F(CliWatch, WhatCannotBeWatchedIsRefused) {
    const struct {
        std::vector<std::string> more;
        const char* input;
        const char* output;
    } rows[] = {{{"--watch"}, "-", "out.png"},
                {{"--watch", "--format", "png"}, "still.png", "-"},
                {{"--watch", "--dry-run"}, "still.png", "out.png"}};
    for (const auto& row : rows) {
        const Outcome outcome = Render(row.more, row.input, row.output);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr("umbrant: --watch "));
    }
    EXPECT_EQ(Render({"--watch"}, "none.png", "out.png").code, 3) << "the first render has to succeed";
}

}  // namespace

}  // namespace umbrant::host
