// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/files/temporary_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <set>
#include <string>
#include <system_error>

#include "host/process/files/file_owner.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

/// What an interruption has to know.
struct Construction {
    std::mutex mutex;
    std::condition_variable changed;
    std::set<std::string> names;
    int beginning = 0;    ///< files that are just being made
    bool ending = false;  ///< the process is being interrupted: nothing new is begun
};

/// Never destroyed: an interruption may come while the process ends by itself.
Construction& Files() {
    static auto& files = *new Construction;
    return files;
}

void WaitForTheEnd(std::unique_lock<std::mutex>& lock) {
    Files().changed.wait(lock, [] { return false; });
}

/// Makes a file with a hidden name, which it returns; `descriptor` is negative when it could not, with the reason in
/// errno. Another process of this name is none of ours, so a name that is taken is passed over.
fs::path MakeFile(const fs::path& folder, int& descriptor) {
    static std::atomic<unsigned> count{0};
    constexpr int kTries = 100;
    fs::path name;
    const FileOwner owner = ThisProcess();
    for (int i = 0; i < kTries; ++i) {
        name = folder / HiddenName(owner, count++);
        descriptor = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST) break;
    }
    return name;
}

}  // namespace

TemporaryFile::TemporaryFile(const fs::path& place) : place_(place) {
    Construction& files = Files();
    {
        std::unique_lock lock(files.mutex);
        if (files.ending) WaitForTheEnd(lock);
        ++files.beginning;
    }
    const fs::path name = MakeFile(place.parent_path(), descriptor_);
    problem_ = descriptor_ < 0 ? errno : 0;
    {
        const std::lock_guard lock(files.mutex);
        --files.beginning;
        if (descriptor_ >= 0) files.names.insert(name.string());
    }
    files.changed.notify_all();
    name_ = name;
}

TemporaryFile::~TemporaryFile() {
    if (descriptor_ < 0) return;
    close(descriptor_);
    Construction& files = Files();
    std::error_code ignored;
    if (!name_.empty()) fs::remove(name_, ignored);
    const std::lock_guard lock(files.mutex);
    files.names.erase(name_.string());
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
    Construction& files = Files();
    std::unique_lock lock(files.mutex);
    if (error) {
        // Perhaps only because an interruption has removed it.
        if (files.ending) WaitForTheEnd(lock);
        return Failure{ErrorKind::kFile, fmt::format("cannot write '{}': {}", place_.string(), error.message())};
    }
    files.names.erase(name_.string());
    name_.clear();
    return Done{};
}

void RemoveTemporaryFiles() {
    Construction& files = Files();
    const std::lock_guard lock(files.mutex);
    for (const std::string& name : files.names) unlink(name.c_str());
}

void EndTemporaryFiles() {
    Construction& files = Files();
    {
        std::unique_lock lock(files.mutex);
        files.ending = true;
        // A file is made in no time, but a folder far away may be slow; the process ends nevertheless.
        files.changed.wait_for(lock, std::chrono::seconds(2), [&] { return files.beginning == 0; });
    }
    RemoveTemporaryFiles();
}

}  // namespace umbrant::host
