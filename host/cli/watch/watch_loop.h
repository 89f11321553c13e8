// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// When to draw again: after files have changed, are at rest, and can be read. Knows neither files nor time, so that
// tests play both.

#include <chrono>
#include <string>
#include <vector>

#include "host/cli/watch/watched_files.h"

namespace umbrant::host {

/// What the loop works with.
class WatchedWorld {
 public:
    using Seconds = std::chrono::duration<double>;

    virtual ~WatchedWorld() = default;
    virtual FileStamps Scan() = 0;
    /// Returns when something may have happened; false to end the loop.
    virtual bool WaitForEvent() = 0;
    /// Returns after this time; false to end the loop.
    virtual bool Pause(Seconds time) = 0;
    /// Whether the file can be read to its end.
    virtual bool IsWhole(const std::string& path) = 0;
    /// Files went away; nothing is drawn until they are there again.
    virtual void Gone(const std::vector<std::string>& paths) = 0;
    /// Draws again, after these files have changed. All exist.
    virtual void Draw(const std::vector<std::string>& changed) = 0;
};

/// A file is at rest when it has not changed for so long.
inline constexpr WatchedWorld::Seconds kRest{0.2};

/// A file that is at rest but not whole is looked at as often again, with pauses of kPatience; then it is drawn as it
/// is, which reports what is wrong with it.
inline constexpr int kMostLooks = 5;
inline constexpr WatchedWorld::Seconds kPatience{0.4};

/// Draws after each change until the world ends the loop. `before` is what was drawn last, scanned before it was
/// drawn: a change during a drawing is a change.
void RunWatchLoop(WatchedWorld& world, FileStamps before);

}  // namespace umbrant::host
