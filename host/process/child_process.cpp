// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/child_process.h"

#include <poll.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "host/process/interruption.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kLongestLine = 400;
constexpr int kDrainPause = 100;  // milliseconds
constexpr std::chrono::microseconds kWaitPause{500};

/// Keeps the signal of broken pipes from this thread while it lives.
class PipeSignalHeld {
 public:
    PipeSignalHeld() {
        sigemptyset(&held_);
        sigaddset(&held_, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &held_, &before_);
    }
    ~PipeSignalHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    PipeSignalHeld(const PipeSignalHeld&) = delete;
    PipeSignalHeld& operator=(const PipeSignalHeld&) = delete;
    const sigset_t& Held() const { return held_; }

 private:
    sigset_t held_;
    sigset_t before_;
};

/// Writing to a pipe that nobody reads is an answer, and must not end the program as it would by default. The signal
/// goes to the thread that wrote, so it is held and taken away here, and what the rest of the program does with its
/// own outputs stays as it was.
ssize_t WriteQuietly(int pipe, std::span<const std::byte> bytes) {
    const PipeSignalHeld held;
    sigset_t pending;
    sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;
    const ssize_t written = write(pipe, bytes.data(), bytes.size());
    const int error = errno;
    // It also comes when the reader went after it had taken a part, which is then what was written.
    sigpending(&pending);
    int signal = 0;
    if (!wasPending && sigismember(&pending, SIGPIPE) == 1) sigwait(&held.Held(), &signal);
    errno = error;
    return written;
}

void Close(int& descriptor) {
    if (descriptor >= 0) close(descriptor);
    descriptor = -1;
}

void KillGroup(int process) {
    kill(-process, SIGKILL);
    // A fork may not lead its group yet.
    kill(process, SIGKILL);
}

}  // namespace

Result<std::unique_ptr<ChildProcess>> ChildProcess::Start(const ProgramStart& start) {
    std::unique_ptr<ChildProcess> child(new ChildProcess);
    int process = -1;
    const int error = StartProcess(start, process, child->pipes_);
    if (error != 0) {
        child->running_.End();
        child->end_ = ProcessEnd{};
        return Failure{ErrorKind::kFile, std::strerror(error)};
    }
    child->running_.Begin(process);
    child->process_ = process;
    child->groupEndsWithIt_ = start.isIsolated;
    if (child->pipes_.errors < 0) return child;
    child->drain_ = StartThread([reading = child.get()] { reading->Drain(); });
    // The child is ended with its object.
    if (!child->drain_) return Failure{ErrorKind::kInternal, "no thread can be started to read its messages"};
    return child;
}

std::unique_ptr<ChildProcess> ChildProcess::OfFork(int process) {
    std::unique_ptr<ChildProcess> child(new ChildProcess);
    child->running_.Begin(process);
    child->process_ = process;
    return child;
}

ChildProcess::~ChildProcess() {
    if (!end_) Kill();
    ClosePipes();
}

/// Reads what the child prints to standard error until it ends, and keeps the last line that is not empty.
void ChildProcess::Drain() {
    std::string line;
    const auto end = [&] {
        if (!line.empty()) lastLine_ = std::exchange(line, {});
    };
    for (;;) {
        pollfd waiting{pipes_.errors, POLLIN, 0};
        const int ready = poll(&waiting, 1, kDrainPause);
        // Something that the child started may hold the pipe long after it.
        if (ready == 0 && hasEnded_) break;
        if (ready <= 0) continue;
        char bytes[4096];
        const ssize_t count = read(pipes_.errors, bytes, sizeof bytes);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        for (ssize_t i = 0; i < count; ++i) {
            const auto byte = static_cast<unsigned char>(bytes[i]);
            if (byte == '\n' || byte == '\r') {
                end();
            } else if (line.size() < kLongestLine && byte >= ' ' && byte != 0x7f) {
                line += bytes[i];
            }
        }
    }
    end();
}

bool ChildProcess::Write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = pipes_.input < 0 ? -1 : WriteQuietly(pipes_.input, bytes);
        if (written < 0 && pipes_.input >= 0 && errno == EINTR) continue;
        if (written < 0) {
            // What an interruption did to a child is no answer.
            StayWhileEnding();
            return false;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return true;
}

void ChildProcess::CloseInput() {
    Close(pipes_.input);
}

std::size_t ChildProcess::Read(std::span<std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size() && pipes_.output >= 0) {
        const ssize_t got = read(pipes_.output, bytes.data() + done, bytes.size() - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            StayWhileEnding();
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void ChildProcess::ClosePipes() {
    Close(pipes_.input);
    Close(pipes_.output);
}

bool ChildProcess::HasEnded() {
    if (end_) return true;
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
        if (errno != EINTR) return true;
    }
    return info.si_pid == process_;
}

const ProcessEnd& ChildProcess::Wait() {
    if (end_) return *end_;
    ClosePipes();
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    // As long as it has not been waited for, its id is its own, and so is the group's.
    if (groupEndsWithIt_) kill(-process_, SIGKILL);
    running_.End();
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    StayWhileEnding();
    hasEnded_ = true;
    drain_.reset();
    Close(pipes_.errors);
    end_ =
        ProcessEnd{WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0, lastLine_};
    return *end_;
}

std::optional<ProcessEnd> ChildProcess::WaitFor(std::chrono::milliseconds longest) {
    if (!end_) ClosePipes();
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (!HasEnded()) {
        if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
        std::this_thread::sleep_for(kWaitPause);
    }
    return Wait();
}

const ProcessEnd& ChildProcess::Kill() {
    if (!end_) KillGroup(process_);
    return Wait();
}

}  // namespace umbrant::host
