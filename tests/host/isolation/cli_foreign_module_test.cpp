// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a module that is not the program's own may do to its process, and what the program makes of it: one sentence, a
// documented exit code, and no file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <chrono>
#include <set>
#include <thread>

#include "host/process/child_process.h"
#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

extern char** environ;

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr PF_Pixel kPixel{255, 200, 100, 50};

class CliForeignModule : public testing::Test {
 protected:
    CliForeignModule() {
        WriteLayer(folder_ / "in.png", 5, 3, kPixel);
        for (int frame = 0; frame < 6; ++frame) {
            WriteLayer(folder_ / ("in." + std::to_string(frame) + ".png"), 5, 3, kPixel);
        }
        std::filesystem::create_directory(folder_ / "out");
    }

    Outcome Run(const std::string& leaves, std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--module", module_});
        return RunUmbrant(folder_, arguments, {{"UMBRANT_TEST_LEAVES=" + leaves}, ""});
    }
    Outcome Render(const std::string& leaves, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments = {"render", "in.png", "-o", "out/out.png"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(leaves, arguments);
    }
    Outcome RenderFrames(const std::string& leaves, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments = {"render", "in.@.png", "-o", "out/out.@.png"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(leaves, arguments);
    }
    std::set<std::string> Written() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_ / "out")) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }
    std::string Sentence(const std::string& end) const {
        return "umbrant: the module '" + module_ + "' " + end + "; `umbrant validate " + module_ +
               "` examines the module\n";
    }

    const Folder folder_;
    const std::string module_ = TestModule("leaver");
};

TEST_F(CliForeignModule, DrawsAsInThisProcess) {
    const Outcome outcome = Render("");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "out/out.png\n");
    EXPECT_EQ(outcome.err, "");
    Picture picture = Read(folder_ / "out/out.png");
    EXPECT_EQ(Pixel8(picture.pixels, 4, 2).red, 200);
}

TEST_F(CliForeignModule, EveryEndOfItsProcessIsOneSentence) {
    const struct {
        const char* leaves;
        const char* end;
    } rows[] = {
        {"set-up:exit", "ended the process with exit code 0 during PF_Cmd_GLOBAL_SETUP"},
        {"set-up:quick", "ended the process with exit code 0 during PF_Cmd_GLOBAL_SETUP"},
        {"parameters:exit", "ended the process with exit code 0 during PF_Cmd_PARAMS_SETUP"},
        {"parameters:abort", "crashed with signal 6 (Aborted) during PF_Cmd_PARAMS_SETUP"},
        {"sequence:exit-7", "ended the process with exit code 7 during PF_Cmd_SEQUENCE_SETUP"},
        {"panel:quick", "ended the process with exit code 0 during PF_Cmd_UPDATE_PARAMS_UI"},
        {"pre-render:exit", "ended the process with exit code 0 during PF_Cmd_SMART_PRE_RENDER"},
        {"pre-render:crash", "crashed with signal 11 (Segmentation fault) during PF_Cmd_SMART_PRE_RENDER"},
        {"render:exit", "ended the process with exit code 0 during PF_Cmd_SMART_RENDER"},
        {"render:thread", "ended the process with exit code 0 during PF_Cmd_SMART_RENDER"},
        {"render:crash", "crashed with signal 11 (Segmentation fault) during PF_Cmd_SMART_RENDER"},
        {"render:kill", "was killed (signal 9), possibly because memory ran out, during PF_Cmd_SMART_RENDER"},
        {"dispose:quick", "ended the process with exit code 0 after PF_Cmd_SMART_PRE_RENDER"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.leaves);
        const Outcome outcome = Render(row.leaves);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, Sentence(row.end));
        EXPECT_THAT(Written(), testing::IsEmpty());
    }
}

TEST_F(CliForeignModule, EndsAfterTheImageWasWrittenAreReportedToo) {
    for (const auto& [leaves, end] : {std::pair("set-down:quick", "during PF_Cmd_GLOBAL_SETDOWN"),
                                      std::pair("destructor:quick", "while it was unloaded")}) {
        SCOPED_TRACE(leaves);
        const Outcome outcome = Render(leaves);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err, Sentence(std::string("ended the process with exit code 0 ") + end));
        EXPECT_THAT(Written(), testing::ElementsAre("out.png"));
    }
}

