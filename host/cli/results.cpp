// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/results.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <mutex>
#include <string_view>

#include "host/process/interruption.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kBuffered = 1 << 16;

struct Results {
    std::mutex mutex;
    int descriptor = STDOUT_FILENO;
    std::string pending;
    int error = 0;  ///< the first one; what comes after it is dropped
};

Results& TheResults() {
    static Results results;
    return results;
}

void WritePending(Results& results) {
    std::string_view rest = results.pending;
    while (!rest.empty() && results.error == 0) {
        const ssize_t count = write(results.descriptor, rest.data(), rest.size());
        if (count >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd output{results.descriptor, POLLOUT, 0};
            poll(&output, 1, -1);
        } else if (errno == EPIPE) {
            EndProcess(128 + SIGPIPE);
        } else if (errno != EINTR) {
            results.error = errno;
        }
    }
    results.pending.clear();
}

}  // namespace

void KeepStandardOutputForResults() {
    Results& results = TheResults();
    const int kept = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (kept < 0) return;
    results.descriptor = kept;
    dup2(STDERR_FILENO, STDOUT_FILENO);
}

void GiveStandardOutputBack() {
    Results& results = TheResults();
    const std::lock_guard lock(results.mutex);
    results.error = 0;
    results.pending.clear();
    if (results.descriptor == STDOUT_FILENO) return;
    dup2(results.descriptor, STDOUT_FILENO);
    close(results.descriptor);
    results.descriptor = STDOUT_FILENO;
}

void PrintResult(const std::string& text) {
    Results& results = TheResults();
    const std::lock_guard lock(results.mutex);
    results.pending += text;
    if (results.pending.size() >= kBuffered) WritePending(results);
}

bool FlushResults() {
    Results& results = TheResults();
    const std::lock_guard lock(results.mutex);
    WritePending(results);
    errno = results.error;
    return results.error == 0;
}

}  // namespace umbrant::host
