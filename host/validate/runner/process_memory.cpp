// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/runner/process_memory.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

namespace umbrant::host {

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

/// A function of a sanitizer's runtime, or null.
void* OfSanitizer(std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (void* function = dlsym(RTLD_DEFAULT, name)) return function;
    }
    return nullptr;
}

}  // namespace

std::optional<std::filesystem::path> SanitizerRuntime() {
    void* start = OfSanitizer({"__asan_init", "__tsan_init"});
    if (!start) return std::nullopt;
    Dl_info info{};
    if (dladdr(start, &info) == 0 || !info.dli_fname) return std::filesystem::path();
    return std::filesystem::path(info.dli_fname);
}

long ResidentBytes() {
    // Declared in <sanitizer/allocator_interface.h>.
    if (void* function = OfSanitizer({"__sanitizer_get_current_allocated_bytes"})) {
        return static_cast<long>(reinterpret_cast<std::size_t (*)()>(function)());
    }
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

long PeakBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024;
}

void LimitMemory() {
    std::ifstream statm("/proc/self/statm");
    long size = 0;
    statm >> size;
    constexpr rlim_t kMore = rlim_t{4} << 30;
    const rlim_t limit = static_cast<rlim_t>(size * sysconf(_SC_PAGESIZE)) + kMore;
    // Sanitizers take terabytes of addresses for themselves, so there the limit would end everything at once.
    if (limit > (rlim_t{1} << 40)) return;
    const rlimit limits{limit, limit};
    setrlimit(RLIMIT_AS, &limits);
}

}  // namespace umbrant::host
