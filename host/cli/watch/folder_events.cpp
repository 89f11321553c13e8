// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/watch/folder_events.h"

#include <poll.h>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <utility>

namespace umbrant::host {

namespace {

constexpr std::uint32_t kEvents = IN_CLOSE_WRITE | IN_MODIFY | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO |
                                  IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

/// Whether other machines may change the folder, which the kernel does not see.
bool IsRemote(const std::filesystem::path& folder) {
    // NFS, SMB (three kinds), Ceph, AFS, FUSE, 9P
    constexpr std::uint32_t kRemote[] = {0x6969,     0x517b,     0xfe534d42, 0xff534d42,
                                         0x00c36400, 0x5346414f, 0x65735546, 0x01021997};
    struct statfs facts {};
    if (statfs(folder.c_str(), &facts) != 0) return false;
    return std::find(std::begin(kRemote), std::end(kRemote), static_cast<std::uint32_t>(facts.f_type)) !=
           std::end(kRemote);
}

}  // namespace

FolderEvents::FolderEvents(bool polls) {
    if (!polls) queue_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
}

FolderEvents::~FolderEvents() {
    if (queue_ >= 0) close(queue_);
}

void FolderEvents::Follow(std::vector<std::filesystem::path> folders) {
    folders_ = std::move(folders);
    for (auto watch = watches_.begin(); watch != watches_.end();) {
        if (std::find(folders_.begin(), folders_.end(), watch->first) != folders_.end()) {
            ++watch;
            continue;
        }
        inotify_rm_watch(queue_, watch->second);
        watch = watches_.erase(watch);
    }
    Renew();
}

/// Asks for folders that are not watched: all at first, later those that were replaced.
void FolderEvents::Renew() {
    if (queue_ < 0) return;
    for (const std::filesystem::path& folder : folders_) {
        if (watches_.contains(folder) || IsRemote(folder)) continue;
        const int watch = inotify_add_watch(queue_, folder.c_str(), kEvents);
        if (watch >= 0) watches_[folder] = watch;
    }
}

void FolderEvents::Drain() {
    alignas(inotify_event) char buffer[16 << 10];
    for (ssize_t count = 0; (count = read(queue_, buffer, sizeof(buffer))) > 0;) {
        for (const char* at = buffer; at < buffer + count;) {
            const auto& event = *static_cast<const inotify_event*>(static_cast<const void*>(at));
            // A folder that was moved is watched under its old name; the new one of that name is not.
            if ((event.mask & (IN_IGNORED | IN_MOVE_SELF)) != 0) {
                std::erase_if(watches_, [&](const auto& watch) { return watch.second == event.wd; });
                if ((event.mask & IN_MOVE_SELF) != 0) inotify_rm_watch(queue_, event.wd);
            }
            at += sizeof(inotify_event) + event.len;
        }
    }
}

void FolderEvents::Wait(Seconds interval) {
    pollfd queue{queue_, POLLIN, 0};
    const auto milliseconds = static_cast<int>(std::ceil(std::max(0.0, interval.count()) * 1000));
    // Without a queue its descriptor is negative, which poll() ignores.
    const int ready = poll(&queue, 1, Polls() ? milliseconds : -1);
    if (ready > 0) Drain();
    Renew();
}

bool FolderEvents::Polls() const {
    return std::any_of(folders_.begin(), folders_.end(),
                       [&](const std::filesystem::path& folder) { return !watches_.contains(folder); });
}

}  // namespace umbrant::host
