// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/child_program.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>

#include "host/loading/program_file.h"
#include "host/process/start_threads.h"

extern char** environ;

namespace {

constexpr std::chrono::milliseconds kPause{1};
constexpr int kWatchPause = 200;  // milliseconds

/// The attributes and actions of one start.
class SpawnPlan {
 public:
    explicit SpawnPlan(int socket) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, socket, kChildSocket);
        // A library may have opened files that would stay open over the start of a program, an output among them.
        posix_spawn_file_actions_addclosefrom_np(&actions_, kChildSocket + 1);

        posix_spawnattr_init(&attributes_);
        sigset_t nothing, everything;
        sigemptyset(&nothing);
        sigfillset(&everything);
        posix_spawnattr_setsigmask(&attributes_, &nothing);
        posix_spawnattr_setsigdefault(&attributes_, &everything);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    /// The system's error, 0 for none.
    int Run(const std::string& program, std::vector<std::string> words, pid_t& process) const {
        std::vector<char*> pointers;
        for (std::string& word : words) pointers.push_back(word.data());
        pointers.push_back(nullptr);
        return posix_spawn(&process, program.c_str(), &actions_, &attributes_, pointers.data(), environ);
    }

 private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

}  // namespace

std::filesystem::path ProgramForChildren() {
    // By its own name where that still leads to it: a tool that the program runs in may have the link for itself.
    const std::filesystem::path program = ProgramFile();
    std::error_code error;
    return !program.empty() && std::filesystem::exists(program, error) ? program : "/proc/self/exe";
}

Result<std::unique_ptr<ChildProgram>> ChildProgram::Start(const std::filesystem::path& program,
                                                          const std::vector<std::string>& arguments) {
    const auto failure = [&](int error) {
        return Failure{ExitCode::kInternal, fmt::format("cannot start '{}' as a process of its own: {}",
                                                        program.string(), std::strerror(error))};
    };
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return failure(errno);
    std::unique_ptr<ChildProgram> child(new ChildProgram);
    child->socket_ = ends[0];
    std::vector<std::string> words = {program.filename().string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const int error = SpawnPlan(ends[1]).Run(program.string(), std::move(words), child->process_);
    close(ends[1]);
    if (error != 0) {
        child->end_ = ProcessEnd{};
        return failure(error);
    }
    return child;
}

ChildProgram::~ChildProgram() {
    Kill();
    close(socket_);
}

bool ChildProgram::HasEnded() {
    if (end_) return true;
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOHANG | WNOWAIT) != 0) {
        if (errno != EINTR) return true;
    }
    return info.si_pid == process_;
}

std::optional<ProcessEnd> ChildProgram::WaitFor(std::chrono::milliseconds longest) {
    const auto deadline = std::chrono::steady_clock::now() + longest;
    while (!HasEnded()) {
        if (std::chrono::steady_clock::now() >= deadline) return std::nullopt;
        std::this_thread::sleep_for(kPause);
    }
    return Reap();
}

ProcessEnd ChildProgram::Kill() {
    if (end_) return *end_;
    // A child that has ended by itself is only waited for, so that its own end is what is reported.
    if (!HasEnded()) kill(process_, SIGKILL);
    return Reap();
}

ProcessEnd ChildProgram::Reap() {
    if (end_) return *end_;
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    // As long as it has not been waited for, its number is its own, and so is the group's.
    kill(-process_, SIGKILL);
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    end_ = ProcessEnd{WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0};
    return *end_;
}

void EndWithParent(int socket, void (*each)()) {
    auto watch = StartThread([socket, each] {
        // What the effect's thread is to be sent stays with that thread.
        sigset_t everything;
        sigfillset(&everything);
        pthread_sigmask(SIG_BLOCK, &everything, nullptr);
        for (;;) {
            pollfd other{socket, POLLRDHUP, 0};
            if (poll(&other, 1, kWatchPause) > 0) break;
            each();
        }
        if (getpgrp() == getpid()) kill(0, SIGKILL);
        _exit(1);
    });
    // Without a thread the system is asked; what the child started then stays.
    if (watch) {
        watch->detach();
    } else {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    }
}
