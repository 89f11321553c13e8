// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What a render will cost, found by drawing a few of its frames without writing them: `--dry-run`, and the time limit
// of a farm's tasks.

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "host/cli/render/outcome/frame_failures.h"
#include "host/cli/render/render_options.h"
#include "host/render/pipeline.h"
#include "host/render/plan/frame_number.h"
#include "host/result.h"

namespace umbrant::host {

/// A frame that was drawn to be measured.
struct MeasuredFrame {
    FrameNumber number;
    int width = 0;  ///< of the image, pixels
    int height = 0;
    double read = 0;  ///< milliseconds of each step, alone on the machine
    double draw = 0;
    double write = 0;         ///< of encoding; the disk's time is not included
    std::uint64_t bytes = 0;  ///< of the file; 0 for a clip
};

/// What was found out about a render.
struct RenderCost {
    bool isImage = false;
    bool isClip = false;              ///< the output is one
    std::size_t frames = 0;           ///< to be drawn: without those that are skipped
    std::size_t left = 0;             ///< not to be drawn: they exist, or their files are missing
    std::string canvas;               ///< "--canvas L,T,R,B" of all images; empty where they may differ in size
    std::string folder;               ///< of the output; empty for standard output
    std::uint64_t freeBytes = 0;      ///< on its disk; 0 when nobody knows
    double startSeconds = 0;          ///< from the start to the first frame: planning, loading and setting up
    PipelineShape shape{};            ///< threads, and the frames in progress
    std::uint64_t frameMemory = 0;    ///< bytes that those take at most
    std::uint64_t processMemory = 0;  ///< the largest size of this process so far, in bytes
    std::vector<MeasuredFrame> measured;
    FrameFailures failures;                   ///< of frames that were to be measured
    Failure failure{ErrorKind::kEffect, ""};  ///< the first of them

    /// Means of the measured frames.
    MeasuredFrame Mean() const;
    /// Bytes of all files; 0 for a clip.
    std::uint64_t FileBytes() const;
    /// Seconds from the start to the end where steps of different frames overlap without hindering each other.
    double LeastSeconds() const;
    /// The same where nothing overlaps.
    double MostSeconds() const;
};

/// Draws a few frames of what the options mean, and writes nothing. Fails as Render does before the first frame, and
/// when none of those frames can be drawn.
Result<RenderCost> MeasureRender(RenderOptions options);

/// Bytes as a person reads them: "812 B", "4.2 MiB".
std::string BytesText(std::uint64_t bytes);

/// The cost as lines for a person, ending in a line break.
std::string CostText(const RenderCost& cost);

/// The same as JSON, ending in a line break.
std::string CostReport(const RenderCost& cost);

}  // namespace umbrant::host
