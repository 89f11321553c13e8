// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/clip_timing.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace umbrant::host {

namespace {

/// A moment that only rounding keeps from being reached is reached.
constexpr double kRounding = 1e-6;

bool KeepsTo(const ClipTimes& times, const FrameRate& rate) {
    const double frame = 1 / rate.PerSecond();
    // Files round their times to ticks, up or down; where a tick is nearly a frame, it says nothing of less.
    const double allowed = std::max(std::min(1.5 * times.tick, 0.4 * frame), 0.05 * frame);
    for (std::size_t i = 0; i < times.seconds.size(); ++i) {
        if (std::abs(times.seconds[i] - static_cast<double>(i) * frame) > allowed) return false;
    }
    return true;
}

}  // namespace

std::optional<FrameRate> ReadRate(const std::string& text) {
    const auto rate = ParseRate(text);
    return rate ? std::optional(*rate) : std::nullopt;
}

std::optional<FrameRate> ConstantRate(const ClipTimes& times, const std::vector<FrameRate>& candidates) {
    for (const FrameRate& rate : candidates) {
        if (KeepsTo(times, rate)) return rate;
    }
    return std::nullopt;
}

int FrameCount(const ClipTimes& times, const FrameRate& rate) {
    return static_cast<int>(std::clamp(std::lround(times.length * rate.PerSecond()), 1L, long{kFarthestFrame}));
}

int FrameShown(const ClipTimes& times, const FrameRate& rate, int frame) {
    const double moment = frame / rate.PerSecond() + std::max(kRounding, std::min(times.tick, 0.4 / rate.PerSecond()));
    const auto after = std::upper_bound(times.seconds.begin(), times.seconds.end(), moment);
    return std::max(0, static_cast<int>(after - times.seconds.begin()) - 1);
}

std::string RatesText(const ClipTimes& times) {
    double shortest = 1e9, longest = 0;
    for (std::size_t i = 1; i < times.seconds.size(); ++i) {
        const double step = times.seconds[i] - times.seconds[i - 1];
        if (step > 0) shortest = std::min(shortest, step);
        longest = std::max(longest, step);
    }
    return fmt::format("{:.4g} to {:.4g}", longest > 0 ? 1 / longest : 0, 1 / shortest);
}

}  // namespace umbrant::host
