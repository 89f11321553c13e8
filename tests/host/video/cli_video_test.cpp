// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` with clips, through the real ffmpeg: what is kept, and which frames come out.

#include "tests/host/video/clips.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(Clips, ClipInClipOutKeepsPicturesSoundRateAndTags) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-c:v png -c:a pcm_s16le -metadata title=Tone in.mov",
                ",setparams=color_primaries=bt709:color_trc=iec61966-2-1"));
    const Outcome outcome = Render("in.mov", "out.mov", {"--codec", "png", "--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(PictureHash("out.mov", "rgba"), PictureHash("in.mov", "rgba"));
    EXPECT_EQ(SoundHash("out.mov"), SoundHash("in.mov"));
    const auto pictures = Pictures("out.mov");
    EXPECT_EQ(pictures["r_frame_rate"], "30000/1001");
    EXPECT_EQ(pictures["avg_frame_rate"], "30000/1001");
    EXPECT_EQ(pictures["nb_frames"], "12");
    EXPECT_EQ(pictures["color_primaries"], "bt709");
    EXPECT_EQ(pictures["color_transfer"], "iec61966-2-1");
    EXPECT_EQ(Probe("out.mov")["format"]["tags"]["title"], "Tone");
    const auto report = ParseJson(outcome.out);
    EXPECT_EQ(report["clip"], nlohmann::json({{"codec", "png"},
                                              {"rate", "30000/1001"},
                                              {"left", 0},
                                              {"top", 0},
                                              {"right", 64},
                                              {"bottom", 48},
                                              {"sound", 1}}));
    EXPECT_EQ(folder_.Entries(), 2) << "nothing else is left";
}

TEST_F(Clips, AReplacedClipKeepsItsModeAndALinkItsPlace) {
    NEEDS_FFMPEG();
    namespace fs = std::filesystem;
    // Neither what a new file has nor what could be written to while ffmpeg is at work.
    const fs::perms mode = fs::perms::owner_read | fs::perms::group_read;
    Ffmpeg("-f lavfi -i testsrc2=s=16x12:r=25:d=0.12 -c:v png in.mov");
    fs::create_directory(folder_ / "far");
    WriteBytes(folder_ / "far/a.mov", "old");
    fs::permissions(folder_ / "far/a.mov", mode);
    fs::create_symlink("far/a.mov", folder_ / "near.mov");
    fs::create_symlink("near.mov", folder_ / "nearer.mov");
    fs::create_symlink("far/new.mov", folder_ / "dangling.mov");
    const Outcome outcome = Render("in.mov", "nearer.mov", {"--codec", "png"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(fs::is_symlink(folder_ / "near.mov"));
    EXPECT_TRUE(fs::is_symlink(folder_ / "nearer.mov"));
    EXPECT_EQ(fs::status(folder_ / "far/a.mov").permissions(), mode);
    EXPECT_EQ(PictureHash("far/a.mov", "rgba"), PictureHash("in.mov", "rgba"));
    ASSERT_EQ(Render("in.mov", "dangling.mov", {"--codec", "png"}).code, 0);
    EXPECT_TRUE(fs::is_symlink(folder_ / "dangling.mov"));
    EXPECT_EQ(PictureHash("far/new.mov", "rgba"), PictureHash("in.mov", "rgba"));
    EXPECT_EQ(folder_.Entries(), 5) << "nothing else is left";
}

TEST_F(Clips, TagsOfTelevisionAreKept) {
    NEEDS_FFMPEG();
    Ffmpeg(
        "-f lavfi -i testsrc2=s=64x48:r=25:d=0.2 -vf "
        "format=yuv422p10le,setparams=color_primaries=bt2020:color_trc=arib-std-b67:colorspace=bt2020nc:range=tv,"
        "setsar=64/45 -c:v prores_ks in.mov");
    ASSERT_EQ(Render("in.mov", "out.mov").code, 0);
    ASSERT_EQ(Render("in.mov", "out.webm").code, 0);
    for (const char* name : {"out.mov", "out.webm"}) {
        const auto pictures = Pictures(name);
        EXPECT_EQ(pictures["color_primaries"], "bt2020") << name;
        EXPECT_EQ(pictures["color_transfer"], "arib-std-b67") << name;
        EXPECT_EQ(pictures["color_space"], "bt2020nc") << name;
        EXPECT_EQ(pictures["color_range"], "tv") << name;
        EXPECT_EQ(pictures["r_frame_rate"], "25/1") << name;
    }
    EXPECT_EQ(Pictures("out.mov")["codec_name"], "prores");
    EXPECT_EQ(Pictures("out.mov")["profile"], "4444");
    EXPECT_EQ(Pictures("out.mov")["sample_aspect_ratio"], "64:45");
    EXPECT_EQ(Pictures("out.webm")["sample_aspect_ratio"], "91:64") << "WebM has it as a width in whole pixels";
    EXPECT_EQ(Pictures("out.webm")["codec_name"], "vp9");
}

TEST_F(Clips, EachExtensionHasItsCodec) {
    NEEDS_FFMPEG();
    WriteLayer(folder_ / "still.png", 16, 12, {128, 200, 100, 50});
    const struct {
        const char* output;
        std::vector<std::string> more;
        const char* codec;
        const char* pixels;
    } rows[] = {
        {"a.mov", {}, "prores", "yuva444p12le"},
        {"a.mkv", {}, "ffv1", "bgra"},
        {"a.webm", {}, "vp9", "yuv420p"},
        {"b.mov", {"--codec", "png"}, "png", "rgba"},
        {"c.mkv", {"--codec", "prores4444"}, "prores", "yuva444p12le"},
        {"d.mkv", {"--depth", "32"}, "ffv1", "gbrap16le"},
        {"d.mov", {"--codec", "png", "--depth", "32"}, "png", "rgba64be"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> more = {"--frames", "1-3"};
        more.insert(more.end(), row.more.begin(), row.more.end());
        const Outcome outcome = Render("still.png", row.output, more);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.out, std::string(row.output) + "\n");
        EXPECT_EQ(Pictures(row.output)["codec_name"], row.codec) << row.output;
        EXPECT_EQ(Pictures(row.output)["pix_fmt"], row.pixels) << row.output;
        EXPECT_EQ(Pictures(row.output)["r_frame_rate"], "24/1") << row.output;
    }
    ASSERT_EQ(Render("a.webm", "back.#.png").code, 0);
    Picture back = Read(folder_ / "back.0002.png");
    EXPECT_NEAR(Pixel8(back.pixels, 8, 6).alpha, 128, 2) << "the alpha of VP9 is read, too";
}

TEST_F(Clips, ClipsAndSequencesIntoEachOther) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-map 0:v -c:v png in.mov"));
    Outcome outcome = Render("in.mov", "p.##.png");
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.out, StartsWith("p.00.png\np.01.png\n")) << "a clip's frames are numbered from 0";
    EXPECT_TRUE(Exists("p.11.png"));
    ASSERT_EQ(Render("p.##.png", "back.mkv", {"--rate", "29.97", "--threads", "3"}).code, 0);
    EXPECT_EQ(PictureHash("back.mkv", "rgba"), PictureHash("in.mov", "rgba")) << "in order, whatever the threads do";
    EXPECT_EQ(Pictures("back.mkv")["r_frame_rate"], "30000/1001");
}

TEST_F(Clips, ChoosesFrames) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-map 0:v -c:v png in.mov"));
    ASSERT_EQ(Render("in.mov", "p.##.png").code, 0);
    const struct {
        const char* name;
        std::vector<std::string> more;
        std::vector<int> frames;
    } rows[] = {
        {"a part", {"--frames", "3-6"}, {3, 4, 5, 6}},
        {"backwards", {"--frames", "4-1"}, {4, 3, 2, 1}},
        {"every fifth", {"--frames", "0-11x5"}, {0, 5, 10}},
        {"an offset", {"--frames", "1-3", "--input-offset", "8"}, {9, 10, 11}},
        {"held beyond the end", {"--frames", "10-13", "--missing", "hold"}, {10, 11, 11, 11}},
        {"left out beyond the end", {"--frames", "10-13", "--missing", "skip"}, {10, 11}},
        {"half the rate", {"--rate", "15000/1001"}, {0, 2, 4, 6, 8, 10}},
        {"twice the rate", {"--rate", "60000/1001", "--frames", "0-5"}, {0, 0, 1, 1, 2, 2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Render("in.mov", "out.mkv", row.more);
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        ASSERT_EQ(Render("out.mkv", "q.##.png").code, 0);
        for (std::size_t i = 0; i < row.frames.size(); ++i) {
            const std::string from = "p." + std::string(row.frames[i] < 10 ? "0" : "") + std::to_string(row.frames[i]);
            EXPECT_EQ(ReadBytes(folder_ / ("q.0" + std::to_string(i) + ".png")), ReadBytes(folder_ / (from + ".png")))
                << i;
        }
        EXPECT_FALSE(Exists("q.0" + std::to_string(row.frames.size()) + ".png"));
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            if (entry.path().filename().string().starts_with("q.")) std::filesystem::remove(entry.path());
        }
    }
    Outcome outcome = Render("in.mov", "o.##.png", {"--frames", "11-13"});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(
        outcome.err,
        "umbrant: cannot read frame 12 of 'in.mov', nor the others of 2 frames in all (12, 13): its frames are 0 to "
        "11; --missing hold shows other frames instead, --missing skip leaves these out\n");
    outcome = Render("in.mov", "o.##.png", {"--frames", "11-12", "--missing", "hold"});
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 12 shows frame 11 of 'in.mov'\n"));
}

TEST_F(Clips, SoundGoesWithItsFrames) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-c:v png -c:a flac in.mkv"));
    const auto sound = [&](const std::string& clip) {
        const nlohmann::json probed = Probe(clip);
        for (const auto& stream : probed["streams"]) {
            if (stream["codec_type"] == "audio") return stream["codec_name"].get<std::string>();
        }
        return std::string("none");
    };
    Outcome outcome = Render("in.mkv", "a.mkv");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(SoundHash("a.mkv"), SoundHash("in.mkv"));
    outcome = Render("in.mkv", "a.mov");
    EXPECT_THAT(
        outcome.err,
        HasSubstr(
            "umbrant: the sound of 'in.mkv' (flac) is converted to pcm_s24le, since .mov cannot hold the original\n"));
    EXPECT_EQ(sound("a.mov"), "pcm_s24le");
    outcome = Render("in.mkv", "a.webm", {"--progress", "json"});
    EXPECT_THAT(outcome.err, HasSubstr(R"({"event":"note","note":"the sound of 'in.mkv' (flac) is converted to opus)"));
    EXPECT_EQ(sound("a.webm"), "opus");
    EXPECT_EQ(Render("in.mkv", "b.webm", {"--quiet"}).err, "");
    ASSERT_EQ(Render("in.mkv", "c.mkv", {"--no-sound"}).code, 0);
    EXPECT_EQ(sound("c.mkv"), "none");
    outcome = Render("in.mkv", "d.mkv", {"--frames", "5-1"});
    EXPECT_THAT(outcome.err,
                HasSubstr("umbrant: the sound of 'in.mkv' is left out: the order of the frames is not the clip's\n"));
    EXPECT_EQ(sound("d.mkv"), "none");
    ASSERT_EQ(Render("in.mkv", "e.mkv", {"--frames", "6-11"}).code, 0);
    EXPECT_EQ(sound("e.mkv"), "flac");
    const double length = std::stod(Probe("e.mkv")["format"]["duration"].get<std::string>());
    EXPECT_NEAR(length, 0.2, 0.11) << "only the part that belongs to the frames, to the packet";
}

TEST_F(Clips, AClipIsATextureToo) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-map 0:v -c:v png in.mov"));
    WriteLayer(folder_ / "clear.png", 64, 48, {0, 0, 0, 0});
    // The texture lies at the right of the layer, in the border that the effect draws around it.
    Outcome outcome =
        Render("clear.png", "t.##.png", {"--texture", "in.mov", "--texture-at", "64,0", "--set", "paint/border=64"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    ASSERT_EQ(Render("in.mov", "p.##.png").code, 0);
    for (const char* number : {"00", "07", "11"}) {
        Picture drawn = Read(folder_ / ("t." + std::string(number) + ".png"));
        Picture frame = Read(folder_ / ("p." + std::string(number) + ".png"));
        EXPECT_EQ(Pixel8(drawn.pixels, 64 + 64 + 60, 64 + 20).red, Pixel8(frame.pixels, 60, 20).red) << number;
    }
    outcome = Render("in.mov", "both.mkv", {"--texture", "in.mov", "--texture-offset", "3", "--frames", "0-8"});
    EXPECT_EQ(outcome.code, 0) << outcome.err << "the same clip twice, at different places";
}

TEST_F(Clips, TheFrameOfAClip) {
    NEEDS_FFMPEG();
    WriteLayer(folder_ / "still.png", 10, 6, {255, 200, 100, 50});
    WriteBytes(folder_ / "grow.json", R"({"version": 2, "values": {}, "keyframes": {"paint/border": [
        {"frame": 1, "value": 0}, {"frame": 3, "value": 4}]}})");
    const std::vector<std::string> moving = {"--frames", "1-3", "--preset", "grow.json"};
    ASSERT_EQ(Render("still.png", "layer.mkv", moving).code, 0);
    EXPECT_EQ(Pictures("layer.mkv")["width"], 10) << "as a clip in an editor keeps its size";
    EXPECT_EQ(Pictures("layer.mkv")["height"], 6);
    std::vector<std::string> grown = moving;
    grown.insert(grown.end(), {"--canvas", "grow", "--json"});
    const Outcome outcome = Render("still.png", "grown.mkv", grown);
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(Pictures("grown.mkv")["width"], 18) << "what the largest frame needs, for all of them";
    EXPECT_EQ(Pictures("grown.mkv")["height"], 14);
    const auto clip = ParseJson(outcome.out)["clip"];
    EXPECT_EQ(clip["left"], -4);
    EXPECT_EQ(clip["bottom"], 10);
    ASSERT_EQ(Render("grown.mkv", "g.#.png").code, 0);
    Picture first = Read(folder_ / "g.0000.png");
    EXPECT_EQ(Pixel8(first.pixels, 3, 3).alpha, 0);
    EXPECT_EQ(Pixel8(first.pixels, 4, 4).red, 200) << "the layer stays in its place";
}

