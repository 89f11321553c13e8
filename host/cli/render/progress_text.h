// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// How the progress of a sequence is asked for, and its texts.

#include <cstddef>
#include <optional>
#include <string>

#include "host/result.h"
#include "hostapi/geometry.h"

namespace umbrant::host {

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
    std::optional<CanvasFacts> canvas{};  ///< reported first; nothing where images may differ in size
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
    /// Why frames failed, as FrameFailures lists it; the kind is that of the first.
    Failure failure{ErrorKind::kEffect, ""};
    std::size_t Ended() const { return drawn + existing + skipped + failed; }
};

/// Seconds as a person reads them: "0.41 s", "12 s", "3:05", "1:02:03".
std::string DurationText(double seconds);

/// The bar's line, without its end: at most `width` columns.
std::string BarText(const FrameTotals& totals, std::size_t all, double seconds, const std::string& current, int width);

/// How many frames came to what end: "3 drawn, 1 failed".
std::string CountText(const FrameTotals& totals);

/// Seconds until the last of `all` frames at the rate so far; nothing before one is drawn.
std::optional<double> SecondsLeft(const FrameTotals& totals, std::size_t all, double seconds);

}  // namespace umbrant::host
