// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Signals and closed outputs that end the program early: a plain exit code, no file under construction, no message.

#include <fcntl.h>
#include <sys/stat.h>

#include <fstream>
#include <span>

#include "host/image/encoded_file.h"
#include "host/process/child_process.h"
#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/host/cli/running_program.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr struct {
    int signal;
    const char* end;
} kSignals[] = {{SIGHUP, "exit 129"}, {SIGINT, "exit 130"}, {SIGQUIT, "exit 131"}, {SIGTERM, "exit 143"}};

class CliInterruption : public CliSequence {
 protected:
    /// One image that takes long to write.
    std::vector<std::string> SlowImage(const std::string& output = "out.png") const {
        return Arguments("still.png", output, {"--set", "paint/border=1500", "--depth", "32"});
    }
    /// Many images, several under construction at a time.
    std::vector<std::string> SlowSequence() const {
        return Arguments("still.png", "out.####.png",
                         {"--frames", "1-500", "--threads", "4", "--set", "paint/border=700", "--depth", "32"},
                         "threaded_painter");
    }
    bool WaitForHiddenFile() const {
        return WaitUntil([&] { return !HiddenFiles(folder_.Path()).empty(); });
    }
    std::string ReadError() const { return ReadBytes(folder_ / "err.txt"); }
    /// Standard output is `descriptor` and standard error a file.
    Before Outputs(int descriptor) const {
        const std::string file = (folder_ / "err.txt").string();
        return [descriptor, file] {
            dup2(descriptor, STDOUT_FILENO);
            const int errors = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
            dup2(errors, STDERR_FILENO);
            close(errors);
        };
    }
};

TEST_F(CliInterruption, EverySignalEndsAnImageWithAPlainCodeAndNothingLeft) {
    for (const auto& row : kSignals) {
        SCOPED_TRACE(row.end);
        RunningProgram program(folder_, SlowImage());
        ASSERT_TRUE(WaitForHiddenFile());
        program.Send(row.signal);
        EXPECT_EQ(program.Wait(), row.end);
        EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
        EXPECT_FALSE(Exists("out.png"));
    }
}

TEST_F(CliInterruption, EverySignalEndsASequenceWithAPlainCodeAndWholeFiles) {
    for (const auto& row : kSignals) {
        SCOPED_TRACE(row.end);
        RunningProgram program(folder_, SlowSequence());
        ASSERT_TRUE(WaitUntil([&] { return HiddenFiles(folder_.Path()).size() > 1; }));
        program.Send(row.signal);
        EXPECT_EQ(program.Wait(), row.end);
        EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            if (!entry.path().filename().string().starts_with("out.")) continue;
            EXPECT_TRUE(ReadPicture(entry.path())) << entry.path();
            std::filesystem::remove(entry.path());
        }
    }
}

TEST_F(CliInterruption, AnInterruptedRunSaysNothing) {
    // What the signal breaks in other threads is no failure of a file.
    for (int round = 0; round < 5; ++round) {
        const int lost = open("/dev/null", O_WRONLY | O_CLOEXEC);
        std::vector<std::string> arguments = SlowSequence();
        arguments.insert(arguments.end(), {"--keep-going", "--quiet"});
        RunningProgram program(folder_, arguments, Outputs(lost));
        close(lost);
        ASSERT_TRUE(WaitUntil([&] { return HiddenFiles(folder_.Path()).size() > 1; }));
        program.Send(SIGTERM);
        EXPECT_EQ(program.Wait(), "exit 143");
        EXPECT_EQ(ReadError(), "");
    }
}

/// Just below the most values and the most bytes that a preset may have, so that it takes long to read. Its only
/// mistake is in its shape, which is known at its end.
std::string HugePreset() {
    constexpr int kValues = 1'900'000;
    std::string text = R"({ "version": 1, "values": [)";
    text.reserve(std::size_t{64} << 20);
    for (int i = 0; i < kValues; ++i) text += "0.12345678901234567890123456789,";
    return text + "0] }";
}

