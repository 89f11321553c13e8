// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The filter in real hosts, ffmpeg and melt, on a real clip with alpha: their pixels are those of
// `umbrant render --canvas layer`.

#include "tests/host/video/clips.h"
#include "tests/support/sanitized.h"

using namespace umbrant::host;

namespace {

/// A clip with alpha, the program's pictures of it, and the hosts with the filter.
class FilterPrograms : public Clips {
 protected:
    static constexpr int kFrames = 5;

    void SetUp() override {
        if (kIsSanitized) GTEST_SKIP() << "a program without the sanitizer cannot load what was built with it";
    }

    void MakeClip() const {
        Ffmpeg(
            "-f lavfi -i testsrc2=s=64x48:r=25:d=0.2 -vf format=rgba,geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)':"
            "a='if(lt(hypot(X-24-2*N,Y-20),14),255,if(lt(hypot(X-24-2*N,Y-20),17),128,0))' -c:v png clip.mov");
    }

    void DrawWithProgram(const std::vector<std::string>& settings) const {
        std::vector<std::string> arguments = {"render", "clip.mov",   "-o",  "ours.#.png", "--canvas",
                                              "layer",  "--renderer", "cpu", "--module",   UMBRANT_MODULE_FILE};
        for (const std::string& setting : settings) arguments.insert(arguments.end(), {"--set", setting});
        const Outcome outcome = RunUmbrant(folder_, arguments);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
    }

    /// A run of a host that finds the filter.
    ProgramRun RunHost(const std::vector<std::string>& words, const std::string& module = UMBRANT_MODULE_FILE,
                       const std::string& whatFails = "") const {
        ProgramStart start;
        start.environment = {"FREI0R_PATH=" + std::filesystem::path(FREI0R_FILTER).parent_path().string(),
                             "UMBRANT_RENDERER=cpu", "UMBRANT_MODULE=" + module, "HOME=.",
                             "UMBRANT_FREI0R=" + whatFails};
        return Run(words, start);
    }
    /// The same of ffmpeg, with these arguments; returns what it printed to standard error.
    std::string Filter(const std::string& arguments, const std::string& module = UMBRANT_MODULE_FILE,
                       const std::string& whatFails = "") const {
        const ProgramRun run = RunHost(Words("ffmpeg -nostdin -v error -i clip.mov " + arguments), module, whatFails);
        EXPECT_EQ(run.code, 0) << arguments << "\n" << run.errors;
        return run.errors;
    }

    void ExpectTheSame(const std::string& before, int first) const {
        for (int frame = 0; frame < kFrames; ++frame) {
            char name[32];
            std::snprintf(name, sizeof name, "%04d.png", frame + first);
            Picture theirs = Read(folder_ / (before + name));
            std::snprintf(name, sizeof name, "%04d.png", frame);
            Picture ours = Read(folder_ / ("ours." + std::string(name)));
            ASSERT_EQ(theirs.frameWidth, 64);
            ASSERT_EQ(theirs.frameHeight, 48);
            int shadow = 0, wrong = 0;
            for (int y = 0; y < 48; ++y) {
                for (int x = 0; x < 64; ++x) {
                    const PF_Pixel& a = Pixel8(ours.pixels, x, y);
                    const PF_Pixel& b = Pixel8(theirs.pixels, x, y);
                    wrong += a.alpha != b.alpha || a.red != b.red || a.green != b.green || a.blue != b.blue;
                    shadow += a.alpha > 0 && a.alpha < 255;
                }
            }
            EXPECT_EQ(wrong, 0) << "frame " << frame;
            EXPECT_GT(shadow, 100) << "something was drawn";
        }
    }
};

TEST_F(FilterPrograms, Ffmpeg) {
    NEEDS_FFMPEG();
    MakeClip();
    DrawWithProgram({});
    Filter("-vf frei0r=filter_name=umbrant_frei0r -start_number 0 -pix_fmt rgba all.%04d.png");
    ExpectTheSame("all.", 0);
    // In the order of the table: type, angle, origin, distance, softness, color.
    DrawWithProgram({"style/angle=45", "style/distance=40", "style/softness=15", "style/color=#ff8000"});
    Filter("-vf frei0r=umbrant_frei0r:0|0.125|0/0|0.02|0.03|1/0.501961/0 -start_number 0 -pix_fmt rgba set.%04d.png");
    ExpectTheSame("set.", 0);
}

TEST_F(FilterPrograms, FfmpegWithoutTheModule) {
    NEEDS_FFMPEG();
    MakeClip();
    const std::string filter = "-vf frei0r=umbrant_frei0r -pix_fmt rgba -c:v png ";
    std::string said = Filter(filter + "band.mov", "nowhere.so");
    EXPECT_THAT(said, testing::HasSubstr("umbrant_frei0r: "));
    EXPECT_THAT(said, testing::HasSubstr("; frames have a hatched band"));
    EXPECT_NE(PictureHash("band.mov", "rgba"), PictureHash("clip.mov", "rgba"));
    said = Filter(filter + "passed.mov", "nowhere.so", "pass");
    EXPECT_THAT(said, testing::HasSubstr("; frames pass through unchanged"));
    EXPECT_EQ(PictureHash("passed.mov", "rgba"), PictureHash("clip.mov", "rgba"));
}

TEST_F(FilterPrograms, Melt) {
    NEEDS_FFMPEG();
    if (!IsInstalled("melt")) GTEST_SKIP() << "melt is not installed (Debian: apt install melt)";
    MakeClip();
    // Its own profile is that of a television standard, of another size.
    WriteBytes(
        folder_ / "small.profile",
        "description=small\nframe_rate_num=25\nframe_rate_den=1\nwidth=64\nheight=48\nprogressive=1\n"
        "sample_aspect_num=1\nsample_aspect_den=1\ndisplay_aspect_num=4\ndisplay_aspect_den=3\ncolorspace=709\n");
    const auto melt = [&](const std::string& filter, const std::string& name) {
        // On a busy machine melt's consumer sometimes ends before its first frame, and melt then never ends, or ends as
        // if all were well.
        char last[32];
        std::snprintf(last, sizeof last, ".%04d.png", kFrames);
        const std::string line =
            "timeout 600 melt -silent -profile small.profile clip.mov -filter "
            "frei0r.umbrant_frei0r " +
            filter + " -consumer avformat:" + name +
            ".%04d.png vcodec=png pix_fmt=rgba mlt_image_format=rgba real_time=0";
        ProgramRun run;
        for (int attempt = 0; attempt < 3; ++attempt) {
            run = RunHost(Words(line));
            if (run.code == 0 && Exists(name + last)) return;
        }
        ADD_FAILURE() << line << "\n" << run.errors;
    };
    DrawWithProgram({});
    melt("", "all");
    ExpectTheSame("all.", 1);
    DrawWithProgram({"style/angle=45", "style/distance=40", "style/softness=15", "style/color=#ff8000"});
    melt("1=0.125 3=0.02 4=0.03 5=#ff8000", "set");
    ExpectTheSame("set.", 1);
    const std::string listed = RunHost(Words("melt -query filter=frei0r.umbrant_frei0r")).output;
    EXPECT_THAT(listed, testing::HasSubstr("title: Umbrant 2"));
    EXPECT_THAT(listed, testing::HasSubstr("title: Distance"));
    EXPECT_THAT(listed, testing::HasSubstr("0 to 2000 pixels"));
}

}  // namespace
