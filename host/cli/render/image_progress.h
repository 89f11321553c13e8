// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How far a single image is, on standard error while it is drawn, and what its report needs of the frame.

#include <chrono>
#include <functional>
#include <string>

#include "host/cli/render/progress.h"
#include "host/cli/render/render_report.h"
#include "host/render/worker.h"

namespace umbrant::host {

/// Prints "umbrant: 12 s, the effect draws": on a terminal one line that is replaced, elsewhere a line each time.
class ImageProgress : public FrameWatcher {
 public:
    /// Prints for the first time after `seconds`, and again each time as many have passed; 0 never. A negative number
    /// takes what fits standard error: 2 and then 1 on a terminal, 10 elsewhere. `isVerbose` prints the frame's
    /// commands, rectangles and suites.
    ImageProgress(double seconds, bool isVerbose);

    /// What is done from here on.
    void Say(std::string stage);
    /// Prints text that ends in a line break to standard error.
    void Print(const std::string& text);
    /// No line any more: something else may be printed.
    void Stop() { line_.Stop(); }

    void Begins(std::size_t frame, FrameStep step, const EffectSession* session) override;
    void Draws(std::size_t frame, const Frame& drawn, const EffectSession& session) override;
    void Ends(std::size_t frame, const FrameOutcome& outcome) override;

    /// What became of the frame.
    const FrameOutcome& Outcome() const { return outcome_; }
    /// The frame as it was drawn, without its pixels.
    const Frame& Record() const { return record_; }
    /// Milliseconds from the drawn frame to the written file.
    double SaveTime() const { return saveTime_; }

 private:
    void Follow(std::function<std::string()> stage);
    void Renew();

    const bool isVerbose_;
    const bool isTerminal_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    int decimals_ = 0;
    std::function<std::string()> stage_;
    const EffectSession* session_ = nullptr;
    bool isDrawn_ = false;
    FrameOutcome outcome_;
    Frame record_;
    Stopwatch saving_;
    double saveTime_ = 0;
    StatusLine line_;  ///< the last member: its thread ends before what it reads
};

}  // namespace umbrant::host
