// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace umbrant::host {

bool OpenStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
        // The lowest free number is taken, and those below are open by now.
        if (open("/dev/null", stream == STDIN_FILENO ? O_RDONLY : O_WRONLY) != stream) return false;
    }
    return true;
}

}  // namespace umbrant::host
