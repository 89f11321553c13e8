// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Child processes: full pipes both ways, ends of all kinds, nothing left behind; what they are started with is in
// program_start_test.cpp.

#include "host/process/child_process.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace umbrant::host {

namespace {

enum class Piped { kInput, kOutput };

ProgramStart ShellStart(const std::string& script, Piped piped) {
    ProgramStart start;
    start.program = "sh";
    start.arguments = {"-c", script};
    start.input = piped == Piped::kInput ? Stream::Pipe() : Stream::Nothing();
    start.output = piped == Piped::kOutput ? Stream::Pipe() : Stream::Nothing();
    start.errors = Stream::LastLine();
    return start;
}

std::unique_ptr<ChildProcess> Started(const ProgramStart& start) {
    auto child = ChildProcess::Start(start);
    if (!child) {
        ADD_FAILURE() << child.error().sentence;
        return nullptr;
    }
    return std::move(*child);
}

std::unique_ptr<ChildProcess> Shell(const std::string& script, Piped piped) {
    return Started(ShellStart(script, piped));
}

std::string AllOf(ChildProcess& child) {
    std::string text(1 << 22, '\0');
    text.resize(child.Read(std::as_writable_bytes(std::span(text))));
    return text;
}

bool HasChildren() {
    return waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}

TEST(ChildProcess, ReadsWhatTheChildPrints) {
    auto child = Shell("printf 'one two'", Piped::kOutput);
    EXPECT_EQ(AllOf(*child), "one two");
    EXPECT_TRUE(child->Wait().IsWell());
    EXPECT_TRUE(child->Wait().IsWell()) << "and again";
    EXPECT_FALSE(HasChildren());
}

TEST(ChildProcess, AProgramThatIsNotThere) {
    const auto child = ChildProcess::Start({"no-such-program-anywhere"});
    ASSERT_FALSE(child);
    EXPECT_EQ(child.error().sentence, "No such file or directory");
    EXPECT_FALSE(HasChildren());
}

TEST(ChildProcess, HowItEnded) {
    const struct {
        const char* script;
        int code;
        int signal;
        const char* lastLine;
    } rows[] = {
        {"exit 0", 0, 0, ""},
        {"exit 7", 7, 0, ""},
        {"echo first >&2; echo 'the last' >&2; echo >&2; exit 3", 3, 0, "the last"},
        {"printf 'no end of line' >&2; exit 1", 1, 0, "no end of line"},
        {"printf 'bar 1\\rbar 2\\r\\n\\033[31mred' >&2; exit 1", 1, 0, "[31mred"},
        {"kill -9 $$", -1, SIGKILL, ""},
        {"kill -SEGV $$", -1, SIGSEGV, ""},
    };
    for (const auto& row : rows) {
        auto child = Shell(row.script, Piped::kOutput);
        AllOf(*child);
        const ProcessEnd& end = child->Wait();
        EXPECT_EQ(end.code, row.code) << row.script;
        EXPECT_EQ(end.signal, row.signal) << row.script;
        EXPECT_EQ(end.lastLine, row.lastLine) << row.script;
    }
}

TEST(ChildProcess, MuchOnStandardErrorStopsNobody) {
    auto child = Shell("yes trouble | head -c 3000000 >&2; wc -c; echo 'at last' >&2; exit 1", Piped::kInput);
    const std::vector<std::byte> bytes(1 << 20);
    EXPECT_TRUE(child->Write(bytes));
    EXPECT_EQ(child->Wait().lastLine, "at last");
}

TEST(ChildProcess, WritingToOneThatTakesNoMore) {
    signal(SIGPIPE, SIG_DFL);
    auto child = Shell("exit 5", Piped::kInput);
    const std::vector<std::byte> bytes(1 << 22);
    EXPECT_FALSE(child->Write(bytes)) << "and this process still lives";
    EXPECT_EQ(child->Wait().code, 5);
    EXPECT_FALSE(child->Write(std::span(bytes).first(1))) << "after its end";
}

TEST(ChildProcess, ItsPipeSignalIsTheUsualOne) {
    // Whatever this process does with the signal, a program that writes to nobody ends by it.
    signal(SIGPIPE, SIG_IGN);
    auto child = Shell("exec yes", Piped::kOutput);
    std::byte byte;
    EXPECT_EQ(child->Read({&byte, 1}), 1u);
    EXPECT_EQ(child->Wait().signal, SIGPIPE);
    signal(SIGPIPE, SIG_DFL);
}

TEST(ChildProcess, WhoeverIsNotWaitedForIsEnded) {
    const auto begin = std::chrono::steady_clock::now();
    { auto child = Shell("trap '' TERM INT; sleep 1000", Piped::kOutput); }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(300));
    EXPECT_FALSE(HasChildren());
}

