// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/compositing/memory_shortage.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <fstream>

namespace umbrant::host {

namespace {

constexpr std::uint64_t kMiB = 1 << 20;

/// The memory of this process in bytes; 0 if the system does not report it.
std::uint64_t BytesInUse() {
    std::uint64_t size = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

std::string MiB(std::uint64_t bytes) {
    return std::to_string((bytes + kMiB - 1) / kMiB) + " MiB";
}

}  // namespace

Failure NotEnoughMemory(const std::string& what, std::uint64_t bytes) {
    return {ErrorKind::kInternal, "not enough memory for " + what + ", " + MiB(std::max<std::uint64_t>(bytes, 1))};
}

Failure NotEnoughMemory(const std::string& what, std::int64_t width, std::int64_t height, Depth depth) {
    const std::int64_t pixels = std::max<std::int64_t>(width, 0) * std::max<std::int64_t>(height, 0);
    return NotEnoughMemory(what, static_cast<std::uint64_t>(pixels) * static_cast<std::uint64_t>(BytesPerPixel(depth)));
}

Failure NotEnoughMemory(const std::string& what) {
    return {ErrorKind::kInternal, "not enough memory for " + what + ", more than the " + MiB(BytesInUse()) + " in use"};
}

bool CanHaveMemory(std::uint64_t bytes) {
    // Never touched, so it costs no memory where it can be had.
    void* const memory = mmap(nullptr, std::max<std::uint64_t>(bytes, 1), PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return false;
    munmap(memory, std::max<std::uint64_t>(bytes, 1));
    return true;
}

bool SaysNoMemory(const std::string& message) {
    std::string lower(message);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const char* words :
         {"bad_alloc", "out of memory", "insufficient memory", "not enough memory", "no memory",
          "cannot allocate memory", "memory exhausted", "memory allocation", "failed to map segment"}) {
        if (lower.find(words) != std::string::npos) return true;
    }
    return false;
}

}  // namespace umbrant::host