TEST_F(CliForeignModule, EndsWhileItIsLoadedMeanThatItCannotBeLoaded) {
    for (const char* leaves : {"constructor:exit", "constructor:quick", "registration:exit"}) {
        SCOPED_TRACE(leaves);
        const Outcome outcome = Render(leaves);
        EXPECT_EQ(outcome.code, 4);
        EXPECT_EQ(outcome.err, "umbrant: cannot load the module '" + module_ +
                                   "': it ended the process with exit code 0 while it was loaded; `umbrant validate " +
                                   module_ + "` examines the module\n");
        EXPECT_THAT(Written(), testing::IsEmpty());
    }
}

TEST_F(CliForeignModule, OtherCommandsSayTheSame) {
    const std::string during = "ended the process with exit code 0 during ";
    for (const char* command : {"info", "params", "panel"}) {
        SCOPED_TRACE(command);
        std::vector<std::string> arguments = {command, "--json"};
        Outcome outcome = Run("parameters:exit", arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err, Sentence(during + "PF_Cmd_PARAMS_SETUP"));
        EXPECT_EQ(outcome.out, "");
        outcome = Run("set-down:exit", arguments);
        EXPECT_EQ(outcome.code, 1);
        EXPECT_EQ(outcome.err, Sentence(during + "PF_Cmd_GLOBAL_SETDOWN"));
        outcome = Run("", arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        EXPECT_FALSE(ParseJsonOrDiscard(outcome.out).is_discarded()) << outcome.out;
    }
    const Outcome about = Run("about:quick", {"info"});
    EXPECT_EQ(about.code, 1);
    EXPECT_EQ(about.err, Sentence(during + "PF_Cmd_ABOUT"));
}

TEST_F(CliForeignModule, ASequenceEndsWithTheFrameAndLeavesNothingHalf) {
    for (const char* threads : {"1", "3"}) {
        SCOPED_TRACE(threads);
        const Outcome outcome = RenderFrames("render@3:exit", {"--threads", threads, "--quiet"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_THAT(outcome.err, HasSubstr("the module '" + module_ +
                                           "' ended the process with exit code 0 during PF_Cmd_SMART_RENDER; "));
        for (const std::string& name : Written()) {
            EXPECT_THAT(name, testing::MatchesRegex("out\\.[0-9]\\.png"));
            EXPECT_EQ(Read(folder_ / "out" / name).frameWidth, 5);
        }
        EXPECT_EQ(Written().count("out.3.png"), 0u);
    }
}

TEST_F(CliForeignModule, OtherFramesGoOnInANewProcess) {
    for (const char* threads : {"1", "3"}) {
        SCOPED_TRACE(threads);
        const Outcome outcome = RenderFrames("render@3:crash", {"--keep-going", "--threads", threads, "--quiet"});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_THAT(outcome.err, HasSubstr("crashed with signal 11 (Segmentation fault) during PF_Cmd_SMART_RENDER"));
        EXPECT_THAT(Written(), testing::ElementsAre("out.0.png", "out.1.png", "out.2.png", "out.4.png", "out.5.png"));
        for (const std::string& name : Written()) std::filesystem::remove(folder_ / "out" / name);
    }
}

TEST_F(CliForeignModule, TheCopiesOfItsProcessCountAsMemory) {
    for (const char* name : {"large.1.png", "large.2.png"}) WriteLayer(folder_ / name, 1000, 1000, kPixel);
    const Outcome outcome =
        Run("", {"render", "large.@.png", "-o", "out/large.@.png", "--threads", "1", "--quiet", "--verbose"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const std::string before = "at most 4 frames in progress, which take up to ";
    const std::size_t at = outcome.err.find(before);
    ASSERT_NE(at, std::string::npos) << outcome.err;
    // A layer and an output of four million bytes each: 136 million bytes without the copies, with some padding of
    // rows.
    const double mebibytes = std::stod(outcome.err.substr(at + before.size()));
    EXPECT_NEAR(mebibytes, (136e6 + 8e6) / (1 << 20), 2.5);
}

TEST_F(CliForeignModule, AnotherWorkingFolderMovesNothing) {
    for (const char* place : {"constructor:chdir", "set-up:chdir", "render:chdir"}) {
        SCOPED_TRACE(place);
        EXPECT_EQ(Render(place).code, 0);
        EXPECT_THAT(Written(), testing::ElementsAre("out.png"));
        std::filesystem::remove(folder_ / "out/out.png");
    }
    const Outcome outcome = RenderFrames("render@1:chdir", {"--quiet"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(Written().size(), 6u);
}

TEST_F(CliForeignModule, ItHasNoFileOfTheProgramOpen) {
    const Outcome outcome = RenderFrames("render:descriptors", {"--threads", "3", "--quiet"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("open: "));
    EXPECT_THAT(outcome.err, Not(HasSubstr(folder_.Path().string())));
}

TEST_F(CliForeignModule, ItHasTheUsualSignals) {
    const Outcome outcome = Render("set-up:signals");
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(CliForeignModule, NonsenseOnItsConnectionIsAFailure) {
    const Outcome outcome = Render("render:babble");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(
        outcome.err,
        "umbrant: the process of the module '" + module_ +
            "' sent an invalid message: the module has overwritten memory that it does not own; `umbrant validate " +
            module_ + "` examines the module\n");
    EXPECT_THAT(Written(), testing::IsEmpty());
}

/// Whether the process ends within a generous time.
bool Ends(int process) {
    for (int waited = 0; waited < 3000; ++waited) {
        if (kill(process, 0) != 0) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

/// The number behind a label in a file, as soon as it is there; 0 when it does not come.
int NumberIn(const std::filesystem::path& file, const std::string& label) {
    for (int waited = 0; waited < 3000; ++waited) {
        const std::string text = ReadBytes(file);
        const std::size_t at = text.find(label);
        if (at != std::string::npos && text.find('\n', at) != std::string::npos) {
            return std::stoi(text.substr(at + label.size()));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return 0;
}

TEST_F(CliForeignModule, WhatItStartedEndsWithIt) {
    const Outcome outcome = Render("render:fork-and-exit");
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr(Sentence("ended the process with exit code 3 during PF_Cmd_SMART_RENDER")));
    const std::size_t at = outcome.err.find("left: ");
    ASSERT_NE(at, std::string::npos);
    EXPECT_TRUE(Ends(std::stoi(outcome.err.substr(at + 6))));
}

TEST_F(CliForeignModule, OneThatHangsEndsWithTheProgram) {
    for (const int signal : {SIGINT, SIGKILL}) {
        SCOPED_TRACE(signal);
        const std::string log = (folder_ / ("log." + std::to_string(signal))).string();
        const std::string input = (folder_ / "in.png").string();
        const std::string output = (folder_ / "out/out.png").string();
        ProgramStart start;
        start.program = UMBRANT_PROGRAM;
        start.arguments = {"render", input, "-o", output, "--module", module_};
        start.environment = {"UMBRANT_TEST_LEAVES=render:hang"};
        start.errors = Stream::File(log);
        const auto program = ChildProcess::Start(start);
        ASSERT_TRUE(program) << program.error().sentence;
        const int hanging = NumberIn(log, "hangs: ");
        EXPECT_GT(hanging, 0);
        kill((*program)->Process(), signal);
        const ProcessEnd& end = (*program)->Wait();
        EXPECT_EQ(end.code, signal == SIGINT ? 130 : -1);
        EXPECT_EQ(end.signal, signal == SIGINT ? 0 : SIGKILL);
        EXPECT_TRUE(hanging > 0 && Ends(hanging));
        EXPECT_THAT(Written(), testing::IsEmpty());
    }
}

TEST_F(CliForeignModule, TheHiddenArgumentIsNoOptionForPeople) {
    const Outcome outcome = RunUmbrant(folder_, {"--module-process"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err, HasSubstr("there is no option '--module-process'"));
}

}  // namespace

}  // namespace umbrant::host
