// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Child processes over pipes: full pipes both ways, ends of all kinds, nothing left behind.

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
#include <filesystem>
#include <thread>

namespace {

using Piped = ChildProcess::Piped;

std::unique_ptr<ChildProcess> Shell(const std::string& script, Piped piped) {
    auto child = ChildProcess::Start({"sh", "-c", script}, piped);
    if (!child) {
        ADD_FAILURE() << child.Error().sentence;
        return nullptr;
    }
    return std::move(*child);
}

std::string AllOf(ChildProcess& child) {
    std::vector<std::byte> bytes(1 << 22);
    const std::size_t count = child.Read(bytes.data(), bytes.size());
    return {static_cast<const char*>(static_cast<const void*>(bytes.data())), count};
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

TEST(ChildProcess, ArgumentsAreNotReadByAShell) {
    auto child = ChildProcess::Start({"printf", "%s|", "$HOME", "a b;c", "-x", "*"}, Piped::kOutput);
    ASSERT_TRUE(child);
    EXPECT_EQ(AllOf(**child), "$HOME|a b;c|-x|*|");
}

TEST(ChildProcess, AProgramThatIsNotThere) {
    const auto child = ChildProcess::Start({"no-such-program-anywhere"}, Piped::kOutput);
    ASSERT_FALSE(child);
    EXPECT_EQ(child.Error().sentence, "No such file or directory");
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
        const ChildEnd& end = child->Wait();
        EXPECT_EQ(end.code, row.code) << row.script;
        EXPECT_EQ(end.signal, row.signal) << row.script;
        EXPECT_EQ(end.lastLine, row.lastLine) << row.script;
    }
}

TEST(ChildProcess, MuchOnStandardErrorStopsNobody) {
    auto child = Shell("yes trouble | head -c 3000000 >&2; wc -c; echo 'at last' >&2; exit 1", Piped::kInput);
    const std::vector<std::byte> bytes(1 << 20);
    EXPECT_TRUE(child->Write(bytes.data(), bytes.size()));
    EXPECT_EQ(child->Wait().lastLine, "at last");
}

TEST(ChildProcess, WritingToOneThatTakesNoMore) {
    signal(SIGPIPE, SIG_DFL);
    auto child = Shell("exit 5", Piped::kInput);
    const std::vector<std::byte> bytes(1 << 22);
    EXPECT_FALSE(child->Write(bytes.data(), bytes.size())) << "and this process still lives";
    EXPECT_EQ(child->Wait().code, 5);
    EXPECT_FALSE(child->Write(bytes.data(), 1)) << "after its end";
}

TEST(ChildProcess, ItsPipeSignalIsTheUsualOne) {
    // Whatever this process does with the signal, a program that writes to nobody ends by it.
    signal(SIGPIPE, SIG_IGN);
    auto child = ChildProcess::Start({"yes"}, Piped::kOutput);
    std::byte byte;
    EXPECT_EQ((*child)->Read(&byte, 1), 1u);
    EXPECT_EQ((*child)->Wait().signal, SIGPIPE);
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
