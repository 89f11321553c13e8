// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What `umbrant render` reports of many frames while it draws, to people, terminals and programs, and how it ends when
// it is interrupted or the disk is full.

#include <pty.h>

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include "tests/host/cli/render/sequence_fixture.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;
using CliSequenceProgress = CliSequence;

std::vector<Json> JsonLines(const std::string& text) {
    std::vector<Json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(ParseJson(line));
    return lines;
}

/// A process of the program that is not waited for.
class Running {
 public:
    /// With a terminal of its own as standard error when `terminal`, and as standard output when `outputToo`.
    Running(const Folder& folder, const std::vector<std::string>& arguments, bool terminal = false,
            bool outputToo = false) {
        std::vector<char*> pointers;
        arguments_ = arguments;
        arguments_.insert(arguments_.begin(), UMBRANT_PROGRAM);
        for (std::string& argument : arguments_) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        const std::string path = folder.Path().string();
        process_ = terminal ? forkpty(&terminal_, nullptr, nullptr, nullptr) : fork();
        if (process_ != 0) return;
        if (chdir(path.c_str()) != 0) _exit(126);
        if (!terminal && !std::freopen("/dev/null", "w", stderr)) _exit(126);
        if (!outputToo && !std::freopen("/dev/null", "w", stdout)) _exit(126);
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    void Interrupt() const { kill(process_, SIGINT); }
    int Wait() {
        int status = 0;
        waitpid(process_, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    /// Everything that is written to the terminal until the process ends.
    std::string Terminal() const {
        std::string text;
        char buffer[512];
        for (ssize_t got; (got = read(terminal_, buffer, sizeof(buffer))) > 0;) {
            text.append(buffer, static_cast<std::size_t>(got));
        }
        close(terminal_);
        return text;
    }

 private:
    std::vector<std::string> arguments_;
    pid_t process_ = -1;
    int terminal_ = -1;
};

TEST_F(CliSequenceProgress, QuietTellsOfFailuresAlone) {
    WriteLayer(folder_ / "in.3.png", 7, 2, {255, 30, 0, 0});
    Outcome outcome = Render({"--quiet"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    WriteBytes(folder_ / "in.3.png", "x");
    outcome = Render({"--quiet", "--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, StartsWith("umbrant: frame 3: cannot read 'in.3.png'"));
}

TEST_F(CliSequenceProgress, ProgressForPrograms) {
    std::filesystem::remove(folder_ / "in.2.png");
    const Outcome outcome = Render({"--frames", "1-3", "--progress", "json", "--missing", "hold"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    const std::vector<Json> events = JsonLines(outcome.err);
    ASSERT_EQ(events.size(), 5u);
    EXPECT_EQ(
        events[0],
        Json({{"event", "start"}, {"frames", 3}, {"width", 5}, {"height", 3}, {"canvasOption", "--canvas 0,0,5,3"}}));
    EXPECT_EQ(events[2]["event"], "frame");
    EXPECT_EQ(events[2]["frame"], 2);
    EXPECT_EQ(events[2]["state"], "drawn");
    EXPECT_EQ(events[2]["output"], "out.02.png");
    EXPECT_EQ(events[2]["heldInput"], 1);
    EXPECT_EQ(events[2]["done"], 2);
    EXPECT_EQ(events[2]["frames"], 3);
    EXPECT_EQ(events[2]["notes"], Json({"frame 2 shows 'in.1.png'"}));
    EXPECT_GE(events[2]["milliseconds"]["draw"], 0);
    EXPECT_EQ(events[4]["event"], "end");
    EXPECT_EQ(events[4]["drawn"], 3);
    EXPECT_EQ(events[4]["failed"], 0);
}

TEST_F(CliSequenceProgress, ProgressForProgramsTellsOfFailures) {
    WriteBytes(folder_ / "in.2.png", "x");
    const Outcome outcome = Render({"--frames", "1-3", "--progress", "json", "--keep-going"});
    EXPECT_EQ(outcome.code, 1);
    const std::vector<Json> events = JsonLines(outcome.err);
    ASSERT_EQ(events.size(), 5u);
    EXPECT_EQ(events[2]["state"], "failed");
    EXPECT_EQ(events[2]["code"], 3);
    EXPECT_THAT(events[2]["error"], HasSubstr("in.2.png"));
    EXPECT_EQ(events[4]["failed"], 1);
    ASSERT_EQ(events[4]["failures"].size(), 1u);
    EXPECT_EQ(events[4]["failures"][0]["frames"], "2");
    EXPECT_EQ(events[4]["failures"][0]["error"], events[2]["error"]);
    const Outcome reported = Render({"--frames", "1-3", "--json", "--keep-going"});
    EXPECT_EQ(ParseJson(reported.out)["failures"], events[4]["failures"]);
}

TEST_F(CliSequenceProgress, AFrameThatTakesLongIsToldAbout) {
    WriteLayer(folder_ / "large.png", 1500, 1500, {255, 200, 100, 50});
    const Outcome outcome = Render({"--frames", "1-3", "--progress", "0.02"}, "large.png");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, testing::ContainsRegex("umbrant: frame [123]: [a-z ]+, for [0-9.]+ s now\n"));
    EXPECT_THAT(Render({"--frames", "1-3", "--progress", "0"}, "large.png").err, Not(HasSubstr(" now")));
}

TEST_F(CliSequenceProgress, TheReportHasEveryFrame) {
    const Outcome outcome = Render({"--frames", "1-2", "--json", "--set", "paint/border=1"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const Json report = ParseJson(outcome.out);
    EXPECT_EQ(report["input"], "in.@.png");
    EXPECT_EQ(report["output"], "out.##.png");
    EXPECT_EQ(report["totals"]["drawn"], 2);
    EXPECT_EQ(report["threads"]["draw"], 1);
    ASSERT_EQ(report["frames"].size(), 2u);
    EXPECT_EQ(report["frames"][1]["output"], "out.02.png");
    EXPECT_EQ(report["frames"][1]["picture"], Json({{"left", -1}, {"top", -1}, {"right", 6}, {"bottom", 4}}));
}

TEST_F(CliSequenceProgress, AnInterruptionEndsAtOnceAndLeavesWholeFiles) {
    // Large enough to be interrupted in the middle of a write.
    WriteLayer(folder_ / "large.png", 1500, 1500, {255, 200, 100, 50});
    const auto begun = [&] {
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            if (entry.path().filename().string().find("cut") != std::string::npos) return true;
        }
        return false;
    };
    for (const int wait : {0, 7, 50, 130, 270}) {
        SCOPED_TRACE(wait);
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            if (entry.path().filename().string().starts_with("cut")) std::filesystem::remove(entry.path());
        }
        Running run(folder_,
                    Arguments("large.png", "cut.####.png",
                              {"--frames", "1-500", "--threads", "4", "--set", "paint/border=50"}, "threaded_painter"));
        while (!begun()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(std::chrono::milliseconds(wait));
        const auto begin = std::chrono::steady_clock::now();
        run.Interrupt();
        EXPECT_EQ(run.Wait(), 130);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            const std::string name = entry.path().filename().string();
            EXPECT_THAT(name, Not(StartsWith("."))) << "a half file";
            if (!name.starts_with("cut")) continue;
            EXPECT_TRUE(ReadPicture(entry.path())) << name;
        }
    }
}

TEST_F(CliSequenceProgress, ATerminalGetsABarAndASum) {
    // Large and slow, so that the bar is due on any machine: it first appears after a fifth of a second.
    WriteLayer(folder_ / "large.png", 3000, 3000, {255, 200, 100, 50});
    Running run(folder_,
                Arguments("large.png", "bar.##.png", {"--frames", "1-8", "--threads", "1", "--compression", "small"}),
                true);
    const std::string text = run.Terminal();
    EXPECT_EQ(run.Wait(), 0);
    EXPECT_THAT(text, HasSubstr("\r["));
    EXPECT_THAT(text, HasSubstr("/8"));
    EXPECT_THAT(text, HasSubstr(" frames/s"));
    EXPECT_THAT(text, HasSubstr(" left"));
    EXPECT_THAT(text, HasSubstr("  frame "));
    EXPECT_THAT(text, HasSubstr("\r\x1b[Kumbrant: 8 drawn in ")) << "the bar makes way for the sum";
    EXPECT_THAT(text, Not(HasSubstr("frame 2 (2 of 8)"))) << "no lines beside the bar";
    EXPECT_THAT(text, StartsWith("umbrant: 8 frames of 3000 x 3000, --canvas 0,0,3000,3000\r\n"));
}

TEST_F(CliSequenceProgress, TheBarMakesWayForPathsOnTheSameTerminal) {
    WriteLayer(folder_ / "large.png", 3000, 3000, {255, 200, 100, 50});
    Running run(folder_,
                Arguments("large.png", "bar.##.png", {"--frames", "1-8", "--threads", "1", "--compression", "small"}),
                true, true);
    const std::string text = run.Terminal();
    EXPECT_EQ(run.Wait(), 0);
    ASSERT_THAT(text, HasSubstr("\r[")) << "there is a bar";
    for (int frame = 1; frame <= 8; ++frame) {
        const std::string path = "bar.0" + std::to_string(frame) + ".png\r\n";
        const std::size_t at = text.find(path);
        ASSERT_NE(at, std::string::npos) << path;
        const std::string before = text.substr(0, at);
        EXPECT_TRUE(before.empty() || before.ends_with("\n") || before.ends_with("\r\x1b[K")) << path;
    }
}

TEST_F(CliSequenceProgress, TheLineOfASinglePictureMakesWayForItsPath) {
    WriteLayer(folder_ / "large.png", 1200, 1200, {255, 200, 100, 50});
    // Writing takes a while then.
    Running run(folder_,
                Arguments("large.png", "one.png", {"--progress", "0.01", "--verbose", "--compression", "small"}), true,
                true);
    const std::string text = run.Terminal();
    EXPECT_EQ(run.Wait(), 0);
    ASSERT_THAT(text, HasSubstr("\rumbrant: ")) << "there is a line";
    for (const char* line : {"one.png\r\n", "result rectangle: "}) {
        const std::size_t at = text.find(line);
        ASSERT_NE(at, std::string::npos) << line;
        const std::string before = text.substr(0, at);
        EXPECT_TRUE(before.ends_with("\n") || before.ends_with("\r\x1b[K")) << line;
    }
}

TEST_F(CliSequenceProgress, AStepIsNamedByWhatIsBeingDone) {
    WriteLayer(folder_ / "large.png", 1500, 1500, {255, 200, 100, 50});
    const Outcome outcome = Render({"--frames", "1-3", "--threads", "1", "--progress", "0.01"}, "large.png");
    EXPECT_THAT(outcome.err, testing::ContainsRegex("umbrant: frame [123]: writing, for [0-9.]+ s now\n"));
    EXPECT_THAT(outcome.err, Not(HasSubstr("it is ")));
}

}  // namespace

}  // namespace umbrant::host
