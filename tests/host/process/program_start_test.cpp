// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a program is started with: arguments, environment, folder, streams, descriptors and signals.

#include "host/process/program_start.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>

#include "host/process/child_process.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

class ProgramStartTest : public testing::Test {
 protected:
    ProgramStartTest() { fs::create_directories(folder_); }
    ~ProgramStartTest() override { fs::remove_all(folder_); }

    static ProgramStart Shell(const std::string& script) {
        ProgramStart start;
        start.program = "sh";
        start.arguments = {"-c", script};
        start.output = Stream::Pipe();
        return start;
    }
    /// What the program prints.
    static std::string Printed(const ProgramStart& start) {
        auto child = ChildProcess::Start(start);
        if (!child) return "not started: " + child.error().sentence;
        std::string text(1 << 16, '\0');
        text.resize((*child)->Read(std::as_writable_bytes(std::span(text))));
        EXPECT_TRUE((*child)->Wait().IsWell());
        return text;
    }
    static std::string Read(const fs::path& file) {
        std::ifstream in(file);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    const fs::path folder_ = fs::path(testing::TempDir()) / ("program_start_" + std::to_string(getpid()));
};

TEST_F(ProgramStartTest, ArgumentsAreNotReadByAShell) {
    ProgramStart start;
    start.program = "printf";
    start.arguments = {"%s|", "$HOME", "a b;c", "-x", "*", ""};
    start.output = Stream::Pipe();
    EXPECT_EQ(Printed(start), "$HOME|a b;c|-x|*||");
}

TEST_F(ProgramStartTest, ItsOwnNameMayBeAnother) {
    ProgramStart start = Shell("echo $0");
    EXPECT_EQ(Printed(start), "sh\n");
    start.name = "another";
    EXPECT_EQ(Printed(start), "another\n");
}

TEST_F(ProgramStartTest, TheEnvironmentIsThisOneWithChanges) {
    setenv("PROGRAM_START_A", "here", 1);
    setenv("PROGRAM_START_B", "here", 1);
    setenv("PROGRAM_START_AB", "here", 1);
    ProgramStart start = Shell("echo ${PROGRAM_START_A-gone} ${PROGRAM_START_B-gone} ${PROGRAM_START_AB-gone} $NEW");
    EXPECT_EQ(Printed(start), "here here here\n");
    start.environment = {"PROGRAM_START_A", "PROGRAM_START_B=a=b", "NEW=x"};
    EXPECT_EQ(Printed(start), "gone a=b here x\n");
    for (const char* name : {"PROGRAM_START_A", "PROGRAM_START_B", "PROGRAM_START_AB"}) unsetenv(name);
}

TEST_F(ProgramStartTest, StreamsAreFilesOfItsFolder) {
    std::ofstream(folder_ / "in") << "input";
    std::ofstream(folder_ / "out") << "what was in it before";
    ProgramStart start = Shell("cat; echo trouble >&2; pwd -P >where");
    start.folder = folder_.string();
    start.input = Stream::File("in");
    start.output = Stream::File("out");
    start.errors = Stream::File("err");
    EXPECT_EQ(Printed(start), "") << "there is no pipe";
    EXPECT_EQ(Read(folder_ / "out"), "input");
    EXPECT_EQ(Read(folder_ / "err"), "trouble\n");
    EXPECT_EQ(Read(folder_ / "where"), fs::canonical(folder_).string() + "\n");
    start.errors = Stream::AsOutput();
    EXPECT_EQ(Printed(start), "");
    EXPECT_EQ(Read(folder_ / "out"), "inputtrouble\n");
}

TEST_F(ProgramStartTest, AFileThatCannotBeOpenedIsAnError) {
    ProgramStart start = Shell("true");
    start.output = Stream::File((folder_ / "none/out").string());
    EXPECT_EQ(Printed(start), "not started: No such file or directory");
    start = Shell("true");
    start.folder = (folder_ / "none").string();
    EXPECT_EQ(Printed(start), "not started: No such file or directory");
}

TEST_F(ProgramStartTest, ADescriptorIsPassedUnderItsNumber) {
    const int file = open((folder_ / "passed").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const int kept = open("/dev/null", O_RDONLY);
    ASSERT_GT(kept, kPassedDescriptor);
    ProgramStart start = Shell("echo one >&3; [ -e /proc/self/fd/" + std::to_string(kept) + " ] && echo open");
    start.arguments[1] += " || echo closed";
    start.descriptor = file;
    EXPECT_EQ(Printed(start), "open\n");
    start.isIsolated = true;
    EXPECT_EQ(Printed(start), "closed\n");
    close(file);
    close(kept);
    EXPECT_EQ(Read(folder_ / "passed"), "one\none\n");
}

/// Prints the bits of the signals that are blocked and ignored.
constexpr char kSignals[] =
    "while read -r name value; do case $name in SigBlk:|SigIgn:) echo $name $((0x$value & 0x5007));; esac; done "
    "</proc/self/status";

TEST_F(ProgramStartTest, AnIsolatedOneHasTheUsualSignals) {
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipe = std::signal(SIGPIPE, SIG_IGN);
    const auto interrupt = std::signal(SIGINT, SIG_IGN);
    ProgramStart start = Shell(kSignals);
    EXPECT_EQ(Printed(start), "SigBlk: 16384\nSigIgn: 2\n") << "as this process was started, but for SIGPIPE";
    start.isIsolated = true;
    EXPECT_EQ(Printed(start), "SigBlk: 0\nSigIgn: 0\n");
    std::signal(SIGINT, interrupt);
    std::signal(SIGPIPE, pipe);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

TEST_F(ProgramStartTest, ItLeadsAProcessGroup) {
    EXPECT_EQ(Printed(Shell("read -r pid name state parent group rest </proc/self/stat; [ $group = $$ ] && echo yes")),
              "yes\n");
}

}  // namespace

}  // namespace umbrant::host
