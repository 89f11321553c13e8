// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The JSON about a sequence: single frames as they end, and the whole at the end.

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/cli/render/progress_text.h"
#include "host/render/plan/frame_plan.h"
#include "host/render/worker.h"

namespace umbrant::host {

class ClipEndpoints;

/// A whole number where it is one.
nlohmann::ordered_json NumberJson(const FrameNumber& frame);

/// A frame and what became of it.
nlohmann::ordered_json FrameJson(const PlannedFrame& frame, const FrameOutcome& outcome);

/// What all images cover: "width" and "height" of the files and the option that draws on the same canvas again.
nlohmann::ordered_json CanvasJson(const CanvasFacts& canvas);

/// The sums over `all` frames.
nlohmann::ordered_json TotalsJson(const FrameTotals& totals, std::size_t all, double seconds);

/// What the report has in addition to the frames.
struct SequenceFacts {
    std::string input;
    std::string output;
    std::string renderer;
    std::string canvas;                    ///< what was asked for: "grow", "frame", "layer" or a rectangle
    std::optional<CanvasFacts> covered{};  ///< nothing where images may differ in size
};

/// The report of a whole sequence, ending in a line break, with the clip that was written if there is one.
std::string SequenceReport(const SequenceFacts& facts, const FramePlan& plan, const PipelineShape& shape,
                           const std::vector<std::optional<FrameOutcome>>& outcomes, double seconds,
                           const ClipEndpoints& clips);

}  // namespace umbrant::host
