// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Waits until something happens in one of some folders. The kernel reports it (inotify); where it cannot (no watch is
// left, the folder does not exist, or it is on another machine), waiting ends after an interval, and the caller looks.

#include <chrono>
#include <filesystem>
#include <map>
#include <vector>

namespace umbrant::host {

class FolderEvents {
 public:
    using Seconds = std::chrono::duration<double>;

    /// With `polls` the kernel is not asked.
    explicit FolderEvents(bool polls = false);
    ~FolderEvents();
    FolderEvents(const FolderEvents&) = delete;
    FolderEvents& operator=(const FolderEvents&) = delete;

    /// The folders from here on.
    void Follow(std::vector<std::filesystem::path> folders);
    /// Returns when something may have changed since the last call: a name appeared, went away, or was written to in a
    /// folder. At once where that has happened already. At the latest after `interval` if a folder has to be polled.
    void Wait(Seconds interval);
    /// Whether a folder has to be polled.
    bool Polls() const;

 private:
    void Renew();
    void Drain();

    int queue_ = -1;
    std::vector<std::filesystem::path> folders_;
    std::map<std::filesystem::path, int> watches_;  ///< those of the folders that the kernel watches
};

}  // namespace umbrant::host
