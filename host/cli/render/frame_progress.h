// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The progress of a sequence on standard error, and the paths of its images on standard output. Frames are reported in
// the order of the plan, whatever the order in which they end.

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/cli/render/outcome/frame_failures.h"
#include "host/cli/render/progress.h"
#include "host/cli/render/progress_text.h"
#include "host/render/worker.h"
#include "host/result.h"

namespace umbrant::host {

class FrameProgress : public FrameWatcher {
 public:
    /// Prints each picture's path to standard output when `printsPaths`.
    FrameProgress(const FramePlan& plan, const ProgressOptions& options, bool printsPaths);
    ~FrameProgress() override = default;
    FrameProgress(const FrameProgress&) = delete;
    FrameProgress& operator=(const FrameProgress&) = delete;

    /// Reports each failure as it happens, since it does not end the render.
    void SetKeepsGoing(bool keepsGoing) { keepsGoing_ = keepsGoing; }

    /// Says something about the whole, unless it is to be quiet.
    void Note(const std::string& sentence);

    void Begins(std::size_t frame, FrameStep step, const EffectSession* session) override;
    void Ends(std::size_t frame, const FrameOutcome& outcome) override;

    /// Ends the bar and prints the totals. Once, after the last frame.
    FrameTotals Finish();

    /// What became of the plan's frames; nothing for those that were not reached.
    const std::vector<std::optional<FrameOutcome>>& Outcomes() const { return outcomes_; }
    /// Why frames failed.
    const FrameFailures& Failures() const { return failures_; }
    double Seconds() const;

 private:
    struct Current {
        FrameStep step;
        const EffectSession* session;
        std::chrono::steady_clock::time_point begin;
    };
    void TellStart(const std::optional<CanvasFacts>& canvas);
    void TellReady();
    void TellFrame(std::size_t index);
    std::vector<std::string> NotesOf(std::size_t index);
    void TellCurrent();
    std::string CurrentText() const;
    void Print(const std::string& line);
    void DrawBar();

    const FramePlan& plan_;
    const ProgressForm form_;
    const std::chrono::duration<double> interval_;
    const bool printsPaths_;
    bool keepsGoing_ = false;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::vector<std::optional<FrameOutcome>> outcomes_;
    std::size_t told_ = 0;                 ///< frames of the plan that were reported
    std::optional<std::size_t> previous_;  ///< the last one whose input was read
    std::map<std::size_t, Current> current_;
    FrameTotals totals_;
    FrameFailures failures_;
    StatusLine line_;  ///< the last member: its thread ends before what it reads
};

}  // namespace umbrant::host