TEST_F(CliInterruption, AnInterruptEndsTheReadingOfAHugePreset) {
    // A named pipe shows how far the program is: it has taken what could be written.
    ASSERT_EQ(mkfifo((folder_ / "preset.json").c_str(), 0600), 0);
    const std::string preset = HugePreset();
    ASSERT_GT(preset.size(), std::size_t{57} << 20);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    const int lost = open("/dev/null", O_WRONLY | O_CLOEXEC);
    // The pipe's end lets the program begin with the text; without it nothing but the signal can end the run.
    for (const bool hasEnd : {true, false}) {
        SCOPED_TRACE(hasEnd ? "the whole text" : "a text without an end");
        RunningProgram program(folder_, Arguments("still.png", "out.png", {"--preset", "preset.json"}), Outputs(lost));
        const int pipe = open((folder_ / "preset.json").c_str(), O_WRONLY | O_CLOEXEC);
        EXPECT_FALSE(WriteAll(pipe, std::as_bytes(std::span(preset))));
        if (hasEnd) close(pipe);
        program.Send(SIGINT);
        EXPECT_EQ(program.Wait(), "exit 130");
        EXPECT_EQ(ReadError(), "");
        EXPECT_FALSE(Exists("out.png"));
        EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
        if (!hasEnd) close(pipe);
    }
    close(lost);
    std::signal(SIGPIPE, before);
}

TEST_F(CliInterruption, ClosingTheTerminalIsAHangUp) {
    RunningProgram program(folder_, SlowSequence(), {}, RunningProgram::Terminal::kOwn);
    ASSERT_TRUE(WaitForHiddenFile());
    program.CloseTerminal();
    EXPECT_EQ(program.Wait(), "exit 129");
    EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
}

TEST_F(CliInterruption, AHangUpThatIsIgnoredFromTheStartStaysIgnored) {
    RunningProgram program(folder_, SlowSequence(), [] { std::signal(SIGHUP, SIG_IGN); });
    ASSERT_TRUE(WaitForHiddenFile());
    program.Send(SIGHUP);
    ASSERT_TRUE(WaitUntil([&] { return Exists("out.0003.png"); })) << "it goes on after the hang-up";
    program.Send(SIGTERM);
    EXPECT_EQ(program.Wait(), "exit 143");
}

TEST_F(CliInterruption, AReaderThatTakesOneLineEndsTheSequenceWithoutAMessage) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    std::vector<std::string> arguments = SlowSequence();
    arguments.emplace_back("--quiet");
    RunningProgram program(folder_, arguments, Outputs(ends[1]));
    close(ends[1]);
    char byte = 0;
    std::string line;
    while (read(ends[0], &byte, 1) == 1 && byte != '\n') line += byte;
    close(ends[0]);
    EXPECT_EQ(line, "out.0001.png");
    EXPECT_EQ(program.Wait(), "exit 141");
    EXPECT_EQ(ReadError(), "");
    EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
    EXPECT_FALSE(Exists("out.0500.png")) << "the rest is not drawn";
}

TEST_F(CliInterruption, HeadTakesTheFirstLine) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    std::vector<std::string> arguments = SlowSequence();
    arguments.emplace_back("--quiet");
    RunningProgram program(folder_, arguments, Outputs(ends[1]));
    close(ends[1]);
    ProgramStart start;
    start.input = Stream::Descriptor(ends[0]);
    start.program = "head";
    start.arguments = {"-1"};
    start.output = Stream::File((folder_ / "first.txt").string());
    const auto head = ChildProcess::Start(start);
    close(ends[0]);
    ASSERT_TRUE(head) << head.error().sentence;
    EXPECT_TRUE((*head)->Wait().IsWell());
    EXPECT_EQ(program.Wait(), "exit 141");
    EXPECT_EQ(ReadBytes(folder_ / "first.txt"), "out.0001.png\n");
    EXPECT_EQ(ReadError(), "");
    EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
}

