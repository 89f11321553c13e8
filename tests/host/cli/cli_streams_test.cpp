// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Standard streams that are closed or cannot be written: no file of the program's takes their place, and lost results
// are never a success.

#include <fcntl.h>

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/host/cli/running_program.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

class CliStreams : public CliSequence {};

TEST_F(CliStreams, ClosedOnesLoseNoPixels) {
    const auto run = [&](const std::string& output, const Before& before) {
        RunningProgram program(
            folder_,
            Arguments("still.png", output,
                      {"--frames", "1-8", "--threads", "2", "--progress", "lines", "--set", "paint/border=300"},
                      "threaded_painter"),
            before);
        return program.Wait();
    };
    ASSERT_EQ(run("ref.##.png", {}), "exit 0");
    for (int closed = 1; closed < 8; ++closed) {
        SCOPED_TRACE(closed);
        EXPECT_EQ(run("o.##.png",
                      [closed] {
                          for (int stream = 0; stream < 3; ++stream) {
                              if (closed & (1 << stream)) close(stream);
                          }
                      }),
                  "exit 0");
        for (int frame = 1; frame <= 8; ++frame) {
            const std::string name = std::to_string(frame) + ".png";
            const std::string expected = ReadBytes(folder_ / ("ref.0" + name));
            EXPECT_FALSE(expected.empty());
            EXPECT_TRUE(ReadBytes(folder_ / ("o.0" + name)) == expected) << name;
            std::filesystem::remove(folder_ / ("o.0" + name));
        }
    }
}

TEST_F(CliStreams, ClosedOnesAreOpenInTheRightDirection) {
    // A slow run of which the descriptors can be looked at.
    RunningProgram program(
        folder_, Arguments("still.png", "out.###.png", {"--frames", "1-500", "--set", "paint/border=700"}), [] {
            for (int stream = 0; stream < 3; ++stream) close(stream);
        });
    ASSERT_TRUE(WaitUntil([&] { return !HiddenFiles(folder_.Path()).empty(); }));
    for (int stream = 0; stream < 3; ++stream) {
        const std::string process = "/proc/" + std::to_string(program.Process());
        EXPECT_EQ(std::filesystem::read_symlink(process + "/fd/" + std::to_string(stream)), "/dev/null");
        // The flags are octal, and the lowest digit is the direction.
        const std::string facts = ReadBytes(process + "/fdinfo/" + std::to_string(stream));
        const std::size_t flags = facts.find("flags:");
        ASSERT_NE(flags, std::string::npos) << facts;
        const std::size_t end = facts.find('\n', flags);
        EXPECT_EQ(facts[end - 1], stream == 0 ? '0' : '1') << facts;
    }
}

TEST_F(CliStreams, ResultsThatCannotBeWrittenAreCodeThreeInEveryCommand) {
    WriteBytes(folder_ / "moving.json", kMovingBorder);
    const std::string painter = TestModule("painter");
    const std::vector<std::string> rows[] = {
        {"render", "still.png", "-o", "out.png", "--module", painter},
        {"render", "still.png", "-o", "out.png", "--module", painter, "--json"},
        {"render", "in.@.png", "-o", "out.@.png", "--module", painter, "--quiet"},
        {"render", "in.@.png", "-o", "out.@.png", "--module", painter, "--quiet", "--json"},
        {"params", "--module", painter},
        {"params", "--module", painter, "--json"},
        {"info", "--module", painter},
        {"compare", "still.png", "still.png"},
        {"panel", "--module", painter, "--json"},
        {"panel", "--module", painter, "-o", "panel.png"},
        {"curves", "--module", painter, "--preset", "moving.json", "--json"},
        {"curves", "--module", painter, "--preset", "moving.json", "-o", "curves.png"},
        {"validate", "--list"},
        {"validate", TestModule("JudgedNone"), "--include", "^1\\.1 "},
        {"validate", TestModule("JudgedNone"), "--include", "^1\\.1 ", "--report", "json"},
        {"farm", "slurm", "in.@.png", "-o", "out.@.png"},
        {"completion", "zsh"},
        {"--help"},
        {"--version"},
        {"validate", "--help"},
    };
    for (const auto& arguments : rows) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const Outcome outcome = RunUmbrant(folder_, arguments, {{}, "/dev/full"});
        EXPECT_EQ(outcome.code, 3) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr("umbrant: the results cannot be written to standard output: "
                                           "No space left on device\n"));
    }
    EXPECT_TRUE(Exists("out.6.png")) << "all frames are drawn nevertheless";
}

TEST_F(CliStreams, LostResultsAreNotHiddenByAFrameThatFailed) {
    WriteBytes(folder_ / "in.5.png", "no image");
    const std::vector<std::string> arguments = Arguments("in.@.png", "out.@.png", {"--quiet", "--keep-going"});
    EXPECT_EQ(RunUmbrant(folder_, arguments).code, 1);
    EXPECT_EQ(RunUmbrant(folder_, arguments, {{}, "/dev/full"}).code, 3);
}

}  // namespace

}  // namespace umbrant::host
