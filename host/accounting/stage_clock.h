// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Where the time of a render goes, as far as the host can see: it measures its own calls and counts the time between
// them as the effect's own work.

#include <chrono>

#include "host/process/fork_lock.h"

namespace umbrant::host {

/// Kinds of host calls that move pixels.
enum class PixelCall {
    kFetch,     ///< a layer checked out, a world copied
    kWalk,      ///< the effect's function called for every pixel
    kFill,      ///< a world filled
    kTransfer,  ///< worlds laid over each other or mixed
};

/// Milliseconds in the calls of one command.
struct StageTimes {
    double upload = 0;     ///< up to the end of the first walk, which takes a layer's pixels to the effect
    double readBack = 0;   ///< walks between that and the first transfer, which bring its pixels back
    double composite = 0;  ///< everything after, and fills
};

/// The current stage of a render, as far as the host can see.
enum class RenderStage { kUpload, kDraw, kReadBack, kComposite };

/// Adds up one command's calls. Safe on every thread; calls that overlap count once.
class StageClock {
 public:
    StageTimes Snapshot() const;
    /// Where the command is, by the calls so far and the one it is in.
    RenderStage Now() const;

    /// Around each call; TimedCall does both.
    void Enter(PixelCall call);
    void Leave(PixelCall call);

 private:
    using Time = std::chrono::steady_clock::time_point;
    RenderStage StageOf(PixelCall call) const;

    mutable ForkLock mutex_{ForkRank::kRecord};
    StageTimes times_;
    int inside_ = 0;
    PixelCall call_ = PixelCall::kFetch;  ///< the outermost of those that are inside
    Time begin_{};
    bool uploaded_ = false;
    bool transferred_ = false;
};

}  // namespace umbrant::host
