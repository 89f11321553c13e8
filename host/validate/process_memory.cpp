// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/process_memory.h"

#include <dirent.h>
#include <unistd.h>

#include <fstream>

namespace {

int EntriesOf(const char* folder) {
    int count = 0;
    if (DIR* directory = opendir(folder)) {
        while (const dirent* entry = readdir(directory)) count += entry->d_name[0] != '.';
        // The folder itself was open while it was read.
        closedir(directory);
    }
    return count;
}

}  // namespace

long ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0;
    statm >> size >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

int OpenFiles() {
    return EntriesOf("/proc/self/fd") - 1;
}

int RunningThreads() {
    return EntriesOf("/proc/self/task");
}
