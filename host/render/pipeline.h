// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Many frames at once: each is read, drawn and written in this order, while others are in other steps. Frames are begun
// in their order, and no more of them are under way than memory was counted for. Knows nothing of what a frame is.

#include <cstddef>
#include <functional>

#include "host/result.h"

namespace umbrant::host {

/// What is to happen after a step.
enum class AfterStep {
    kGoOn,    ///< the frame goes into its next step
    kLeave,   ///< the frame is done with, or failed
    kStopAll  ///< and no other frame is read or drawn any more; those that are drawn are still written
};

/// How many threads each step has, and how many frames are between the beginning of their first and the end of their
/// last step. All at least 1.
struct PipelineShape {
    int readers = 1;
    int drawers = 1;
    int writers = 1;
    std::size_t underWay = 4;
    bool inOrder = false;  ///< a frame is written only after all before it, and after a stop none
};

/// A step of a frame; `thread` is below the number of the step's threads, and its calls come from one thread. Of the
/// frames that wait for a step the first goes first.
using PipelineStep = std::function<AfterStep(std::size_t frame, int thread)>;

/// Takes frames 0 to `count` through the steps and returns when nothing is under way any more. An exception in a step
/// stops all, and is thrown again here. Where the system refuses threads, those that could be had share the steps;
/// fails with `ErrorKind::kInternal` when there is none at all, and no step was called then. A single frame has nothing
/// to overlap with: its steps run on the caller's thread.
Result<Done> RunPipeline(std::size_t count, const PipelineShape& shape, const PipelineStep& read,
                         const PipelineStep& draw, const PipelineStep& write);

}  // namespace umbrant::host
