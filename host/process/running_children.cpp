// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/running_children.h"

#include <sys/wait.h>

#include <array>
#include <atomic>
#include <csignal>
#include <ctime>
#include <utility>

#include "host/process/interruption.h"

namespace umbrant::host {

namespace {

constexpr pid_t kNone = 0;
constexpr pid_t kStarting = -1;

/// Without a lock, which a fork could leave locked.
std::array<std::atomic<pid_t>, 256> running{};

/// The program is being interrupted: no child is started any more.
std::atomic<bool> startsNone{false};

/// -1 when all are taken.
int TakePlace() {
    for (std::size_t i = 0; i < running.size(); ++i) {
        pid_t none = kNone;
        if (running[i].compare_exchange_strong(none, kStarting)) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

RunningChild::RunningChild() : place_(TakePlace()) {
    if (!startsNone) return;
    End();
    StayWhileEnding();
}

RunningChild::~RunningChild() {
    End();
}

void RunningChild::Begin(int process) {
    if (place_ >= 0) running[static_cast<std::size_t>(place_)] = process;
}

void RunningChild::End() {
    const int place = std::exchange(place_, -1);
    if (place >= 0) running[static_cast<std::size_t>(place)] = kNone;
}

void EndChildProcesses() noexcept {
    startsNone = true;
    for (std::atomic<pid_t>& place : running) {
        // A child that is just being started will be known in a moment.
        const timespec moment{0, 1'000'000};
        for (int i = 0; i < 1000 && place == kStarting; ++i) nanosleep(&moment, nullptr);
        const pid_t process = place;
        if (process <= 0) continue;
        kill(-process, SIGKILL);
        kill(process, SIGKILL);
        // It may be just making the file that is to be removed next.
        waitpid(process, nullptr, 0);
    }
}

}  // namespace umbrant::host
