// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/files/read_at.h"

#include <unistd.h>

#include <cerrno>

namespace umbrant::host {

ssize_t ReadAt(int descriptor, off_t at, void* bytes, std::size_t size) {
    auto* to = static_cast<char*>(bytes);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = pread(descriptor, to + done, size - done, at + static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return -1;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

}  // namespace umbrant::host
