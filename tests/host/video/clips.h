// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Clips for tests: the real ffmpeg where there is one, and programs of its name that do what no ffmpeg should.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tests/host/cli/program.h"

namespace umbrant::host {

/// Whether a program can be started.
inline bool IsInstalled(const std::string& program) {
    return RunProgram({program, "-version"}).code == 0;
}

/// ffmpeg's arguments for twelve frames that all differ, at a rate that is no whole number, with a tone beside them.
inline std::string Clip(const std::string& rest, const std::string& filters = "") {
    return "-f lavfi -i testsrc2=s=64x48:r=30000/1001:d=0.4 -f lavfi -i sine=d=0.4:r=48000 -frames:v 12 "
           "-vf format=rgba,geq=r='r(X,Y)':g='g(X,Y)':b='b(X,Y)':a='X*4'" +
           filters + " " + rest;
}

/// Skips the test where ffmpeg is not installed.
#define NEEDS_FFMPEG()                                     \
    if (!IsInstalled("ffmpeg") || !IsInstalled("ffprobe")) \
    GTEST_SKIP() << "ffmpeg is not installed (Debian: apt install ffmpeg)"

/// A folder of clips, and the program over them. Its effect is one that lays the layer into the output as it is, unless
/// a border is asked for.
class Clips : public testing::Test {
 protected:
    /// A program, run in the folder.
    ProgramRun Run(const std::vector<std::string>& words, ProgramStart start = {}) const {
        start.folder = folder_.Path().string();
        return RunProgram(words, start);
    }
    /// The real ffmpeg with these arguments, with blanks between them.
    void Ffmpeg(const std::string& arguments) const {
        const ProgramRun run = Run(Words("ffmpeg -nostdin -v error -y " + arguments));
        ASSERT_EQ(run.code, 0) << arguments << "\n" << run.errors;
    }

    Outcome Render(const std::string& input, const std::string& output, const std::vector<std::string>& more = {},
                   const ProgramOptions& run = {}) const {
        std::vector<std::string> all = {"render", "-o", output, "--module", TestModule("painter")};
        all.insert(all.end(), more.begin(), more.end());
        all.insert(all.end(), {"--", input});
        return RunUmbrant(folder_, all, run);
    }

    /// ffprobe's answer about a clip.
    nlohmann::json Probe(const std::string& clip) const;
    nlohmann::json Pictures(const std::string& clip) const;
    /// The hash of what ffmpeg makes of a clip with these arguments.
    std::string Hash(const std::string& clip, const std::string& arguments) const {
        std::vector<std::string> words = {"ffmpeg", "-nostdin", "-v", "error"};
        if (clip.ends_with(".webm")) words.insert(words.end(), {"-c:v", "libvpx-vp9"});
        words.insert(words.end(), {"-i", "file:" + clip});
        for (const std::string& word : Words(arguments)) words.push_back(word);
        words.insert(words.end(), {"-f", "streamhash", "-hash", "md5", "-"});
        const ProgramRun run = Run(words);
        EXPECT_EQ(run.code, 0) << run.errors;
        return run.output;
    }
    std::string PictureHash(const std::string& clip, const std::string& format) const {
        return Hash(clip, "-map 0:v -pix_fmt " + format);
    }
    /// Of the packets of the sound, as they are.
    std::string SoundHash(const std::string& clip) const { return Hash(clip, "-map 0:a -c copy"); }

    bool Exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

    /// Puts a program called `name` in front of all others; its lines run in sh.
    void Fake(const std::string& name, const std::string& script) const {
        std::filesystem::create_directories(folder_ / "bin");
        WriteBytes(folder_ / ("bin/" + name), "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(folder_ / ("bin/" + name), std::filesystem::perms::owner_all);
    }
    ProgramOptions WithFakes() const { return {{"PATH=" + (folder_ / "bin").string() + ":/usr/bin:/bin"}, {}}; }

    const Folder folder_;
};

}  // namespace umbrant::host
