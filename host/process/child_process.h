// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Another program run as a child over pipes, without a shell. What it prints to standard error is always read, so that
// it never waits for us there; it has a process group of its own, so that an interruption from the terminal reaches it
// through us alone; and however a child's owner ends, the child is ended and waited for.

#include <cstddef>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/result.h"

/// How a child ended.
struct ChildEnd {
    int code = 0;            ///< its exit code; -1 when a signal ended it
    int signal = 0;          ///< that signal, else 0
    std::string lastLine{};  ///< the last line that it printed to standard error; empty for none

    bool IsWell() const { return code == 0; }
};

class ChildProcess {
 public:
    /// Which of its streams are pipes to us; the others are empty or lost.
    enum class Piped { kInput, kOutput };

    /// Starts `arguments[0]`, looked for in PATH, with these arguments. Fails with `ExitCode::kFile` and the system's
    /// words alone, and with `ExitCode::kInternal` where there can be no thread beside it.
    static Result<std::unique_ptr<ChildProcess>> Start(const std::vector<std::string>& arguments, Piped piped);

    /// Ends it and its process group when it has not been waited for.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Writes all bytes to its standard input. False when it does not take them any more.
    bool Write(const std::byte* bytes, std::size_t count);
    /// No more input will come.
    void CloseInput();

    /// Reads from its standard output until there are `count` bytes or no more. Returns how many there are.
    std::size_t Read(std::byte* bytes, std::size_t count);

    /// Ends it now; Wait then says so.
    void Kill();
    /// Closes the pipe and waits for its end. The same answer each time.
    const ChildEnd& Wait();

 private:
    ChildProcess() = default;
    void Drain();

    int process_ = -1;
    int slot_ = -1;
    int pipe_ = -1;    ///< to its input or from its output
    int errors_ = -1;  ///< from its standard error
    bool waitedFor_ = false;
    ChildEnd end_;
    std::string lastLine_;
    std::thread drain_;
    struct Shared;
    std::unique_ptr<Shared> shared_;
};

/// Ends all children of this kind before the program ends; none is started any more. Any thread.
void EndChildProcesses() noexcept;