TEST_F(CliInterruption, EveryCommandEndsWithoutAMessageWhenNobodyReadsItsResults) {
    WriteBytes(folder_ / "moving.json", kMovingBorder);
    const std::string painter = TestModule("painter");
    const std::vector<std::string> rows[] = {
        {"render", "still.png", "-o", "out.png", "--module", painter},
        {"render", "still.png", "-o", "out.png", "--module", painter, "--json"},
        {"render", "in.@.png", "-o", "out.@.png", "--module", painter},
        {"render", "in.@.png", "-o", "out.@.png", "--module", painter, "--json"},
        {"params", "--module", painter},
        {"info", "--module", painter},
        {"compare", "still.png", "in.1.png"},
        {"panel", "--module", painter, "--json"},
        {"panel", "--module", painter, "-o", "panel.png"},
        {"curves", "--module", painter, "--preset", "moving.json", "--json"},
        {"curves", "--module", painter, "--preset", "moving.json", "-o", "curves.png"},
        {"validate", "--list"},
        {"validate", TestModule("JudgedNone"), "--include", "^1\\.1 "},
        {"farm", "slurm", "in.@.png", "-o", "out.@.png"},
        {"completion", "bash"},
        {"--help"},
        {"--version"},
        {"render", "--help"},
    };
    for (const auto& arguments : rows) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        close(ends[0]);
        RunningProgram program(folder_, arguments, Outputs(ends[1]));
        close(ends[1]);
        EXPECT_EQ(program.Wait(), "exit 141");
        EXPECT_THAT(ReadError(), Not(HasSubstr("cannot be written")));
    }
}

TEST_F(CliInterruption, TheNextRunRemovesWhatAKilledOneLeft) {
    const auto kill = [&] {
        RunningProgram program(folder_, SlowSequence());
        EXPECT_TRUE(WaitUntil([&] { return HiddenFiles(folder_.Path()).size() > 1; }));
        program.Send(SIGKILL);
        EXPECT_EQ(program.Wait(), "signal 9");
        return HiddenFiles(folder_.Path());
    };
    const auto removed = [](std::size_t files) {
        return "umbrant: removed " + std::to_string(files) + " unfinished file" + (files == 1 ? "" : "s") +
               " of earlier runs from '.'\n";
    };
    std::vector<std::string> left = kill();
    ASSERT_FALSE(left.empty());
    for (const std::string& name : left) EXPECT_EQ(name.size(), 40u) << name;
    Outcome outcome = RunUmbrant(folder_, Arguments("in.1.png", "one.png", {}));
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, removed(left.size()));
    EXPECT_EQ(outcome.out, "one.png\n");
    EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());

    left = kill();
    outcome = RunUmbrant(folder_, Arguments("in.@.png", "out.##.png", {}));
    EXPECT_EQ(outcome.code, 0);
    EXPECT_THAT(outcome.err, HasSubstr(removed(left.size())));
    EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
    EXPECT_THAT(RunUmbrant(folder_, Arguments("in.@.png", "out.##.png", {})).err, Not(HasSubstr("removed")));

    WriteBytes(folder_ / "moving.json", kMovingBorder);
    left = kill();
    outcome =
        RunUmbrant(folder_, {"curves", "--module", TestModule("painter"), "--preset", "moving.json", "-o", "c.png"});
    EXPECT_EQ(outcome.err, removed(left.size()));
    left = kill();
    outcome = RunUmbrant(folder_, {"panel", "--module", TestModule("painter"), "-o", "p.png"});
    EXPECT_EQ(outcome.err, removed(left.size()));
    kill();
    outcome = RunUmbrant(folder_, Arguments("in.1.png", "one.png", {"--quiet"}));
    EXPECT_EQ(outcome.err, "");
    EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
}

TEST_F(CliInterruption, ARunLeavesTheFilesOfAnotherThatStillWrites) {
    RunningProgram program(folder_, SlowImage());
    ASSERT_TRUE(WaitForHiddenFile());
    program.Send(SIGSTOP);
    const std::vector<std::string> there = HiddenFiles(folder_.Path());
    const Outcome outcome = RunUmbrant(folder_, Arguments("in.1.png", "one.png", {}));
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(HiddenFiles(folder_.Path()), there);
    program.Send(SIGCONT);
    EXPECT_EQ(program.Wait(), "exit 0");
    EXPECT_TRUE(ReadPicture(folder_ / "out.png"));
}

