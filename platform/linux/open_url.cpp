// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// On Linux the desktop's own opener, xdg-open, hands an address to the default browser. On some desktops it stays
// until the browser ends, and the panel must not stand still for that long.

#include "platform/open_url.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

extern char** environ;

namespace {

/// How long an opener may take to be waited for: a fast one has done its work when the call returns.
constexpr int kPatienceMilliseconds = 300;

/// The address is the shell's $0, so the shell never reads it as a command. The shell leaves at once; the opener, now
/// nobody's child, holds descriptor 3 for as long as it runs.
constexpr const char* kShellLine = "xdg-open \"$0\" </dev/null >/dev/null 2>&1 &";
constexpr int kHeldByOpener = 3;

/// Starts the shell with `held` as its descriptor 3, and waits for the shell alone.
void StartOpener(const char* url, int held) {
    char* const arguments[] = {const_cast<char*>("sh"), const_cast<char*>("-c"), const_cast<char*>(kShellLine),
                               const_cast<char*>(url), nullptr};
    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0) return;
    pid_t shell = 0;
    if (posix_spawn_file_actions_adddup2(&actions, held, kHeldByOpener) == 0 &&
        posix_spawn(&shell, "/bin/sh", &actions, nullptr, arguments, environ) == 0) {
        while (waitpid(shell, nullptr, 0) == -1 && errno == EINTR) {
        }
    }
    posix_spawn_file_actions_destroy(&actions);
}

}  // namespace

void OpenUrl(const char* url) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    // A number above 3, so that putting it there is a copy, which loses the mark that would close it in the shell.
    const int held = fcntl(ends[1], F_DUPFD_CLOEXEC, kHeldByOpener + 1);
    close(ends[1]);
    if (held != -1) {
        StartOpener(url, held);
        close(held);
        pollfd opener{ends[0], 0, 0};
        poll(&opener, 1, kPatienceMilliseconds);  // ends early when the last holder of the other end is gone
    }
    close(ends[0]);
}
