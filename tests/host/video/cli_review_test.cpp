// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Clips for people to look at: H.264 over a background, animated WebP and APNG with alpha.

#include "tests/host/video/clips.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

/// The chunks of a WebP file by their names, as often as they occur.
int CountChunks(const std::string& bytes, const std::string& name) {
    int count = 0;
    const auto length = [&](std::size_t at) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < 4; ++i) value |= std::size_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
        return value;
    };
    for (std::size_t at = 12; at + 8 <= bytes.size(); at += 8 + (length(at + 4) + 1) / 2 * 2) {
        if (bytes.compare(at, 4, name) == 0) ++count;
    }
    return count;
}

class ReviewClips : public Clips {
 protected:
    ReviewClips() {
        for (int frame = 1; frame <= 3; ++frame) {
            WriteLayer(folder_ / ("in." + std::to_string(frame) + ".png"), 17, 9,
                       {128, static_cast<A_u_char>(60 * frame), 100, 50});
        }
    }
    /// The first picture of a clip as ffmpeg decodes it.
    Picture First(const std::string& clip, const std::string& format) const {
        Ffmpeg("-i " + clip + " -frames:v 1 -pix_fmt " + format + " first.png");
        return Read(folder_ / "first.png");
    }
};

TEST_F(ReviewClips, H264IsTaggedOpaqueAndEven) {
    NEEDS_FFMPEG();
    const Outcome outcome = Render("in.@.png", "out.mp4", {"--background", "white", "--canvas", "layer"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("note: the clip has 18 x 10 pixels, as its codec has even sides only; the "
                                       "result has 17 x 9\n"));
    const auto pictures = Pictures("out.mp4");
    EXPECT_EQ(pictures["codec_name"], "h264");
    EXPECT_EQ(pictures["pix_fmt"], "yuv420p");
    EXPECT_EQ(pictures["width"], 18);
    EXPECT_EQ(pictures["height"], 10);
    EXPECT_EQ(pictures["nb_frames"], "3");
    for (const char* tag : {"color_primaries", "color_transfer", "color_space"}) EXPECT_EQ(pictures[tag], "bt709");
    EXPECT_EQ(pictures["color_range"], "tv");
    Picture first = First("out.mp4", "rgb24");
    // Half of the layer over white; chroma has one sample for four pixels.
    const PF_Pixel& inside = Pixel8(first.pixels, 4, 4);
    EXPECT_NEAR(inside.red, 157, 6);
    EXPECT_NEAR(inside.green, 177, 6);
    EXPECT_NEAR(inside.blue, 152, 6);
    EXPECT_NEAR(Pixel8(first.pixels, 17, 4).green, 255, 40) << "the column that was added has the background";
}

TEST_F(ReviewClips, AClipKeepsItsSoundAndNeedsABackground) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-c:v png -c:a pcm_s16le in.mov"));
    const Outcome without = Render("in.mov", "out.mp4");
    EXPECT_EQ(without.code, 2);
    EXPECT_THAT(without.err, HasSubstr("'out.mp4' cannot hold alpha, so it needs something behind the result: add "
                                       "--background white"));
    const Outcome outcome = Render("in.mov", "out.mp4", {"--background", "checker"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("the sound of 'in.mov' (pcm_s16le) is converted to aac"));
    EXPECT_EQ(Pictures("out.mp4")["r_frame_rate"], "30000/1001");
    const nlohmann::json probed = Probe("out.mp4");
    int sounds = 0;
    for (const auto& stream : probed["streams"]) sounds += stream["codec_name"] == "aac" ? 1 : 0;
    EXPECT_EQ(sounds, 1);
    const Outcome withoutSound = Render("in.mov", "out.apng");
    ASSERT_EQ(withoutSound.code, 0) << withoutSound.err;
    EXPECT_THAT(withoutSound.err, HasSubstr("the sound of 'in.mov' is left out: 'out.apng' cannot hold sound"));
}

TEST_F(ReviewClips, WithoutAnH264EncoderTheReasonIsSaid) {
    Fake("ffmpeg", "echo ' V..... prores_ks x'");
    const Outcome outcome = Render("in.@.png", "out.mp4", {"--background", "white"}, WithFakes());
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err, HasSubstr("cannot write 'out.mp4': this ffmpeg cannot write H.264: it was built without "
                                       "the encoder 'libx264'; write .mov, .mkv or .webm"));
    EXPECT_FALSE(Exists("out.mp4"));
}

TEST_F(ReviewClips, AnimationsForPagesKeepTheirAlpha) {
    NEEDS_FFMPEG();
    ASSERT_EQ(Render("in.@.png", "out.apng", {"--canvas", "layer"}).code, 0);
    ASSERT_EQ(Render("in.@.png", "same.mov", {"--canvas", "layer", "--codec", "png"}).code, 0);
    EXPECT_EQ(PictureHash("out.apng", "rgba"), PictureHash("same.mov", "rgba")) << "exact, alpha too";
    EXPECT_THAT(ReadBytes(folder_ / "out.apng"), HasSubstr(std::string("acTL\0\0\0\3\0\0\0\0", 12))) << "endless";
    const Outcome webp = Render("in.@.png", "out.webp", {"--canvas", "layer"});
    ASSERT_EQ(webp.code, 0) << webp.err;
    const std::string bytes = ReadBytes(folder_ / "out.webp");
    EXPECT_EQ(bytes.substr(8, 8), "WEBPVP8X");
    EXPECT_EQ(bytes[20] & 0x12, 0x12) << "an animation with alpha";
    EXPECT_EQ(CountChunks(bytes, "ANMF"), 3);
    const Outcome single = Render("in.1.png", "one.webp");
    EXPECT_EQ(single.code, 2);
    EXPECT_THAT(single.err, HasSubstr("'one.webp' is a clip, but 'in.1.png' is a single image"));
}

}  // namespace

}  // namespace umbrant::host
