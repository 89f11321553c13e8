// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/image_progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

namespace umbrant::host {

ImageProgress::ImageProgress(double seconds, bool isVerbose)
    : isVerbose_(isVerbose), isTerminal_(isatty(STDERR_FILENO) != 0), stage_([] { return std::string("beginning"); }) {
    StatusLine::Seconds first(seconds), next(seconds);
    if (seconds < 0) {
        first = std::chrono::seconds(isTerminal_ ? 2 : 10);
        next = std::chrono::seconds(isTerminal_ ? 1 : 10);
    }
    decimals_ = next.count() < 1 ? 1 : 0;
    if (seconds != 0) line_.Start(first, next, [this] { Renew(); });
}

void ImageProgress::Renew() {
    const StatusLine::Seconds passed = std::chrono::steady_clock::now() - begin_;
    const std::string text = fmt::format("umbrant: {:.{}f} s, {}", passed.count(), decimals_, stage_());
    isTerminal_ ? line_.Show(text) : line_.Print(text + "\n");
}

void ImageProgress::Print(const std::string& text) {
    const std::lock_guard lock(line_.Mutex());
    line_.Print(text);
}

void ImageProgress::Say(std::string stage) {
    Follow([words = std::move(stage)] { return words; });
}

void ImageProgress::Follow(std::function<std::string()> stage) {
    const std::lock_guard lock(line_.Mutex());
    stage_ = std::move(stage);
}

void ImageProgress::Begins(std::size_t, FrameStep step, const EffectSession* session) {
    if (step == FrameStep::kDraw) {
        session_ = session;
        Follow([session] { return ActivityText(*session); });
    } else if (step == FrameStep::kWrite) {
        Say("writing the image");
    }
}

void ImageProgress::Draws(std::size_t, const Frame& drawn, const EffectSession& session) {
    Say("preparing the image");
    isDrawn_ = true;
    record_.rect = drawn.rect;
    record_.maxRect = drawn.maxRect;
    record_.message = drawn.message;
    record_.messageIsError = drawn.messageIsError;
    record_.commands = drawn.commands;
    record_.suites = drawn.suites;
    if (isVerbose_) Print(FrameText(drawn, session));
    if (!drawn.message.empty()) Print("the effect says: " + drawn.message + "\n");
    saving_.Lap();
}

void ImageProgress::Ends(std::size_t, const FrameOutcome& outcome) {
    saveTime_ = saving_.Lap();
    outcome_ = outcome;
    // The session may be gone before this is.
    Say("ending");
    if (isVerbose_ && session_ && !isDrawn_) Print(RefusedText(*session_));
}

}  // namespace umbrant::host