TEST_F(CliInterruption, ANameOf255BytesCanBeWritten) {
    for (const char* ending : {".png", ".exr", ".tif", ".jpg"}) {
        const std::string name = std::string(255 - 4, 'n') + ending;
        const Outcome outcome = RunUmbrant(folder_, Arguments("in.1.png", name, {}));
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_EQ(outcome.out, name + "\n");
        EXPECT_TRUE(ReadPicture(folder_ / name)) << ending;
    }
    const Outcome longer = RunUmbrant(folder_, Arguments("in.1.png", std::string(256 - 4, 'n') + ".png", {}));
    EXPECT_EQ(longer.code, 3);
    EXPECT_THAT(longer.err, HasSubstr("File name too long"));
}

/// Bit N-1 of the field is signal N, as in /proc/PID/status.
unsigned long SignalsIn(const std::filesystem::path& status, const std::string& field) {
    std::ifstream in(status);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(field + ":")) return std::stoul(line.substr(field.size() + 1), nullptr, 16);
    }
    return ~0UL;
}

constexpr unsigned long Bit(int signal) {
    return 1UL << (signal - 1);
}
constexpr unsigned long kEnding = Bit(SIGHUP) | Bit(SIGINT) | Bit(SIGQUIT) | Bit(SIGTERM);

TEST_F(CliInterruption, EveryThreadBlocksTheSignals) {
    RunningProgram program(folder_, SlowSequence());
    ASSERT_TRUE(WaitUntil([&] { return HiddenFiles(folder_.Path()).size() > 1; }));
    int threads = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(program.Process()) + "/task")) {
        const unsigned long blocked = SignalsIn(entry.path() / "status", "SigBlk");
        // The one that waits for the signals has them unblocked for just that time.
        if (blocked & Bit(SIGTERM)) ++threads;
        EXPECT_TRUE((blocked & kEnding) == kEnding || (blocked & kEnding) == 0) << std::hex << blocked;
    }
    EXPECT_GT(threads, 4);
}

/// The processes that this one started.
std::vector<pid_t> ChildrenOf(pid_t process) {
    const std::string id = std::to_string(process);
    std::ifstream in("/proc/" + id + "/task/" + id + "/children");
    std::vector<pid_t> children;
    for (pid_t child; in >> child;) children.push_back(child);
    return children;
}

TEST_F(CliInterruption, ProcessesOfTheJudgeBlockNoSignals) {
    RunningProgram program(folder_, {"validate", TestModule("JudgedNone"), "--strictness", "7", "--include", "^7"});
    const auto isUnblocked = [](pid_t process) {
        return (SignalsIn("/proc/" + std::to_string(process) + "/status", "SigBlk") & kEnding) == 0;
    };
    // A check has a process of its own, started anew, and its parts are forks of that.
    EXPECT_TRUE(WaitUntil([&] {
        for (const pid_t check : ChildrenOf(program.Process())) {
            for (const pid_t part : ChildrenOf(check)) {
                if (isUnblocked(part)) return true;
            }
        }
        return kill(program.Process(), 0) != 0;
    }));
    EXPECT_EQ(program.Wait(), "exit 0");
}

TEST_F(CliInterruption, AWatchEndsWithThePlainCode) {
    const auto red = [&] { return Exists("out.png") ? Red("out.png") : -1; };
    for (const auto& [signal, end] : {std::pair(SIGINT, "exit 130"), {SIGTERM, "exit 143"}}) {
        SCOPED_TRACE(end);
        WriteLayer(folder_ / "still.png", 5, 3, {255, 20, 100, 50});
        std::filesystem::remove(folder_ / "out.png");
        RunningProgram program(folder_, Arguments("still.png", "out.png", {"--watch"}));
        ASSERT_TRUE(WaitUntil([&] { return red() == 20; }));
        // A change, also if the program does not wait yet.
        WriteLayer(folder_ / "still.png", 5, 3, {255, 120, 100, 50});
        EXPECT_TRUE(WaitUntil([&] { return red() == 120; }));
        program.Send(signal);
        EXPECT_EQ(program.Wait(), end);
        EXPECT_THAT(HiddenFiles(folder_.Path()), IsEmpty());
    }
}

}  // namespace

}  // namespace umbrant::host
