// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant render` with clips that cannot be read or written, through the real ffmpeg: each with its sentence and exit
// code, and no half clip.

#include "tests/host/video/clips.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

TEST_F(Clips, ClipsThatCannotBeRead) {
    NEEDS_FFMPEG();
    Ffmpeg("-f lavfi -i sine=d=0.2 -c:a pcm_s16le sound.mov");
    Ffmpeg(Clip("-map 0:v -c:v png whole.mov"));
    WriteBytes(folder_ / "words.mov", "these are no pictures");
    WriteBytes(folder_ / "empty.mov", "");
    std::filesystem::create_directory(folder_ / "folder.mov");
    WriteBytes(folder_ / "cut.mov", ReadBytes(folder_ / "whole.mov").substr(0, 3000));
    const struct {
        const char* input;
        const char* sentence;
    } rows[] = {
        {"none.mov", "cannot read 'none.mov': there is no such file\n"},
        {"folder.mov", "cannot read 'folder.mov': a folder, not a clip\n"},
        {"empty.mov", "cannot read 'empty.mov': the file is empty\n"},
        {"words.mov",
         "cannot read 'words.mov': not a clip; clips are QuickTime, MP4, Matroska, WebM, AVI, MXF, NUT, MPEG, Ogg, "
         "ASF, FLV and YUV4MPEG files\n"},
        {"cut.mov",
         "cannot read 'cut.mov': not a clip that ffmpeg can read (Invalid data found when processing input)\n"},
        {"sound.mov", "cannot read 'sound.mov': there is no video stream\n"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Render(row.input, "out.mov");
        EXPECT_EQ(outcome.code, 3) << row.input;
        EXPECT_EQ(outcome.err, "umbrant: " + std::string(row.sentence));
        EXPECT_FALSE(Exists("out.mov"));
    }
}

TEST_F(Clips, ADamagedFrameIsAFailure) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-map 0:v -c:v png in.mov"));
    std::string bytes = ReadBytes(folder_ / "in.mov");
    const std::size_t middle = bytes.size() / 2;
    for (std::size_t i = 0; i < 400; ++i) bytes[middle + i] = static_cast<char>(i * 37);
    WriteBytes(folder_ / "in.mov", bytes);
    const Outcome outcome = Render("in.mov", "out.mov");
    EXPECT_EQ(outcome.code, 3) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("cannot read frame "));
    EXPECT_FALSE(Exists("out.mov"));
}

TEST_F(Clips, WhatIsRefused) {
    WriteLayer(folder_ / "still.png", 10, 6, {255, 200, 100, 50});
    const struct {
        const char* name;
        const char* output;
        std::vector<std::string> more;
        const char* sentence;
    } rows[] = {
        {"a single picture",
         "o.mov",
         {},
         "'o.mov' is a clip, but 'still.png' is a single image; choose the frames to "
         "draw with --frames"},
        {"a container without alpha",
         "o.mp4",
         {"--frames", "1-2"},
         "'o.mp4' cannot hold alpha, so it needs something behind the result: add --background white, "
         "another colour, an image or checker"},
        {"chunks",
         "o.mov",
         {"--frames", "1-2", "--chunk", "1/2"},
         "--chunk needs one file per frame, and 'o.mov' is a single file; render the chunks to images, then make a "
         "clip of them"},
        {"gaps",
         "o.mov",
         {"--frames", "1-2", "--keep-going"},
         "--keep-going leaves out frames that fail, and 'o.mov' cannot have gaps; render images, then make a clip of "
         "them"},
        {"a compression",
         "o.mov",
         {"--frames", "1-2", "--compression", "zip"},
         "--compression applies to images only; --codec chooses how a clip is stored"},
        {"a codec for pictures",
         "o.png",
         {"--codec", "png"},
         "--codec applies to clips only, and 'o.png' is an image; clips are .mov, .mkv, .webm, .mp4, .webp or .apng"},
        {"a codec elsewhere",
         "o.webm",
         {"--frames", "1-2", "--codec", "ffv1"},
         "'o.webm' cannot hold FFV1, which goes into .mkv"},
        {"no codec",
         "o.mov",
         {"--frames", "1-2", "--codec", "prorez"},
         "there is no codec 'prorez'; the codecs are prores4444, ffv1, vp9, png, h264, webp, apng; did you mean "
         "'prores4444'?"},
    };
    for (const auto& row : rows) {
        const Outcome outcome = Render("still.png", row.output, row.more);
        EXPECT_EQ(outcome.code, 2) << row.name;
        EXPECT_EQ(outcome.err, "umbrant: " + std::string(row.sentence) + "\n") << row.name;
    }
}

TEST_F(Clips, InputAndOutputTheSame) {
    NEEDS_FFMPEG();
    Ffmpeg(Clip("-map 0:v -c:v png in.mov"));
    const Outcome outcome = Render("in.mov", "./in.mov");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err, "umbrant: './in.mov' is both input and output; give the output another name\n");
}

TEST_F(Clips, AFullDisk) {
    NEEDS_FFMPEG();
    Ffmpeg("-f lavfi -i nullsrc=s=256x256:r=24:d=1 -vf geq=random(1)*255:128:128 -c:v ffv1 in.mkv");
    // The program's own module, as the pixels of another one's process count as files.
    ProgramStart start;
    start.environment = {"UMBRANT_MODULE"};
    const ProgramRun run =
        Run({"prlimit", "--fsize=204800:204800", UMBRANT_PROGRAM, "render", "in.mkv", "-o", "out.mkv"}, start);
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.errors, HasSubstr("cannot write 'out.mkv': ffmpeg ended with exit code "));
    EXPECT_THAT(run.errors, HasSubstr("File too large"));
    EXPECT_EQ(folder_.Entries(), 1) << "no half clip";
}

}  // namespace

}  // namespace umbrant::host