TEST(ChildProcess, WhatItStartedDoesNotKeepUsWaiting) {
    const auto begin = std::chrono::steady_clock::now();
    auto child = Shell("sleep 1000 >/dev/null & echo done >&2; exit 4", Piped::kOutput);
    EXPECT_EQ(child->Wait().code, 4);
    EXPECT_EQ(child->Wait().lastLine, "done");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(300));
}

TEST(ChildProcess, NoChildInheritsAnothersPipe) {
    auto reader = Shell("cat >/dev/null", Piped::kInput);
    auto other = Shell("sleep 1000", Piped::kOutput);
    reader->CloseInput();
    EXPECT_TRUE(reader->Wait().IsWell()) << "its input ended, though another child runs";
}

TEST(ChildProcess, IsWaitedForUpToADeadline) {
    auto child = Shell("read line; exit 6", Piped::kInput);
    ProgramStart sleeping = ShellStart("exec sleep 1000", Piped::kOutput);
    auto other = Started(sleeping);
    EXPECT_FALSE(child->HasEnded());
    const auto end = child->WaitFor(std::chrono::seconds(300));
    ASSERT_TRUE(end) << "its input is closed";
    EXPECT_EQ(end->code, 6);
    EXPECT_TRUE(child->HasEnded());
    EXPECT_EQ(child->WaitFor({})->code, 6) << "the same answer each time";
    EXPECT_FALSE(other->WaitFor(std::chrono::milliseconds(20)));
    EXPECT_EQ(other->Kill().signal, SIGKILL);
    EXPECT_EQ(other->WaitFor({})->signal, SIGKILL);
    EXPECT_FALSE(HasChildren());
}

TEST(ChildProcess, OneThatHasEndedKeepsItsEnd) {
    auto child = Shell("exit 8", Piped::kOutput);
    while (!child->HasEnded()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(child->Kill().code, 8);
}

/// Whether the process with this id ends, as seen by others than its parent.
bool Ends(int process) {
    for (int i = 0; i < 60'000; ++i) {
        std::ifstream status("/proc/" + std::to_string(process) + "/stat");
        std::string line;
        if (!std::getline(status, line) || line.find(") Z ") != std::string::npos) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

TEST(ChildProcess, KillingItEndsWhatItStarted) {
    auto child = Shell("sleep 1000 & echo $!; wait", Piped::kOutput);
    std::byte text[32]{};
    ASSERT_GT(child->Read(std::span(text).first(2)), 0u);
    std::size_t count = 2;
    while (text[count - 1] != std::byte{'\n'} && child->Read(std::span(text).subspan(count, 1)) == 1) ++count;
    const int started = std::stoi(std::string(static_cast<const char*>(static_cast<const void*>(text)), count));
    EXPECT_EQ(child->Kill().signal, SIGKILL);
    EXPECT_TRUE(Ends(started));
}

TEST(ChildProcess, WhatAnIsolatedOneStartedEndsWithIt) {
    ProgramStart start = ShellStart("sleep 1000 >/dev/null 2>&1 & echo $!; exit 3", Piped::kOutput);
    start.isIsolated = true;
    auto child = Started(start);
    const int started = std::stoi(AllOf(*child));
    EXPECT_EQ(child->Wait().code, 3);
    EXPECT_TRUE(Ends(started));
}

TEST(ChildProcess, AForkIsAChildLikeAnyOther) {
    const auto fork = [](bool stays) {
        const pid_t process = ::fork();
        if (process == 0) {
            if (stays) pause();
            _exit(9);
        }
        return ChildProcess::OfFork(process);
    };
    EXPECT_EQ(fork(false)->Wait().code, 9);
    EXPECT_EQ(fork(true)->Kill().signal, SIGKILL) << "also when it leads no group";
    EXPECT_FALSE(fork(true)->WaitFor(std::chrono::milliseconds(5)));
    EXPECT_FALSE(HasChildren());
}

TEST(ChildProcess, ManyAtOnceOnManyThreads) {
    std::atomic<int> well{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 6; ++i) {
        threads.emplace_back([&well] {
            for (int k = 0; k < 10; ++k) {
                auto child = Shell("head -c 100000 /dev/zero; echo e >&2", Piped::kOutput);
                if (AllOf(*child).size() == 100000 && child->Wait().IsWell()) ++well;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(well, 60);
    EXPECT_FALSE(HasChildren());
}

}  // namespace

}  // namespace umbrant::host
