// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// When the frames of a clip are shown: whether they come at one rate, and which of them is to be seen at a moment of
// another rate.

#include <optional>
#include <string>
#include <vector>

#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

/// The moments of a clip's frames.
struct ClipTimes {
    std::vector<double> seconds{};  ///< of each frame since the first, rising
    double length = 0;              ///< from the first frame to the end of the last, seconds
    double tick = 0;                ///< what the file's times are whole multiples of, seconds
};

/// "30000/1001", as ffprobe writes rates. Nothing for one that is 0 or beyond the rates that ParseRate takes.
std::optional<FrameRate> ReadRate(const std::string& text);

/// The first of the rates that all frames keep to, as closely as the file's ticks can say it; nothing when none does. A
/// single frame keeps to any.
std::optional<FrameRate> ConstantRate(const ClipTimes& times, const std::vector<FrameRate>& candidates);

/// How many frames the clip has at a rate: as many as fit its length, at least 1.
int FrameCount(const ClipTimes& times, const FrameRate& rate);

/// Which of the clip's frames, from 0, is shown as frame `frame` of a rate: the last that has begun.
int FrameShown(const ClipTimes& times, const FrameRate& rate, int frame);

/// The longest and shortest that a frame stays, as rates: "12 to 30".
std::string RatesText(const ClipTimes& times);

}  // namespace umbrant::host
