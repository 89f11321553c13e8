// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/temporary_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
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

/// Files that are just being made. An interruption waits for them, so that it finds what it is to remove.
std::atomic<int> beginning{0};

/// Holds off signals on this thread: an interruption that came to it would wait for itself.
class SignalsHeld {
 public:
    SignalsHeld() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
    sigset_t before_;
};

/// Tells an interruption that a file is being made. Does not return while there is one.
class Beginning {
 public:
    Beginning() {
        ++beginning;
        // In this order, as an interruption says that it is there first and then looks for files.
        while (ending) {
            --beginning;
            std::this_thread::sleep_for(std::chrono::seconds(1));
            ++beginning;
        }
    }
    ~Beginning() { --beginning; }
    Beginning(const Beginning&) = delete;
    Beginning& operator=(const Beginning&) = delete;
};

int TakeSlot(const std::string& name) {
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

TemporaryFile::TemporaryFile(const fs::path& place) : place_(place), name_(place.parent_path() / UniqueName(place)) {
    const SignalsHeld held;
    const Beginning begin;
    slot_ = TakeSlot(name_.string());
    descriptor_ = open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0) problem_ = errno;
}

TemporaryFile::~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    std::error_code ignored;
    if (!name_.empty()) fs::remove(name_, ignored);
    FreeSlot(slot_);
}

std::optional<std::string> TemporaryFile::Problem() const {
    return problem_ == 0 ? std::nullopt : std::optional<std::string>(std::strerror(problem_));
}

std::string TemporaryFile::OpenName() const {
    const std::string name = fmt::format("/dev/fd/{}", descriptor_);
    struct stat same {};
    struct stat file {};
    // Only where it leads to the file itself; elsewhere it may be a device.
    const bool leads = descriptor_ >= 0 && stat(name.c_str(), &same) == 0 && fstat(descriptor_, &file) == 0 &&
                       same.st_ino == file.st_ino && same.st_dev == file.st_dev;
    return leads ? name : name_.string();
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
    // A file is made in no time, but a folder far away may be slow; the program ends nevertheless.
    const timespec moment{0, 1'000'000};
    for (int waited = 0; beginning > 0 && waited < 2000; ++waited) nanosleep(&moment, nullptr);
    RemoveTemporaryFiles();
}
