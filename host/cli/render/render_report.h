// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What `umbrant render` reports about a frame: text while it is drawn, JSON at the end.

#include <chrono>
#include <string>
#include <vector>

#include "host/cli/opened_module.h"
#include "host/session/effect_session.h"
#include "host/session/renderer.h"

namespace umbrant::host {

/// Milliseconds since it was made or last asked.
class Stopwatch {
 public:
    double Lap();

 private:
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

/// What the report has in addition to what the session and the frame know.
struct RenderFacts {
    std::string input;
    std::string output;
    int layerWidth = 0;  ///< the layer as it was drawn, downsampled
    int layerHeight = 0;
    int depth = 8;
    int downsample = 1;
    std::string canvas;
    PF_LRect picture{};  ///< what the written picture covers, in the pixels of the drawn layer
    double load = 0;     ///< milliseconds of reading the pictures and making layers of them
    double save = 0;     ///< of writing the picture
    double total = 0;    ///< of everything, opening the module included
};

/// Each command with its time, its error and what it said, a line each.
std::string CommandsText(const std::vector<CommandRecord>& commands);

/// A frame's commands, rectangles and suites, and the suites that the session refused.
std::string FrameText(const Frame& frame, const EffectSession& session);

/// The suites that the effect asked for and did not get, a line each.
std::string RefusedText(const EffectSession& session);

/// The whole report, ending in a line break. The session may have ended.
std::string RenderReport(const RenderFacts& facts, const RendererDecision& renderer, const Frame& frame,
                         const EffectSession& session);

}  // namespace umbrant::host
