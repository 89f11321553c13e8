// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/child_program.h"

#include <fmt/format.h>
#include <poll.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <thread>

#include "host/loading/program_file.h"
#include "host/process/start_threads.h"

namespace umbrant::host {

namespace {

constexpr int kWatchPause = 200;  // milliseconds

}  // namespace

std::filesystem::path ProgramForChildren() {
    // By its own name where that still leads to it: a tool that the program runs in may have the link for itself.
    const std::filesystem::path program = ProgramFile();
    std::error_code error;
    return !program.empty() && std::filesystem::exists(program, error) ? program : "/proc/self/exe";
}

Result<std::unique_ptr<ChildProgram>> ChildProgram::Start(const std::filesystem::path& program,
                                                          const std::vector<std::string>& arguments) {
    const auto failure = [&](const std::string& reason) {
        return Failure{ErrorKind::kInternal,
                       fmt::format("cannot start '{}' in a separate process: {}", program.string(), reason)};
    };
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return failure(std::strerror(errno));
    std::unique_ptr<ChildProgram> started(new ChildProgram);
    started->socket_ = ends[0];
    ProgramStart start;
    start.program = program.string();
    start.arguments = arguments;
    start.name = program.filename().string();
    start.descriptor = ends[1];
    start.isIsolated = true;
    auto child = ChildProcess::Start(start);
    close(ends[1]);
    if (!child) return failure(child.error().sentence);
    started->child_ = std::move(*child);
    return started;
}

ChildProgram::~ChildProgram() {
    child_.reset();
    close(socket_);
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

}  // namespace umbrant::host
