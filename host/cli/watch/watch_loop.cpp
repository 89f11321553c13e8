// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/watch/watch_loop.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace umbrant::host {

namespace {

/// The files once they are at rest; nothing when the loop ends.
std::optional<FileStamps> AtRest(WatchedWorld& world, FileStamps now) {
    for (;;) {
        if (!world.Pause(kRest)) return std::nullopt;
        FileStamps again = world.Scan();
        if (again == now) return now;
        now = std::move(again);
    }
}

/// Whether all of them are whole at last, or no patience is left. Not when they change meanwhile. Nothing when the loop
/// ends.
std::optional<bool> CanBeDrawn(WatchedWorld& world, const std::vector<std::string>& changed, const FileStamps& now) {
    for (int look = 0; look < kMostLooks; ++look) {
        if (std::all_of(changed.begin(), changed.end(), [&](const auto& path) { return world.IsWhole(path); })) break;
        if (!world.Pause(kPatience)) return std::nullopt;
        if (world.Scan() != now) return false;
    }
    return true;
}

}  // namespace

void RunWatchLoop(WatchedWorld& world, FileStamps before) {
    for (FileStamps now = world.Scan();; now = world.Scan()) {
        if (now == before) {
            if (!world.WaitForEvent()) return;
            continue;
        }
        auto rested = AtRest(world, std::move(now));
        if (!rested) return;
        const std::vector<std::string> changed = ChangedFiles(before, *rested);
        if (!changed.empty()) {
            const auto canBeDrawn = CanBeDrawn(world, changed, *rested);
            if (!canBeDrawn) return;
            if (!*canBeDrawn) continue;
        }
        // What is gone is forgotten, so that the file of that name that comes next is a change.
        const std::vector<std::string> gone = GoneFiles(before, *rested);
        before = std::move(*rested);
        if (!gone.empty()) world.Gone(gone);
        if (!changed.empty()) world.Draw(changed);
    }
}

}  // namespace umbrant::host
