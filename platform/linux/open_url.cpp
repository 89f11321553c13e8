// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// On Linux the desktop's own opener, xdg-open, hands an address to the default browser. On some desktops it stays
// until the browser ends, and the panel must not stand still for that long. No shell is involved: the address
// reaches the opener as it is, whatever characters it holds.

#include "platform/open_url.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>

namespace umbrant::effect {

namespace {

/// How long an opener may take to be waited for: a fast one has done its work when the call returns.
constexpr int kPatienceMilliseconds = 300;
constexpr int kFirstAfterStandardStreams = 3;

/// The first file of that name in the search path that may be run; empty when there is none.
std::string FindInPath(std::string_view name) {
    const char* path = std::getenv("PATH");
    std::string_view rest = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
    while (!rest.empty()) {
        const size_t length = rest.find(':');
        const std::string_view folder = rest.substr(0, length);
        rest = length == std::string_view::npos ? std::string_view() : rest.substr(length + 1);
        if (folder.empty()) continue;
        std::string file = std::string(folder) + "/" + std::string(name);
        struct stat status;
        if (stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(file.c_str(), X_OK) == 0) return file;
    }
    return {};
}

/// In a new process: becomes the opener, which holds `held` for as long as it runs.
[[noreturn]] void BecomeOpener(const char* file, const char* url, int held) {
    setsid();
    const int nothing = open("/dev/null", O_RDWR);
    for (int stream = 0; stream < kFirstAfterStandardStreams; ++stream) dup2(nothing, stream);
    if (nothing >= kFirstAfterStandardStreams) close(nothing);
    fcntl(held, F_SETFD, 0);
    char* const arguments[] = {const_cast<char*>("xdg-open"), const_cast<char*>(url), nullptr};
    execve(file, arguments, environ);
    _exit(127);
}

/// fork() without what parts of the process have registered for it, as glibc 2.34 and newer offer it under a name of
/// its own; hosts run on older ones.
pid_t ForkAlone() {
    return static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, nullptr));
}

/// Starts the opener as an orphan: its parent ends at once, so nothing is left for the host to wait for.
/// Between the fork and the new program only functions run that may do so in a process that had other threads.
void StartOpener(const std::string& file, const char* url, int held) {
    const pid_t parent = ForkAlone();
    if (parent == 0) {
        if (ForkAlone() == 0) BecomeOpener(file.c_str(), url, held);
        _exit(0);
    }
    while (parent > 0 && waitpid(parent, nullptr, 0) == -1 && errno == EINTR) {
    }
}

}  // namespace

void OpenUrl(const char* url) {
    const std::string opener = FindInPath("xdg-open");
    if (opener.empty()) return;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    // Above the standard streams, which the opener gets anew.
    const int held = fcntl(ends[1], F_DUPFD_CLOEXEC, kFirstAfterStandardStreams);
    close(ends[1]);
    if (held != -1) {
        StartOpener(opener, url, held);
        close(held);
        pollfd opened{ends[0], 0, 0};
        poll(&opened, 1, kPatienceMilliseconds);  // ends early when the last holder of the other end is gone
    }
    close(ends[0]);
}

}  // namespace umbrant::effect
