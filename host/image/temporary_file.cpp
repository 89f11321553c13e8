// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/temporary_file.h"

#include <fmt/format.h>
#include <time.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <system_error>
#include <thread>

namespace {

namespace fs = std::filesystem;

/// The names under construction, in memory that a signal handler may read. A file that finds no slot free, or whose
/// name is too long for one, is only not removed by a signal.
struct Slot {
    std::atomic<bool> taken{false};
    std::atomic<bool> ready{false};
    char name[4096];
};
Slot slots[64];

/// The program is being interrupted: nothing new is begun.
std::atomic<bool> ending{false};

int TakeSlot(const std::string& name) {
    while (ending) std::this_thread::sleep_for(std::chrono::seconds(1));
    if (name.size() >= sizeof(Slot::name)) return -1;
    for (int i = 0; i < 64; ++i) {
        if (slots[i].taken.exchange(true)) continue;
        std::memcpy(slots[i].name, name.c_str(), name.size() + 1);
        slots[i].ready = true;
        return i;
    }
    return -1;
}

void FreeSlot(int index) {
    if (index < 0) return;
    slots[index].ready = false;
    slots[index].taken = false;
}

/// A hidden name that no other run of the program chooses.
std::string UniqueName(const fs::path& place) {
    std::random_device random;
    return fmt::format(".{}.{:08x}{:08x}.part{}", place.stem().string(), random(), random(),
                       place.extension().string());
}

}  // namespace

TemporaryFile::TemporaryFile(const fs::path& place)
    : place_(place), name_(place.parent_path() / UniqueName(place)), slot_(TakeSlot(name_.string())) {}

TemporaryFile::~TemporaryFile() {
    std::error_code ignored;
    if (!name_.empty()) fs::remove(name_, ignored);
    FreeSlot(slot_);
}

Result<Done> TemporaryFile::PutInPlace() {
    std::error_code error;
    fs::rename(name_, place_, error);
    if (error) {
        return Failure{ExitCode::kFile, fmt::format("cannot write '{}': {}", place_.string(), error.message())};
    }
    name_.clear();
    return Done{};
}

void RemoveTemporaryFiles() noexcept {
    for (Slot& slot : slots) {
        if (slot.ready) std::remove(slot.name);
    }
}

void EndTemporaryFiles() noexcept {
    ending = true;
    RemoveTemporaryFiles();
    // Another thread may just have been making a file whose name it had.
    const timespec moment{0, 10'000'000};
    nanosleep(&moment, nullptr);
    RemoveTemporaryFiles();
}
