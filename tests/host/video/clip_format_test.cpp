// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How clips are stored: codecs and containers, tags, sound, and the arguments that ffmpeg is given.

#include "host/video/clip_format.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/video/clip_writer.h"
#include "host/video/ffmpeg.h"

namespace umbrant::host {

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::string Chosen(const std::string& path, const std::string& name) {
    const auto codec = CodecFor(path, name);
    if (!codec) {
        EXPECT_EQ(codec.error().kind, ErrorKind::kUsage);
        return codec.error().sentence;
    }
    return (*codec)->name;
}

TEST(ClipFormat, CodecsByNameAndExtension) {
    const struct {
        const char* path;
        const char* name;
        const char* chosen;
    } rows[] = {
        {"a.mov", "", "prores4444"},
        {"a.MOV", "", "prores4444"},
        {"a.mkv", "", "ffv1"},
        {"a.webm", "", "vp9"},
        {"a.mp4", "", "h264"},
        {"a.webp", "", "webp"},
        {"a.apng", "", "apng"},
        {"a.mp4", "prores4444", "'a.mp4' cannot hold ProRes 4444, which goes into .mov or .mkv"},
        {"a.mov", "png", "png"},
        {"a.mkv", "prores4444", "prores4444"},
        {"a.mkv", "vp9", "vp9"},
        {"a.mkv", "png", "png"},
        {"a.avi", "",
         "cannot write 'a.avi': clips with alpha are written as .mov, .mkv, .webm, .webp or .apng, and clips without "
         "alpha as .mp4"},
        {"a.webm", "png", "'a.webm' cannot hold PNG, which goes into .mov or .mkv"},
        {"a.mov", "ffv1", "'a.mov' cannot hold FFV1, which goes into .mkv"},
        {"a.mov", "prores",
         "there is no codec 'prores'; the codecs are prores4444, ffv1, vp9, png, h264, webp, apng; did you mean "
         "'prores4444'?"},
    };
    for (const auto& row : rows) EXPECT_EQ(Chosen(row.path, row.name), row.chosen) << row.path << " " << row.name;
}

TEST(ClipFormat, NamesThatMeanClips) {
    for (const char* clip : {"a.mov", "dir.png/a.MKV", "a.webm", "a.mp4", "-a.avi"}) EXPECT_TRUE(IsClipName(clip));
    for (const char* none : {"a.png", "a", "mov", ".mov", "a.mov/b.exr", ""}) EXPECT_FALSE(IsClipName(none)) << none;
    for (const char* written : {"a.webp", "A.APNG", "a.mp4", "a.avi"}) EXPECT_TRUE(IsWrittenAsClip(written)) << written;
    EXPECT_FALSE(IsWrittenAsClip("a.png"));
    EXPECT_FALSE(IsClipName("a.webp")) << "an image, where it is read";
}

TEST(ClipFormat, BitsOfPixelFormats) {
    const struct {
        const char* name;
        int bits;
    } rows[] = {{"yuv420p", 8},  {"rgba", 8},      {"yuva444p12le", 12}, {"yuv420p10le", 10},
                {"rgb48be", 16}, {"rgba64le", 16}, {"gbrapf32le", 32},   {"gray16be", 16},
                {"p010le", 10},  {"rgb565le", 8},  {"pal8", 8},          {"ya16be", 16},
                {"y210le", 10},  {"", 8}};
    for (const auto& row : rows) EXPECT_EQ(BitsOfPixelFormat(row.name), row.bits) << row.name;
}

ClipFacts Facts() {
    ClipFacts facts;
    facts.path = "in.mkv";
    facts.demuxer = "matroska";
    facts.color = {"bt2020", "smpte2084", "bt2020nc", "pc"};
    return facts;
}

TEST(ClipFormat, Tags) {
    const ClipCodec& prores = **CodecFor("a.mov", "");
    const ClipCodec& png = **CodecFor("a.mov", "png");
    const ClipCodec& vp9 = **CodecFor("a.webm", "");
    const ClipFacts hdr = Facts();
    EXPECT_EQ(TagsFor(prores, &hdr), (ColorTags{"bt2020", "smpte2084", "bt2020nc", "tv"})) << "it has no other range";
    EXPECT_EQ(TagsFor(vp9, &hdr), (ColorTags{"bt2020", "smpte2084", "bt2020nc", "pc"}));
    EXPECT_EQ(TagsFor(png, &hdr), (ColorTags{"bt2020", "smpte2084", "gbr", "pc"}));
    EXPECT_EQ(TagsFor(prores, nullptr), (ColorTags{"bt709", "bt709", "bt709", "tv"})) << "pictures";
    const ClipCodec& h264 = **CodecFor("a.mp4", "");
    EXPECT_EQ(TagsFor(h264, nullptr), (ColorTags{"bt709", "bt709", "bt709", "tv"}));
    EXPECT_EQ(TagsFor(h264, &hdr), (ColorTags{"bt2020", "smpte2084", "bt2020nc", "tv"}));
    ClipFacts unnamed;
    EXPECT_EQ(TagsFor(h264, &unnamed), (ColorTags{"bt709", "bt709", "bt709", "tv"})) << "players guess otherwise";
    EXPECT_EQ(TagsFor(prores, &unnamed), (ColorTags{"", "", "", "tv"})) << "nothing is made up";
    EXPECT_THAT(EncoderFilters(prores, RawFormat::k8, TagsFor(prores, &unnamed), ""),
                HasSubstr(":out_color_matrix=bt601:out_range=tv"))
        << "what ffmpeg reads such clips with";
    unnamed.isRgb = true;
    EXPECT_EQ(TagsFor(prores, &unnamed).matrix, "bt709") << "the colours had no matrix, and need one now";
}

TEST(ClipFormat, SoundStaysWhereTheContainerTakesIt) {
    ClipFacts facts = Facts();
    facts.sound = {"aac", "flac"};
    SoundPlan plan = PlanSound(facts, "o.mkv");
    EXPECT_EQ(plan.codecs, (std::vector<std::string>{"copy", "copy"}));
    EXPECT_EQ(plan.note, "");
    plan = PlanSound(facts, "o.mov");
    EXPECT_EQ(plan.codecs, (std::vector<std::string>{"copy", "pcm_s24le"}));
    EXPECT_EQ(plan.note, "the sound of 'in.mkv' (flac) is converted to pcm_s24le, since .mov cannot hold the original");
    facts.sound = {"opus", "pcm_s16le"};
    plan = PlanSound(facts, "o.webm");
    EXPECT_EQ(plan.codecs, (std::vector<std::string>{"copy", "libopus"}));
    EXPECT_EQ(plan.note,
              "the sound of 'in.mkv' (pcm_s16le) is converted to opus, since .webm cannot hold the original");
}

/// The arguments as one line.
std::string Arguments(const ClipTarget& target) {
    std::string line;
    for (const std::string& argument : EncoderArguments(target, ".o.part.mov")) line += argument + " ";
    return line;
}

TEST(ClipFormat, ArgumentsOfTheEncoder) {
    ClipFacts facts = Facts();
    facts.sound = {"aac"};
    facts.start = 0.25;
    facts.aspect = "64:45";
    facts.timecode = "01:00:00:00";
    ClipTarget target;
    target.path = "o.mov";
    target.codec = *CodecFor("o.mov", "");
    target.width = 20;
    target.height = 10;
    target.rate = {30000, 1001};
    EXPECT_THAT(Arguments(target),
                HasSubstr("-f rawvideo -pix_fmt rgba -video_size 20x10 -framerate 30000/1001 -i pipe:0 "
                          "-map 0:v:0 -vf "));
    EXPECT_THAT(Arguments(target), HasSubstr("-fps_mode passthrough -f mov file:.o.part.mov "));
    target.from = &facts;
    EXPECT_THAT(Arguments(target), Not(HasSubstr("1:a")));
    target.keepsSound = true;
    const std::string whole = Arguments(target);
    EXPECT_THAT(whole, HasSubstr("-itsoffset -0.250000 -protocol_whitelist file,pipe -format_whitelist matroska "
                                 "-f matroska -i file:in.mkv -map 0:v:0 -map 1:a:0 -c:a:0 copy "
                                 "-map_metadata 1 -map_chapters 1 -timecode 01:00:00:00 "));
    EXPECT_THAT(whole, HasSubstr("setsar=64/45"));
    target.part = {2.0, 1.5};
    const std::string part = Arguments(target);
    EXPECT_THAT(part, HasSubstr("-ss 2.250000 -t 1.500000 -protocol_whitelist file,pipe -format_whitelist matroska "
                                "-f matroska -i file:in.mkv "));
    EXPECT_THAT(part, HasSubstr("-map_chapters -1 ")) << "they would not fit any more";
    EXPECT_THAT(part, Not(HasSubstr("-timecode")));
}

TEST(ClipFormat, FileNamesAreNoOptionsAndNoProtocols) {
    EXPECT_EQ(FileArgument("-rf.mov"), "file:-rf.mov");
    EXPECT_EQ(FileArgument("http://a/b%04d.mov"), "file:http://a/b%04d.mov");
}

TEST(ClipFormat, FiltersOfTheDecoder) {
    EXPECT_EQ(DecoderFilters(RawFormat::k16, 4, 3, 12),
              "trim=start_frame=12,scale=4:3:flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp,"
              "format=rgba64le");
    EXPECT_THAT(DecoderFilters(RawFormat::k8, 4, 3, 0), Not(HasSubstr("trim")));
}

TEST(ClipFormat, HowFfmpegEnded) {
    EXPECT_EQ(EndText("ffmpeg", {28, 0, "No space left on device"}),
              "ffmpeg ended with exit code 28: No space left on device");
    EXPECT_EQ(EndText("ffmpeg", {-1, 9, ""}), "ffmpeg was ended by signal 9 (Killed)");
}

}  // namespace

}  // namespace umbrant::host
