// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

#include <unistd.h>

#include <fstream>

namespace umbrant {

/// Resident memory of this process, bytes.
inline long ResidentBytes() {
    std::ifstream file("/proc/self/statm");
    long total = 0;
    long resident = 0;
    file >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

}  // namespace umbrant