TEST_F(Clips, FramesOfOneSize) {
    NEEDS_FFMPEG();
    WriteLayer(folder_ / "in.1.png", 10, 6, {255, 200, 100, 50});
    WriteLayer(folder_ / "in.2.png", 12, 6, {255, 200, 100, 50});
    const Outcome outcome = Render("in.@.png", "out.mov");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: frame 2: the layer is 12 x 6, but all frames of a clip have the size "
                                       "of the first one, 10 x 6\n"));
    EXPECT_EQ(folder_.Entries(), 2) << "no half clip";
}

TEST_F(Clips, OddNames) {
    NEEDS_FFMPEG();
    WriteLayer(folder_ / "still.png", 10, 6, {255, 200, 100, 50});
    for (const std::string name : {"-y.mov", "a:b.mov", "100%d %s#.mov", "http:x.mov", "quo'te \"d.mov"}) {
        Outcome outcome = RunUmbrant(
            folder_, {"render", "--module", TestModule("painter"), "--frames", "1-2", "--output=" + name, "still.png"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_TRUE(Exists(name)) << name;
        outcome = Render(name, "o.#.png");
        EXPECT_EQ(outcome.code, 0) << name << outcome.err;
    }
}

TEST_F(Clips, ARateThatVaries) {
    NEEDS_FFMPEG();
    Ffmpeg(
        "-f lavfi -i testsrc2=s=32x24:r=10:d=1 -vf setpts='if(lt(N,5),N,N*3-10)' -fps_mode passthrough -c:v "
        "ffv1 vfr.mkv");
    Outcome outcome = Render("vfr.mkv", "out.mov");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err, StartsWith("umbrant: the frame rate of 'vfr.mkv' varies: 3.333 to 10 frames a second, "));
    EXPECT_THAT(outcome.err, HasSubstr("on average; choose one rate, such as --rate "));
    outcome = Render("vfr.mkv", "out.mkv", {"--rate", "10"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(Pictures("out.mkv")["r_frame_rate"], "10/1");
    EXPECT_THAT(outcome.err, HasSubstr("umbrant: 18 drawn in "))
        << "to the last frame, whose length the file does not hold";
}

TEST_F(Clips, WhatIsThereIsDone) {
    NEEDS_FFMPEG();
    WriteLayer(folder_ / "still.png", 10, 6, {255, 200, 100, 50});
    WriteBytes(folder_ / "out.mov", "mine");
    Outcome outcome = Render("still.png", "out.mov", {"--frames", "1-2", "--skip-existing"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(ReadBytes(folder_ / "out.mov"), "mine");
    ASSERT_EQ(Render("still.png", "out.mov", {"--frames", "1-2"}).code, 0);
    EXPECT_NE(ReadBytes(folder_ / "out.mov"), "mine");
}

}  // namespace

}  // namespace umbrant::host
