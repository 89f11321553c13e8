// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/files/read_at.h"

#include <unistd.h>

#include <cerrno>

namespace umbrant::host {

ssize_t ReadAt(int descriptor, off_t at, std::span<std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto rest = bytes.subspan(done);
        const ssize_t count = pread(descriptor, rest.data(), rest.size(), at + static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return -1;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(done);
}

}  // namespace umbrant::host
