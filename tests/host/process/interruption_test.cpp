// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// How a process ends by signals: each case in a process of its own, since what is tested cannot be taken back.

#include "host/process/interruption.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "host/process/child_process.h"
#include "host/process/child_program.h"
#include "host/process/running_children.h"

namespace umbrant::host {

namespace {

using testing::AnyOf;

int report = -1;  ///< where a process under test says what it did

void Report(char letter) {
    if (write(report, &letter, 1) != 1) _exit(99);
}

void Clean() {
    Report('c');
}

struct Ended {
    std::string end;     ///< "exit 130", "signal 2"
    std::string report;  ///< the letters in their order
};

/// Runs it in a process; once that has reported 'r', for ready, it is sent the signals.
Ended InProcess(const std::function<void()>& run, const std::vector<int>& signals = {}) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const pid_t process = fork();
    if (process == 0) {
        report = ends[1];
        run();
        _exit(0);
    }
    close(ends[1]);
    Ended ended;
    char letter = 0;
    const auto next = [&] {
        const bool got = read(ends[0], &letter, 1) == 1;
        if (got) ended.report += letter;
        return got;
    };
    if (!signals.empty()) {
        while (next() && letter != 'r') {
        }
        for (const int signal : signals) kill(process, signal);
    }
    while (next()) {
    }
    close(ends[0]);
    int status = 0;
    waitpid(process, &status, 0);
    ended.end = WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                                    : "exit " + std::to_string(WEXITSTATUS(status));
    return ended;
}

[[noreturn]] void Stay() {
    Report('r');
    for (;;) pause();
}

TEST(Interruption, EachSignalCleansAndIsAPlainCode) {
    const struct {
        int signal;
        const char* end;
    } rows[] = {{SIGHUP, "exit 129"}, {SIGINT, "exit 130"}, {SIGQUIT, "exit 131"}, {SIGTERM, "exit 143"}};
    for (const auto& row : rows) {
        const Ended ended = InProcess(
            [] {
                HandleInterruptions(Clean);
                Stay();
            },
            {row.signal});
        EXPECT_EQ(ended.end, row.end);
        EXPECT_EQ(ended.report, "rc");
    }
}

TEST(Interruption, SeveralSignalsCleanOnce) {
    const Ended ended = InProcess(
        [] {
            HandleInterruptions([] {
                usleep(50'000);
                Report('c');
            });
            std::thread other([] { Stay(); });
            other.join();
        },
        {SIGTERM, SIGHUP, SIGINT, SIGTERM});
    EXPECT_THAT(ended.end, AnyOf("exit 143", "exit 129", "exit 130"));
    EXPECT_EQ(ended.report, "rc");
}

TEST(Interruption, SignalsThatWereIgnored) {
    const auto stay = [] {
        for (const int signal : {SIGHUP, SIGINT, SIGTERM}) std::signal(signal, SIG_IGN);
        HandleInterruptions(Clean);
        Stay();
    };
    EXPECT_EQ(InProcess(stay, {SIGHUP, SIGTERM}).end, "exit 143") << "a hang-up stays ignored";
    EXPECT_EQ(InProcess(stay, {SIGINT}).end, "exit 130") << "as shells ignore it for jobs in the background";
}

TEST(Interruption, TheProgramMayEndItselfLikeThat) {
    const Ended ended = InProcess([] {
        HandleInterruptions(Clean);
        EndProcess(141);
    });
    EXPECT_EQ(ended.end, "exit 141");
    EXPECT_EQ(ended.report, "c");
}

TEST(Interruption, WhoComesWhileItEndsStays) {
    const Ended ended = InProcess(
        [] {
            HandleInterruptions([] {
                Report('c');
                usleep(100'000);
            });
            StayWhileEnding();
            Report('r');
            // The process ends long before.
            for (int i = 0; i < 60'000; ++i) {
                usleep(1000);
                StayWhileEnding();
            }
            Report('x');
        },
        {SIGINT});
    EXPECT_EQ(ended.end, "exit 130");
    EXPECT_EQ(ended.report, "rc");
}

TEST(Interruption, AThreadThatTakesTheSignalItselfPassesItOn) {
    const Ended ended = InProcess(
        [] {
            HandleInterruptions(Clean);
            const SignalsOfTheStart signals;
            Stay();
        },
        {SIGINT});
    EXPECT_EQ(ended.end, "exit 130");
    EXPECT_EQ(ended.report, "rc");
}

TEST(Interruption, ABrokenPipeIsAnErrorAlone) {
    const Ended ended = InProcess([] {
        HandleInterruptions(Clean);
        int ends[2];
        if (pipe(ends) != 0) _exit(1);
        close(ends[0]);
        if (write(ends[1], "x", 1) == -1 && errno == EPIPE) Report('e');
    });
    EXPECT_EQ(ended.end, "exit 0");
    EXPECT_EQ(ended.report, "e");
}

/// How many threads of this process do not block SIGTERM, as far as the system shows: the kernel lets those in
/// sigwait() receive what they wait for.
int ReadyThreads() {
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(task.path() / "status");
        for (std::string line; std::getline(status, line);) {
            if (!line.starts_with("SigBlk:")) continue;
            count += (std::stoull(line.substr(7), nullptr, 16) >> (SIGTERM - 1) & 1) == 0;
        }
    }
    return count;
}

TEST(Interruption, OneThreadAloneWaitsForTheSignals) {
    const Ended ended = InProcess([] {
        HandleInterruptions(Clean);
        std::atomic<bool> done{false};
        std::vector<std::thread> threads;
        for (int i = 0; i < 3; ++i) {
            threads.emplace_back([&done] {
                while (!done) usleep(1000);
            });
        }
        // The thread may not have begun to wait yet.
        for (int i = 0; i < 60'000 && ReadyThreads() == 0; ++i) usleep(1000);
        Report(static_cast<char>('0' + ReadyThreads()));
        done = true;
        for (std::thread& thread : threads) thread.join();
    });
    EXPECT_EQ(ended.end, "exit 0");
    EXPECT_EQ(ended.report, "1");
}

TEST(Interruption, EveryKindOfChildIsEndedAndWaitedForByTheCleaning) {
    const Ended ended = InProcess(
        [] {
            HandleInterruptions([] {
                EndChildProcesses();
                Report(waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD ? 'n' : 'x');
            });
            ProgramStart start;
            start.program = "sleep";
            start.arguments = {"1000"};
            const auto child = ChildProcess::Start(start);
            const auto copy = ChildProgram::Start("/bin/sleep", {"1000"});
            const pid_t process = fork();
            if (process == 0) {
                // It holds the pipe of the report: should nobody end it, the test fails when it ends by itself.
                alarm(600);
                for (;;) pause();
            }
            const auto forked = ChildProcess::OfFork(process);
            if (child && copy) Report('s');
            Stay();
        },
        {SIGTERM});
    EXPECT_EQ(ended.end, "exit 143");
    EXPECT_EQ(ended.report, "srn");
}

TEST(Interruption, WhatItDidToAChildIsNoAnswer) {
    const Ended ended = InProcess(
        [] {
            HandleInterruptions([] {
                EndChildProcesses();
                usleep(100'000);
                Report('c');
            });
            const auto child = ChildProgram::Start("/bin/sleep", {"1000"});
            if (!child) _exit(1);
            Report('r');
            (*child)->Child().WaitFor(std::chrono::minutes(10));
            Report('x');
        },
        {SIGINT});
    EXPECT_EQ(ended.end, "exit 130");
    EXPECT_EQ(ended.report, "rc");
}

/// A letter for whether this thread blocks the signals: 'b', or 'u' when it blocks none of them.
char Blocked() {
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        if (sigismember(&mask, signal) == 1) return 'b';
    }
    return 'u';
}

TEST(Interruption, AForkIsAsBefore) {
    const Ended ended = InProcess([] {
        HandleInterruptions(Clean);
        Report(Blocked());
        const pid_t child = fork();
        if (child == 0) {
            Report(Blocked());
            raise(SIGTERM);
            _exit(1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        Report(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM ? 't' : 'x');
        const pid_t broken = fork();
        if (broken == 0) raise(SIGPIPE);
        if (broken == 0) _exit(1);
        waitpid(broken, &status, 0);
        Report(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE ? 'p' : 'x');
        const pid_t ending = fork();
        if (ending == 0) EndProcess(7);
        waitpid(ending, &status, 0);
        Report(WIFEXITED(status) && WEXITSTATUS(status) == 7 ? 'n' : 'x');
    });
    EXPECT_EQ(ended.end, "exit 0");
    EXPECT_EQ(ended.report, "butpn") << "the fork has nothing of its parent's to clean up";
}

/// Starts a shell that ends well when it blocks and ignores none of the signals.
bool StartsFree(const posix_spawnattr_t* attributes) {
    std::string script =
        "while read -r name value; do case $name in SigBlk:) blocked=$value;; SigIgn:) ignored=$value;; esac; done "
        "</proc/self/status; [ $((0x$blocked & 0x4007)) = 0 ] && [ $((0x$ignored & 0x5007)) = 0 ]";
    char shell[] = "sh", option[] = "-c";
    char* const arguments[] = {shell, option, script.data(), nullptr};
    pid_t child = -1;
    int status = -1;
    if (posix_spawn(&child, "/bin/sh", nullptr, attributes, arguments, environ) != 0) return false;
    waitpid(child, &status, 0);
    return status == 0;
}

TEST(Interruption, ProgramsThatAreStartedAreFree) {
    const Ended ended = InProcess([] {
        HandleInterruptions(Clean);
        Report(StartsFree(nullptr) ? 'f' : 'b');
        {
            const SignalsOfTheStart signals;
            Report(StartsFree(nullptr) ? 'f' : 'b');
        }
        Report(Blocked());
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        const sigset_t mask = SignalMaskForChildren();
        posix_spawnattr_setsigmask(&attributes, &mask);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
        Report(StartsFree(&attributes) ? 'f' : 'b');
    });
    EXPECT_EQ(ended.end, "exit 0");
    EXPECT_EQ(ended.report, "bfbf");
}

}  // namespace

}  // namespace umbrant::host
