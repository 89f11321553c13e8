// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Clips for tests: the real ffmpeg where there is one, and programs of its name that do what no ffmpeg should.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/host/cli/program.h"

/// What a shell command prints, line breaks at the end left away.
inline std::string Shell(const std::string& command) {
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> buffer;
    for (std::size_t got; (got = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) text.append(buffer.data(), got);
    pclose(pipe);
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

/// Skips the test where ffmpeg is not installed.
#define NEEDS_FFMPEG()                                                                           \
    if (std::system("ffmpeg -version >/dev/null 2>&1 && ffprobe -version >/dev/null 2>&1") != 0) \
    GTEST_SKIP() << "ffmpeg is not installed (Debian: apt install ffmpeg)"

/// A folder of clips, and the program over them. Its effect is one that lays the layer into the output as it is, unless
/// a border is asked for.
class Clips : public testing::Test {
 protected:
    /// The real ffmpeg with these arguments, in the folder.
    void Ffmpeg(const std::string& arguments) const {
        const std::string command =
            "cd " + Quoted(folder_.Path().string()) + " && ffmpeg -nostdin -v error -y " + arguments;
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

    Outcome Render(const std::string& input, const std::string& output, const std::vector<std::string>& more = {},
                   const RunOptions& run = {}) const {
        std::vector<std::string> all = {"render", "-o", output, "--module", TestModule("painter")};
        all.insert(all.end(), more.begin(), more.end());
        all.insert(all.end(), {"--", input});
        return RunUmbrant(folder_, all, run);
    }

    /// ffprobe's answer about a clip.
    nlohmann::json Probe(const std::string& clip) const {
        return nlohmann::json::parse(Shell("cd " + Quoted(folder_.Path().string()) +
                                           " && ffprobe -v error -of json -show_streams -show_format " +
                                           Quoted("file:" + clip)));
    }
    nlohmann::json Pictures(const std::string& clip) const {
        const nlohmann::json told = Probe(clip);
        for (const auto& stream : told["streams"]) {
            if (stream["codec_type"] == "video") return stream;
        }
        return {};
    }
    /// The hash of what ffmpeg makes of a clip with these arguments.
    std::string Hash(const std::string& clip, const std::string& arguments) const {
        return Shell("cd " + Quoted(folder_.Path().string()) + " && ffmpeg -nostdin -v error " +
                     (clip.ends_with(".webm") ? "-c:v libvpx-vp9 " : "") + "-i " + Quoted("file:" + clip) + " " +
                     arguments + " -f streamhash -hash md5 -");
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
    RunOptions WithFakes() const { return {{"PATH=" + (folder_ / "bin").string() + ":/usr/bin:/bin"}, {}}; }

    const Folder folder_;
};
