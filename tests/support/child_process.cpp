// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/child_process.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <thread>

int RunInChild(const std::function<int()>& work, std::chrono::seconds deadline) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        int result = 99;
        try {
            result = work();
        } catch (...) {
        }
        std::fflush(nullptr);
        _exit(result);
    }
    if (child < 0) return kChildKilled;
    const auto end = std::chrono::steady_clock::now() + deadline;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return kChildHung;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : kChildKilled - WTERMSIG(status);
}
