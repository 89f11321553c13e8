// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

#include "host/process/interruption.h"
#include "host/process/start_threads.h"

extern char** environ;

struct ChildProcess::Shared {
    std::atomic<bool> ended{false};  ///< nothing more comes but from whoever else holds its pipe
};

namespace {

constexpr std::size_t kLongestLine = 400;
constexpr int kDrainPause = 100;  // milliseconds

/// The children that run, for an interruption to end.
constexpr pid_t kNone = 0;
constexpr pid_t kStarting = -1;
std::array<std::atomic<pid_t>, 32> running{};

/// The program is being interrupted: no child is started any more.
std::atomic<bool> ending{false};

/// A place among the children that run; -1 when all are taken, and an interruption then finds this one not.
int TakeSlot() {
    for (std::size_t i = 0; i < running.size(); ++i) {
        pid_t none = kNone;
        if (running[i].compare_exchange_strong(none, kStarting)) return static_cast<int>(i);
    }
    return -1;
}

void SetSlot(int slot, pid_t process) {
    if (slot >= 0) running[static_cast<std::size_t>(slot)] = process;
}

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
ssize_t WriteQuietly(int pipe, const std::byte* bytes, std::size_t count) {
    const PipeSignalHeld held;
    sigset_t pending;
    sigpending(&pending);
    const bool wasPending = sigismember(&pending, SIGPIPE) == 1;
    const ssize_t written = write(pipe, bytes, count);
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

struct Pipe {
    int reads = -1;
    int writes = -1;

    bool Open() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return false;
        reads = ends[0];
        writes = ends[1];
        return true;
    }
    ~Pipe() {
        Close(reads);
        Close(writes);
    }
};

/// Starts the program; returns the system's error, 0 for none.
int Spawn(const std::vector<std::string>& arguments, int input, int output, int errors, pid_t& process) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const auto connect = [&actions](int descriptor, int target, int mode) {
        if (descriptor >= 0) {
            posix_spawn_file_actions_adddup2(&actions, descriptor, target);
        } else {
            posix_spawn_file_actions_addopen(&actions, target, "/dev/null", mode, 0);
        }
    };
    connect(input, STDIN_FILENO, O_RDONLY);
    connect(output, STDOUT_FILENO, O_WRONLY);
    connect(errors, STDERR_FILENO, O_WRONLY);

    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    const sigset_t mask = SignalMaskForChildren();
    posix_spawnattr_setsigmask(&attributes, &mask);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    std::vector<char*> pointers;
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    const int error = posix_spawnp(&process, pointers[0], &actions, &attributes, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    return error;
}

}  // namespace

Result<std::unique_ptr<ChildProcess>> ChildProcess::Start(const std::vector<std::string>& arguments, Piped piped) {
    const auto failure = [](int error) { return Failure{ExitCode::kFile, std::strerror(error)}; };
    Pipe stream, errors;
    if (!stream.Open() || !errors.Open()) return failure(errno);
    const bool writes = piped == Piped::kInput;
    std::unique_ptr<ChildProcess> child(new ChildProcess);
    {
        // An interruption waits until the child is known; see EndChildProcesses.
        child->slot_ = TakeSlot();
        if (ending) {
            SetSlot(child->slot_, kNone);
            StayWhileEnding();
        }
        pid_t process = -1;
        const int error =
            Spawn(arguments, writes ? stream.reads : -1, writes ? -1 : stream.writes, errors.writes, process);
        SetSlot(child->slot_, error == 0 ? process : kNone);
        if (error != 0) {
            child->waitedFor_ = true;
            return failure(error);
        }
        child->process_ = process;
    }
    child->pipe_ = std::exchange(writes ? stream.writes : stream.reads, -1);
    child->errors_ = std::exchange(errors.reads, -1);
    child->shared_ = std::make_unique<Shared>();
    auto drain = StartThread([reading = child.get()] { reading->Drain(); });
    // The child is ended with its object.
    if (!drain) return Failure{ExitCode::kInternal, "no thread can be started that reads its messages"};
    child->drain_ = std::move(*drain);
    return child;
}

ChildProcess::~ChildProcess() {
    if (waitedFor_) return;
    Kill();
    Wait();
}

/// Reads what the child prints to standard error until it ends, and keeps the last line that is not empty.
void ChildProcess::Drain() {
    std::string line;
    const auto end = [&] {
        if (!line.empty()) lastLine_ = std::exchange(line, {});
    };
    for (;;) {
        pollfd waiting{errors_, POLLIN, 0};
        const int ready = poll(&waiting, 1, kDrainPause);
        // Something that the child started may hold the pipe long after it.
        if (ready == 0 && shared_->ended) break;
        if (ready <= 0) continue;
        char bytes[4096];
        const ssize_t count = read(errors_, bytes, sizeof bytes);
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

bool ChildProcess::Write(const std::byte* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = pipe_ < 0 ? -1 : WriteQuietly(pipe_, bytes, count);
        if (written < 0 && pipe_ >= 0 && errno == EINTR) continue;
        if (written < 0) {
            // What an interruption did to a child is no answer.
            StayWhileEnding();
            return false;
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

void ChildProcess::CloseInput() {
    Close(pipe_);
}

std::size_t ChildProcess::Read(std::byte* bytes, std::size_t count) {
    std::size_t done = 0;
    while (done < count && pipe_ >= 0) {
        const ssize_t got = read(pipe_, bytes + done, count - done);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            StayWhileEnding();
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

void ChildProcess::Kill() {
    if (waitedFor_ || process_ <= 0) return;
    kill(-process_, SIGKILL);
    kill(process_, SIGKILL);
}

const ChildEnd& ChildProcess::Wait() {
    if (waitedFor_) return end_;
    Close(pipe_);
    // Its number may be given to another process only after it has left the list of those that run.
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    SetSlot(slot_, kNone);
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    StayWhileEnding();
    waitedFor_ = true;
    shared_->ended = true;
    if (drain_.joinable()) drain_.join();
    Close(errors_);
    end_.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    end_.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    end_.lastLine = lastLine_;
    return end_;
}

void EndChildProcesses() noexcept {
    ending = true;
    for (std::atomic<pid_t>& slot : running) {
        // A child that is just being started will be known in a moment.
        const timespec moment{0, 1'000'000};
        for (int i = 0; i < 1000 && slot == kStarting; ++i) nanosleep(&moment, nullptr);
        const pid_t process = slot;
        if (process <= 0) continue;
        kill(-process, SIGKILL);
        kill(process, SIGKILL);
        // It may be just making the file that is to be removed next.
        waitpid(process, nullptr, 0);
    }
}
