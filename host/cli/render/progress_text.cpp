// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/progress_text.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "host/cli/option_checks.h"

namespace umbrant::host {

namespace {

constexpr double kLongestInterval = 24.0 * 60 * 60;

}  // namespace

std::optional<ProgressOptions> ReadProgress(const std::string& text, bool quiet) {
    ProgressOptions options;
    options.form = isatty(STDERR_FILENO) ? ProgressForm::kBar : ProgressForm::kLines;
    if (text == "json") {
        options.form = ProgressForm::kJson;
    } else if (text == "bar") {
        options.form = ProgressForm::kBar;
    } else if (text == "lines") {
        options.form = ProgressForm::kLines;
    } else if (!text.empty()) {
        if (!OutOfRange(text, 0, kLongestInterval).empty()) return std::nullopt;
        options.seconds = std::stod(text);
    }
    if (quiet) options.form = ProgressForm::kQuiet;
    return options;
}

std::string DurationText(double seconds) {
    if (seconds < 10) return fmt::format("{:.2f} s", seconds);
    const auto whole = static_cast<long>(std::lround(seconds));
    if (whole < 60) return fmt::format("{} s", whole);
    if (whole < 3600) return fmt::format("{}:{:02}", whole / 60, whole % 60);
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string BarText(const FrameTotals& totals, std::size_t all, double seconds, const std::string& current, int width) {
    constexpr std::size_t kCells = 20;
    const std::size_t full = all == 0 ? kCells : totals.Ended() * kCells / all;
    std::string line =
        fmt::format("[{}{}] {}/{}", std::string(full, '#'), std::string(kCells - full, '.'), totals.Ended(), all);
    if (totals.failed > 0) line += fmt::format(", {} failed", totals.failed);
    if (totals.drawn > 0 && seconds > 0) {
        line += fmt::format("  {:.2f} frames/s", static_cast<double>(totals.drawn) / seconds);
    }
    if (const auto left = SecondsLeft(totals, all, seconds)) line += fmt::format("  {} left", DurationText(*left));
    if (!current.empty()) line += "  " + current;
    // The last column stays free: a line that fills it would wrap on some terminals.
    return line.substr(0, static_cast<std::size_t>(std::max(1, width - 1)));
}

std::string CountText(const FrameTotals& totals) {
    std::string text = fmt::format("{} drawn", totals.drawn);
    if (totals.existing > 0) text += fmt::format(", {} already there", totals.existing);
    if (totals.skipped > 0) text += fmt::format(", {} left out", totals.skipped);
    if (totals.failed > 0) text += fmt::format(", {} failed", totals.failed);
    return text;
}

std::optional<double> SecondsLeft(const FrameTotals& totals, std::size_t all, double seconds) {
    if (totals.drawn == 0) return std::nullopt;
    return seconds / static_cast<double>(totals.drawn) * static_cast<double>(all - totals.Ended());
}

}  // namespace umbrant::host
