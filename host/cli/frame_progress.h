// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How far a sequence is, told on standard error while it is drawn, and the paths of its pictures on standard output.
// What is told about single frames comes in the order of the plan, whatever the order in which they end.

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/render/draw_frames.h"
#include "host/result.h"

enum class ProgressForm {
    kBar,    ///< one line that changes, on a terminal
    kLines,  ///< a line for each frame, and for one that takes long a line now and then
    kJson,   ///< the same as JSON, an object a line
    kQuiet,  ///< failures alone
};

/// The one rectangle that all images of a sequence cover.
struct CanvasFacts {
    PF_LRect layer{};  ///< in pixels of the full-size layer
    int width = 0;     ///< of the images, pixels
    int height = 0;
};

struct ProgressOptions {
    ProgressForm form = ProgressForm::kLines;
    double seconds = 10;  ///< after them, and again each time, a frame that takes long has a line; 0 for never
    std::optional<CanvasFacts> canvas{};  ///< told first; nothing where images may differ in size
};

/// What `--progress` says: "bar", "lines", "json", or seconds; without a form it is a bar where standard error is a
/// terminal and lines elsewhere. Nothing for a text that is none of them.
std::optional<ProgressOptions> ReadProgress(const std::string& text, bool quiet);

/// How many frames came to what end.
struct FrameTotals {
    std::size_t drawn = 0;
    std::size_t existing = 0;
    std::size_t skipped = 0;
    std::size_t failed = 0;
    /// Why frames failed, with their numbers in the order of the plan; the code is that of the first.
    Failure failure{ExitCode::kDone, ""};
    std::size_t Ended() const { return drawn + existing + skipped + failed; }
};

/// Seconds as a person reads them: "0.41 s", "12 s", "3:05", "1:02:03".
std::string DurationText(double seconds);

/// The bar's line, without its end: at most `width` columns.
std::string BarText(const FrameTotals& totals, std::size_t all, double seconds, const std::string& current, int width);

class FrameProgress : public FrameWatcher {
 public:
    /// Prints each picture's path to standard output when `printsPaths`.
    FrameProgress(const FramePlan& plan, const ProgressOptions& options, bool printsPaths);
    ~FrameProgress() override;
    FrameProgress(const FrameProgress&) = delete;
    FrameProgress& operator=(const FrameProgress&) = delete;

    /// A failure is told as it happens, since it does not end the render and is not told in the end.
    void SetKeepsGoing(bool keepsGoing) { keepsGoing_ = keepsGoing; }

    /// Says something about the whole, unless it is to be quiet.
    void Note(const std::string& sentence);

    void Begins(std::size_t frame, FrameStep step, const EffectSession* session) override;
    void Ends(std::size_t frame, const FrameOutcome& outcome) override;

    /// Ends the bar, tells the sums. Once, after the last frame.
    FrameTotals Finish();

    /// What became of the plan's frames; nothing for those that were not reached.
    const std::vector<std::optional<FrameOutcome>>& Outcomes() const { return outcomes_; }
    double Seconds() const;

 private:
    struct Current {
        FrameStep step;
        const EffectSession* session;
        std::chrono::steady_clock::time_point begin;
    };
    void TellStart(const std::optional<CanvasFacts>& canvas);
    void TellReady();
    void TellFrame(std::size_t frame);
    std::vector<std::string> NotesOf(std::size_t frame);
    void TellCurrent();
    std::string CurrentText() const;
    void TellNowAndThen();
    void Print(const std::string& line);
    void DrawBar();
    void ClearBar();

    const FramePlan& plan_;
    const ProgressForm form_;
    const std::chrono::duration<double> interval_;
    const bool printsPaths_;
    bool keepsGoing_ = false;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    mutable std::mutex mutex_;
    std::vector<std::optional<FrameOutcome>> outcomes_;
    std::size_t told_ = 0;                 ///< frames of the plan that were told about
    std::optional<std::size_t> previous_;  ///< the last one whose input was read
    std::map<std::size_t, Current> current_;
    FrameTotals totals_;
    std::vector<std::string> reasons_;  ///< of the frames that failed
    bool barIsThere_ = false;
    bool ended_ = false;
    std::condition_variable ending_;
    std::thread thread_;
};
