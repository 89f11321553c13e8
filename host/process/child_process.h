// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Another program run as a child, without a shell. However a child's owner ends, and also when the program is
// interrupted, the child is ended and waited for.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <thread>

#include "host/process/program_start.h"
#include "host/process/running_children.h"
#include "host/result.h"

namespace umbrant::host {

/// How a child ended.
struct ProcessEnd {
    int code = 0;            ///< its exit code; -1 when a signal ended it
    int signal = 0;          ///< that signal, else 0
    std::string lastLine{};  ///< the last line that it printed to a Stream::LastLine; empty for none

    bool IsWell() const { return code == 0; }
};

/// A child that runs or has ended. Not for several threads at once.
class ChildProcess {
 public:
    /// Starts a program. Fails with `ErrorKind::kFile` and the system's message alone, and with `ErrorKind::kInternal`
    /// where no thread can be started that reads a Stream::LastLine.
    static Result<std::unique_ptr<ChildProcess>> Start(const ProgramStart& start);
    /// A child that this process has made with fork(), and that leads a process group of its own or soon will.
    static std::unique_ptr<ChildProcess> OfFork(int process);

    /// Ends it and its process group when it has not been waited for.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    int Process() const { return process_; }

    /// Writes all bytes to its standard input, a pipe. False when it does not take them any more; this raises no
    /// signal.
    bool Write(std::span<const std::byte> bytes);
    /// No more input will come.
    void CloseInput();
    /// Reads from its standard output, a pipe, until `bytes` is full or no more come. Returns how many there are.
    std::size_t Read(std::span<std::byte> bytes);

    /// Whether it has ended. Does not wait.
    bool HasEnded();
    /// Closes the pipes and waits for its end. The same answer each time.
    const ProcessEnd& Wait();
    /// The same, at most this long. Nothing when it still runs.
    std::optional<ProcessEnd> WaitFor(std::chrono::milliseconds longest);
    /// Ends it and what it started in its process group, at once, and waits for it. One that has ended by itself keeps
    /// its own end.
    const ProcessEnd& Kill();

 private:
    ChildProcess() = default;
    void Drain();
    void ClosePipes();

    RunningChild running_;
    int process_ = -1;
    bool groupEndsWithIt_ = false;
    ProgramPipes pipes_;
    std::optional<ProcessEnd> end_;
    std::atomic<bool> hasEnded_{false};  ///< for the thread: nothing more comes but from others that hold the pipe
    std::string lastLine_;
    std::optional<std::jthread> drain_;
};

}  // namespace umbrant::host
