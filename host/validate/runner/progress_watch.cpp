// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/progress_watch.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>

#include "host/validate/runner/timing.h"

namespace umbrant::host {

namespace {

/// How long nothing may happen, in milliseconds, and between how many looks.
constexpr double kStuck = 1500;
constexpr int kLooks = 30;
/// Processor time of the other threads, as a share of the elapsed time, that still counts as nothing: timers that only
/// look whether there is something to do.
constexpr double kTimers = 0.02;

double ThreadMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

double OthersMilliseconds() {
    return ProcessorMilliseconds() - ThreadMilliseconds();
}

/// Whether a thread of this process, other than the calling one, runs, wants to run, or waits for a disk.
bool IsAnyOtherRunnable() {
    struct Close {
        void operator()(DIR* folder) const { closedir(folder); }
    };
    const std::unique_ptr<DIR, Close> tasks(opendir("/proc/self/task"));
    if (!tasks) return true;
    while (const dirent* entry = readdir(tasks.get())) {
        const int thread = std::atoi(entry->d_name);
        if (thread == 0 || thread == gettid()) continue;
        std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
        std::string text;
        std::getline(file, text);
        // The state follows the name, which is in parentheses and may have any character.
        const std::size_t end = text.rfind(") ");
        if (end == std::string::npos || end + 2 >= text.size()) continue;
        const char state = text[end + 2];
        if (state == 'R' || state == 'D') return true;
    }
    return false;
}

}  // namespace

WaitEnd WaitUnlessStuck(const std::function<bool()>& isDone, int timeoutMilliseconds) {
    const double end = ElapsedMilliseconds() + timeoutMilliseconds;
    double still = ElapsedMilliseconds();
    double work = OthersMilliseconds();
    int looks = 0;
    useconds_t pause = 100;
    while (!isDone()) {
        const double now = ElapsedMilliseconds();
        if (now > end) return WaitEnd::kLate;
        // What is done soon is noticed soon; a long wait costs little.
        constexpr useconds_t kLongest = 20000;
        usleep(pause);
        pause = pause < kLongest ? pause * 2 : kLongest;
        ++looks;
        if (IsAnyOtherRunnable() || OthersMilliseconds() - work > kTimers * kStuck) {
            still = ElapsedMilliseconds();
            work = OthersMilliseconds();
            looks = 0;
        } else if (ElapsedMilliseconds() - still > kStuck && looks > kLooks) {
            return isDone() ? WaitEnd::kDone : WaitEnd::kStuck;
        }
    }
    return WaitEnd::kDone;
}

}  // namespace umbrant::host
