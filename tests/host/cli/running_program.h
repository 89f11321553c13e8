// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The program as a process that a test sends signals to, whose standard streams it closes, and whose terminal it takes
// away.

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/host/cli/program.h"

namespace umbrant::host {

/// How a process ended: "exit 130", or "signal 2" when a signal did it.
inline std::string EndOf(int status) {
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "exit " + std::to_string(WEXITSTATUS(status));
}

/// What the started process does first, in it.
using Before = std::function<void()>;

class RunningProgram {
 public:
    enum class Terminal { kNone, kOwn };

    /// Starts `umbrant` in the folder, its outputs lost, unless `before` puts others in their places.
    RunningProgram(const Folder& folder, std::vector<std::string> arguments, const Before& before = {},
                   Terminal terminal = Terminal::kNone) {
        std::vector<char*> pointers;
        arguments.insert(arguments.begin(), UMBRANT_PROGRAM);
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        const std::string path = folder.Path().string();
        process_ = terminal == Terminal::kOwn ? forkpty(&terminal_, nullptr, nullptr, nullptr) : fork();
        if (process_ != 0) return;
        if (chdir(path.c_str()) != 0) _exit(126);
        unsetenv("UMBRANT_MODULE");
        if (terminal == Terminal::kNone) {
            const int lost = open("/dev/null", O_WRONLY);
            dup2(lost, STDOUT_FILENO);
            dup2(lost, STDERR_FILENO);
            close(lost);
        }
        if (before) before();
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    ~RunningProgram() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            Wait();
        }
        CloseTerminal();
    }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t Process() const { return process_; }
    void Send(int signal) const { kill(process_, signal); }
    void CloseTerminal() {
        if (terminal_ >= 0) close(terminal_);
        terminal_ = -1;
    }
    std::string Wait() {
        int status = 0;
        while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
        return EndOf(status);
    }

 private:
    pid_t process_ = -1;
    int terminal_ = -1;
};

/// The hidden files of a folder, by their names.
inline std::vector<std::string> HiddenFiles(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(".")) names.push_back(name);
    }
    return names;
}

/// Asks until it is so, for as long as a slow machine may take.
inline bool WaitUntil(const std::function<bool()>& isSo) {
    for (int i = 0; i < 120'000; ++i) {
        if (isSo()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

}  // namespace umbrant::host
